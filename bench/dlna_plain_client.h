#ifndef QRA_BENCH_DLNA_PLAIN_CLIENT_H
#define QRA_BENCH_DLNA_PLAIN_CLIENT_H

#include <memory>
#include <string>

/**
 * What a plain client does on a folder, one page after the other: libsoup's blocking call, as it comes, which
 * keeps the connection where the server does, and where it reads too, libxml2's document of the envelope and
 * GUPnP's DIDL objects. Ends the program where a server
 * does not answer.
 */
class PlainClient {
public:
    PlainClient(std::string url, std::string folder);
    ~PlainClient();
    PlainClient(const PlainClient&) = delete;
    PlainClient& operator=(const PlainClient&) = delete;

    static constexpr int kPage = 200;

    /// The answer to the question for so many objects from there on, as it came.
    std::string fetch(int start, int count) const;
    /// The objects of an answer whose title and class could be read.
    static int read(const std::string& answer);

private:
    struct Session;
    const std::string url_;
    const std::string folder_;
    const std::unique_ptr<Session> session_;
};

#endif
