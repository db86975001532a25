#include "engine/plugins/webdav/propfind.h"

#include <utility>

namespace engine {

namespace {

constexpr char kBegin[] =
    R"(<?xml version="1.0" encoding="utf-8"?><D:propfind xmlns:D="DAV:" xmlns:o="http://owncloud.org/ns" )"
    R"(xmlns:n="http://nextcloud.org/ns">)";
constexpr char kEnd[] = "</D:propfind>";

const char* wish_text(PropfindWish wish) {
    switch (wish) {
        case PropfindWish::kKinds:
            return "<D:prop><D:resourcetype/><D:getcontenttype/></D:prop>";
        case PropfindWish::kNamedKinds:
            return "<D:prop><D:resourcetype/><D:getcontenttype/><D:displayname/></D:prop>";
        case PropfindWish::kItems:
            return "<D:prop><D:resourcetype/><D:getcontenttype/><D:displayname/><D:getcontentlength/>"
                   "<D:getlastmodified/><o:fileid/><n:has-preview/></D:prop>";
        case PropfindWish::kAll:
            break;
    }
    return "<D:allprop/><D:include><o:fileid/><o:size/><n:has-preview/></D:include>";
}

HttpQuestion question_for(const std::string& url, PropfindDepth depth, PropfindWish wish) {
    HttpQuestion question;
    question.method = "PROPFIND";
    question.url = url;
    question.headers = {{"Depth", depth == PropfindDepth::kItself ? "0" : "1"}};
    question.body_type = "application/xml; charset=utf-8";
    question.body = std::string(kBegin) + wish_text(wish) + kEnd;
    question.wanted_status = 207;
    question.wrong_status = "is no WebDAV server at this address";
    // An answer that is held waits for this one.
    question.beside = wish == PropfindWish::kKinds || wish == PropfindWish::kNamedKinds;
    return question;
}

}  // namespace

Propfind::Propfind(HttpSession& http, const std::string& url, PropfindDepth depth, PropfindWish wish,
                   Calls calls)
    : calls_(std::move(calls)),
      reader_([this](WebDavEntry& entry) { calls_.entry(entry, *folder_); }, wish == PropfindWish::kAll),
      transfer_(http.start(question_for(url, depth, wish), *this)) {}

void Propfind::cancel() {
    reader_.stop();
    transfer_.reset();
}

void Propfind::go_on() {
    if (transfer_) {
        transfer_->go_on();
    }
}

void Propfind::on_begin(const std::string& url) {
    folder_.emplace(url);
}

void Propfind::on_bytes(const char* bytes, size_t size) {
    if (!reader_.read(bytes, size)) {
        refuse();
    }
}

void Propfind::on_end() {
    if (reader_.finish()) {
        calls_.end();
    } else {
        refuse();
    }
}

void Propfind::refuse() {
    transfer_.reset();
    calls_.failure("the server's answer is not accepted: " + reader_.reason());
}

void Propfind::on_failure(const std::string& reason) {
    calls_.failure(reason);
}

}  // namespace engine
