#ifndef QRA_TESTS_FAKES_WEBDAV_ANSWERS_H
#define QRA_TESTS_FAKES_WEBDAV_ANSWERS_H

#include <cstddef>
#include <string>

// Answers to a PROPFIND, for servers that a test plays.

inline constexpr char kWebDavHead[] = R"(<?xml version="1.0"?><D:multistatus xmlns:D="DAV:">)";
inline constexpr char kWebDavEnd[] = "</D:multistatus>";

/// A part of an answer: one picture.
inline std::string picture(const std::string& href) {
    return "<D:response><D:href>" + href +
           "</D:href><D:propstat><D:prop><D:resourcetype/><D:getcontenttype>image/jpeg</D:getcontenttype></"
           "D:prop>"
           "<D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>";
}

/// The pictures "first.jpg" up to the one before `end`, in the folder "/dav/".
inline std::string pictures(size_t first, size_t end) {
    std::string entries;
    for (size_t i = first; i < end; ++i) {
        entries += picture("/dav/" + std::to_string(i) + ".jpg");
    }
    return entries;
}

inline std::string answer_of(const std::string& entries) {
    return kWebDavHead + entries + kWebDavEnd;
}

#endif
