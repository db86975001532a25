#ifndef QRA_ENGINE_MEDIA_CONNECTION_H
#define QRA_ENGINE_MEDIA_CONNECTION_H

namespace engine {

/// The engine's connection to the media database, made at the first need and kept to the end of the object.
/// For one thread.
class MediaConnection {
public:
    MediaConnection() = default;
    ~MediaConnection();
    MediaConnection(const MediaConnection&) = delete;
    MediaConnection& operator=(const MediaConnection&) = delete;

    /// False, with a log line, as long as there is no connection to be had; each call tries again.
    bool ensure();

private:
    bool connected_ = false;
};

}  // namespace engine

#endif
