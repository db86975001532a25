#ifndef QRA_PLATFORM_MTP_HOST_TRANSPORT_H
#define QRA_PLATFORM_MTP_HOST_TRANSPORT_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

struct libusb_device;
struct libusb_device_handle;

namespace mtp {

/**
 * Watches what libmtp and one device say to each other on USB: it knows how the last transaction ended, which
 * libmtp often does not tell, and lets nothing through that libmtp could not bear.
 *
 *  - A device that is gone is asked nothing more, and after a failure nothing more is asked in the same call.
 *  - Containers that are too short for their head, longer than announced, or longer than any answer of their
 * kind, end the transaction. So does a device that sends anything else, or says that it is busy, without end.
 *  - The pixels of a picture's description are kept: libmtp does not hand them out.
 *
 * Belongs to the thread that makes calls for the device, which makes it the current one with Use. gone() may
 * be asked from any thread.
 */
class Transport {
public:
    enum class Failure {
        kNone,
        kGone,      ///< pulled out
        kBusy,      ///< cannot be opened or claimed
        kTimeout,   ///< no answer in time
        kNonsense,  ///< what came cannot be
        kOther
    };

    struct Pixels {
        uint32_t width = 0;
        uint32_t height = 0;
    };

    /// Makes a transport that of the calls of this thread, and forgets how the last call ended.
    class Use {
    public:
        explicit Use(Transport& transport);
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
    };

    bool gone() const { return gone_; }
    /// What went wrong first since the use began.
    Failure failure() const { return failure_; }
    /// The last response since the use began: a code of PTP, 0 for none.
    uint16_t response() const { return response_; }
    /// The first response since the use began that was no success; 0 for none.
    uint16_t refusal() const { return refusal_; }
    /// The operation that refusal() answered.
    uint16_t refused_operation() const { return refused_operation_; }
    /// The size of a picture whose description came in this session, once; zeros for any other object.
    Pixels take_pixels(uint32_t object);

    /// From here on the device is asked nothing more: for a session that is of no use.
    void mute() { muted_ = true; }
    /// Closes what libmtp opened and did not close.
    void close_leftovers();

    // What libmtp calls instead of the functions of libusb; without a transport in use they are the same.
    static int open(libusb_device* device, libusb_device_handle** handle);
    static void close(libusb_device_handle* handle);
    static int claim(libusb_device_handle* handle, int interface_number);
    static int reset(libusb_device_handle* handle);
    static int bulk(libusb_device_handle* handle, unsigned char endpoint, unsigned char* data, int length,
                    int* transferred, unsigned timeout);
    static int control(libusb_device_handle* handle, uint8_t type, uint8_t request, uint16_t value,
                       uint16_t index, unsigned char* data, uint16_t length, unsigned timeout);

private:
    enum class Phase { kHead, kData, kCancelled };

    bool silent() const { return muted_ || gone_ || failure_ != Failure::kNone; }
    int silence() const;
    int fail(Failure failure, int code);
    int nonsense(const char* what);
    int note(int code);
    void begin_transaction(const unsigned char* data, size_t length);
    int check_received(const unsigned char* data, size_t length, bool ended);
    int check_head(const unsigned char* data, size_t length, bool ended);
    int check_announced();
    int check_data(size_t length, bool ended);
    int check_discarded(size_t length);
    void take_response(uint16_t code);
    void keep(const unsigned char* data, size_t length);
    void keep_pixels();

    std::atomic<bool> gone_{false};
    Failure failure_ = Failure::kNone;
    uint16_t response_ = 0;
    uint16_t refusal_ = 0;
    uint16_t refused_operation_ = 0;
    uint16_t operation_ = 0;
    uint32_t object_ = 0;  ///< the first parameter of the operation
    bool muted_ = false;
    Phase phase_ = Phase::kHead;  ///< what comes next; after a cancelled transfer it is thrown away
    bool endless_ = false;        ///< the device could not tell how long the data is
    uint64_t announced_ = 0;      ///< bytes of the data phase
    uint64_t received_ = 0;       ///< of them
    unsigned packets_ = 0;        ///< packets with a container's head, or empty, since the operation began
    unsigned busy_ = 0;           ///< answers in a row that the device is busy
    std::vector<uint8_t> description_;
    std::unordered_map<uint32_t, Pixels> pixels_;
    libusb_device_handle* handle_ = nullptr;
};

/**
 * Has libmtp call the functions above, and send its texts to the log. Once in a process; later calls tell the
 * same.
 *
 * @return false if libmtp's table of imports could not be changed
 */
bool guard_libmtp();

}  // namespace mtp

#endif
