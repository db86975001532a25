#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_CAMERA_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_CAMERA_H

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/mtp/virtual-camera/description.h"
#include "platform/mtp/virtual-camera/responder.h"

namespace virtual_camera {

/**
 * A camera that is plugged in, as seen through its two pipes: commands come in, data and responses go out. It
 * is there as long as its file is, whichever process takes that away.
 *
 * Every function may be called from any thread; one mutex covers all but what never changes. Functions that
 * move bytes return 0 or an error of libusb.
 */
class Camera {
public:
    explicit Camera(Description description);

    const Description& description() const { return description_; }
    bool is_there() const;

    /// One claim at a time, of all processes: a lock on the camera's file.
    int claim();
    void release();

    int send(const uint8_t* bytes, size_t length);
    int receive(uint8_t* bytes, size_t most, size_t& got, unsigned timeout);
    /// Forgets what is still to be sent.
    void cancel();
    /// As after a reset of USB: no session.
    void reset();

    /// Transactions since it was plugged in, of one operation or (0) of all; in this process.
    uint64_t transactions(uint16_t operation) const;
    uint64_t bytes_sent() const { return bytes_sent_; }

private:
    /// What goes out as one transfer of USB.
    struct Outgoing {
        std::vector<uint8_t> head;
        Payload payload;
        uint64_t size = 0;  ///< of both; more than there is goes out as zeros
        uint64_t sent = 0;
        bool severed = false;  ///< the camera goes in the middle
    };

    void pull();
    std::vector<Fault> faults_of(uint16_t operation) const;
    int answer(const Command& command);
    void queue_data(const Command& command, Payload payload, const std::vector<Fault>& faults);
    void queue_response(const Command& command, uint16_t code);
    bool waits_too_long(unsigned timeout);
    size_t take(Outgoing& outgoing, uint8_t* bytes, size_t most);
    void write_log(const Command& command, const Answer& answer) const;

    const Description description_;
    const std::string identity_;
    std::atomic<bool> pulled_{false};
    std::atomic<uint64_t> bytes_sent_{0};

    mutable std::mutex mutex_;
    files::Descriptor claim_;                  // by mutex_
    Responder responder_;                      // by mutex_
    std::deque<Outgoing> outgoing_;            // by mutex_
    std::map<uint16_t, uint64_t> operations_;  // by mutex_
    uint64_t all_operations_ = 0;              // by mutex_
    bool stalled_ = false;                     // by mutex_
    unsigned delay_ = 0;                       // by mutex_, milliseconds before the next answer
};

/// The cameras that are plugged in now. The same camera is the same object as long as it is there.
std::vector<std::shared_ptr<Camera>> plugged_cameras();

/// Where cameras are described; empty without such a place.
std::string camera_directory();

}  // namespace virtual_camera

#endif
