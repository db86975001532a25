#ifndef QRA_TESTS_DLNA_MEDIA_SERVER_H
#define QRA_TESTS_DLNA_MEDIA_SERVER_H

#include <string>
#include <vector>

/// Whether the process is in a network of its own; see own-network. Without one no server may be started.
bool have_own_network();

/**
 * A media server of the home network, misbehaving as the test wants, in a process of its own that ends with
 * the test. What it understands stands in tests/dlna/server: options and commands in main.cpp, the switches
 * that "set" knows in directory_service.h and file_service.h. All calls wait for the server, and end the test
 * with a message where it says no or nothing.
 */
class MediaServer {
public:
    /// Starts it and waits until it listens, with options as "--name=N".
    explicit MediaServer(const std::vector<std::string>& options = {});
    /// Ends it without a word to the network; tell it "goodbye" first where that is wanted.
    ~MediaServer();
    MediaServer(const MediaServer&) = delete;
    MediaServer& operator=(const MediaServer&) = delete;

    /// Gives a command, each word quoted as it needs, and returns the rest of the answer.
    std::string tell(const std::vector<std::string>& words);
    void set(const std::string& fault, const std::string& value = "", int times = -1, int spared = 0);
    void clear() { tell({"clear"}); }
    void release() { tell({"release"}); }
    long count(const std::string& name);
    /// Waits until that was asked for so often, since the start.
    void await(const std::string& name, long count);
    void generate(const std::string& id, const std::string& kind, int count);

    int port() const { return port_; }
    int pid() const { return pid_; }
    std::string url(const std::string& path) const;
    /// Ends it as a power cut does.
    void kill();

private:
    std::string read_line();
    /// Ends the test with what the server was asked for last, and how it has ended if it has.
    [[noreturn]] void give_up(const std::string& what);

    int pid_ = -1;
    int to_ = -1;
    int from_ = -1;
    int port_ = 0;
    std::string address_ = "127.0.0.1";
    std::string unread_;
    std::string asked_ = "to start";
};

#endif
