#include "platform/mtp/host/transport.h"

#include <libmtp.h>
#include <libusb-1.0/libusb.h>

#include <algorithm>
#include <utility>

#include "dlog.h"
#include "platform/mtp/host/call_table.h"
#include "platform/mtp/host/chatter.h"

namespace mtp {

namespace {

constexpr char kTag[] = "MTP";
constexpr unsigned kLongestWait = 20000;  ///< milliseconds
constexpr unsigned kMostPackets = 16;
constexpr unsigned kMostBusy = 25;
constexpr uint64_t kMostDiscarded = uint64_t{64} << 20U;

constexpr size_t kHeadSize = 12;
constexpr uint16_t kCommand = 1;
constexpr uint16_t kData = 2;
constexpr uint16_t kResponse = 3;
constexpr uint32_t kUnknownLength = 0xFFFFFFFF;
constexpr uint16_t kOk = 0x2001;
constexpr uint16_t kDeviceBusy = 0x2019;

constexpr uint16_t kGetObjectHandles = 0x1007;
constexpr uint16_t kGetObjectInfo = 0x1008;
constexpr uint16_t kGetObject = 0x1009;
constexpr uint16_t kGetThumb = 0x100A;

constexpr uint8_t kCancelRequest = 0x64;
constexpr uint8_t kStatusRequest = 0x67;

/// libmtp reads this much of an object's description without asking whether it is there.
constexpr uint64_t kShortestDescription = 57;
constexpr size_t kWidthAt = 26;
constexpr size_t kNameLengthAt = 52;
constexpr uint64_t kLongestDescription = 4096;
constexpr uint64_t kLongestList = uint64_t{4} << 20U;  ///< a million objects
constexpr uint64_t kLongestThumbnail = uint64_t{16} << 20U;
/// Of all that libmtp holds in memory. A whole object goes to a file.
constexpr uint64_t kLongestAnswer = uint64_t{80} << 20U;

thread_local Transport* current = nullptr;

uint16_t little16(const unsigned char* bytes) {
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

uint32_t little32(const unsigned char* bytes) {
    return little16(bytes) | static_cast<uint32_t>(little16(bytes + 2)) << 16U;
}

uint64_t longest_answer(uint16_t operation) {
    switch (operation) {
        case kGetObjectHandles:
            return kLongestList;
        case kGetObjectInfo:
            return kLongestDescription;
        case kGetThumb:
            return kLongestThumbnail;
        case kGetObject:
            return UINT64_MAX;
        default:
            return kLongestAnswer;
    }
}

}  // namespace

Transport::Use::Use(Transport& transport) {
    transport.failure_ = Failure::kNone;
    transport.response_ = 0;
    transport.refusal_ = 0;
    transport.refused_operation_ = 0;
    current = &transport;
}

Transport::Use::~Use() {
    current = nullptr;
    end_log_line();
}

int Transport::silence() const {
    return gone_ ? LIBUSB_ERROR_NO_DEVICE : LIBUSB_ERROR_IO;
}

int Transport::fail(Failure failure, int code) {
    if (failure == Failure::kGone) {
        gone_ = true;
    }
    if (failure_ == Failure::kNone) {
        failure_ = failure;
    }
    return code;
}

int Transport::nonsense(const char* what) {
    __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "device answers operation 0x%04x with %s", operation_, what);
    return fail(Failure::kNonsense, LIBUSB_ERROR_IO);
}

/// Takes a result of libusb over.
int Transport::note(int code) {
    switch (code) {
        case LIBUSB_SUCCESS:
            return code;
        case LIBUSB_ERROR_NO_DEVICE:
            return fail(Failure::kGone, code);
        case LIBUSB_ERROR_TIMEOUT:
            return fail(Failure::kTimeout, code);
        case LIBUSB_ERROR_ACCESS:
        case LIBUSB_ERROR_BUSY:
            return fail(Failure::kBusy, code);
        default:
            return fail(Failure::kOther, code);
    }
}

void Transport::begin_transaction(const unsigned char* data, size_t length) {
    if (length < kHeadSize || little16(data + 4) != kCommand) {
        return;
    }
    operation_ = little16(data + 6);
    object_ = length >= kHeadSize + 4 ? little32(data + kHeadSize) : 0;
    phase_ = Phase::kHead;
    endless_ = false;
    announced_ = 0;
    received_ = 0;
    packets_ = 0;
    busy_ = 0;
    description_.clear();
}

int Transport::check_received(const unsigned char* data, size_t length, bool ended) {
    switch (phase_) {
        case Phase::kData:
            keep(data, length);
            return check_data(length, ended);
        case Phase::kCancelled:
            return check_discarded(length);
        default:
            return check_head(data, length, ended);
    }
}

int Transport::check_head(const unsigned char* data, size_t length, bool ended) {
    // libmtp goes on as long as something comes that is no response.
    if (++packets_ > kMostPackets) {
        return nonsense("packets without end");
    }
    if (length == 0) {
        return LIBUSB_SUCCESS;
    }
    const uint32_t container = length >= kHeadSize ? little32(data) : 0;
    if (container < kHeadSize) {
        return nonsense("less than a container");
    }
    if (little16(data + 4) == kResponse) {
        take_response(little16(data + 6));
        return received_ == announced_ || endless_ ? LIBUSB_SUCCESS : nonsense("less data than announced");
    }
    if (little16(data + 4) != kData || announced_ > 0) {
        return LIBUSB_SUCCESS;  // libmtp knows what to do with it
    }
    endless_ = container == kUnknownLength;
    announced_ = endless_ ? 0 : container - kHeadSize;
    if (const int result = check_announced(); result != LIBUSB_SUCCESS) {
        return result;
    }
    phase_ = Phase::kData;
    keep(data + kHeadSize, length - kHeadSize);
    // Some devices send the head on its own.
    return check_data(length - kHeadSize, ended && length != kHeadSize);
}

int Transport::check_announced() {
    const bool known_limit = operation_ != kGetObject;
    if (announced_ > longest_answer(operation_) || (endless_ && known_limit)) {
        return nonsense("more data than can be");
    }
    if (operation_ == kGetObjectInfo && announced_ < kShortestDescription) {
        return nonsense("a description that is too short");
    }
    return LIBUSB_SUCCESS;
}

int Transport::check_data(size_t length, bool ended) {
    received_ += length;
    if (!endless_ && received_ > announced_) {
        return nonsense("more data than announced");
    }
    if (!endless_ && ended && received_ < announced_) {
        return nonsense("less data than announced");
    }
    if (endless_ ? ended : received_ == announced_) {
        phase_ = Phase::kHead;
    }
    return LIBUSB_SUCCESS;
}

int Transport::check_discarded(size_t length) {
    received_ += length;
    packets_ += length == 0 ? 1 : 0;
    const bool stops = received_ <= kMostDiscarded && packets_ <= kMostPackets;
    return stops ? LIBUSB_SUCCESS : nonsense("data without end");
}

void Transport::take_response(uint16_t code) {
    response_ = code;
    if (code != kOk && refusal_ == 0) {
        refusal_ = code;
        refused_operation_ = operation_;
    }
    if (code == kOk && operation_ == kGetObjectInfo) {
        keep_pixels();
    }
}

void Transport::keep(const unsigned char* data, size_t length) {
    if (operation_ == kGetObjectInfo && description_.size() + length <= kLongestDescription) {
        description_.insert(description_.end(), data, data + length);
    }
}

void Transport::keep_pixels() {
    if (description_.size() < kShortestDescription) {
        return;
    }
    // Some devices tell an object's size with 64 bits; the name's length then comes four bytes later.
    const bool wide = description_[kNameLengthAt] == 0 && description_[kNameLengthAt + 4] != 0;
    const unsigned char* const width = description_.data() + kWidthAt + (wide ? 4 : 0);
    const Pixels pixels = {little32(width), little32(width + 4)};
    if (pixels.width != 0 || pixels.height != 0) {
        pixels_[object_] = pixels;
    }
}

Transport::Pixels Transport::take_pixels(uint32_t object) {
    const auto taken = pixels_.extract(object);
    return taken ? taken.mapped() : Pixels();
}

void Transport::close_leftovers() {
    if (libusb_device_handle* const handle = std::exchange(handle_, nullptr)) {
        libusb_close(handle);
    }
}

int Transport::open(libusb_device* device, libusb_device_handle** handle) {
    const int result = libusb_open(device, handle);
    if (current != nullptr) {
        current->handle_ = result == LIBUSB_SUCCESS ? *handle : nullptr;
        return current->note(result);
    }
    return result;
}

void Transport::close(libusb_device_handle* handle) {
    if (current != nullptr && current->handle_ == handle) {
        current->handle_ = nullptr;
    }
    libusb_close(handle);
}

int Transport::claim(libusb_device_handle* handle, int interface_number) {
    const int result = libusb_claim_interface(handle, interface_number);
    return current != nullptr ? current->note(result) : result;
}

// libmtp resets a device once, to have another try at a session.
int Transport::reset(libusb_device_handle* handle) {
    if (current != nullptr && (current->gone_ || current->muted_)) {
        return current->silence();
    }
    const int result = libusb_reset_device(handle);
    if (current != nullptr && result == LIBUSB_SUCCESS) {
        current->failure_ = Failure::kNone;
        current->phase_ = Phase::kHead;
    }
    return result;
}

int Transport::bulk(libusb_device_handle* handle, unsigned char endpoint, unsigned char* data, int length,
                    int* transferred, unsigned timeout) {
    if (current == nullptr) {
        return libusb_bulk_transfer(handle, endpoint, data, length, transferred, timeout);
    }
    Transport& transport = *current;
    *transferred = 0;
    if (transport.silent()) {
        return transport.silence();
    }
    const bool sends = (endpoint & LIBUSB_ENDPOINT_DIR_MASK) == LIBUSB_ENDPOINT_OUT;
    if (sends) {
        transport.begin_transaction(data, static_cast<size_t>(std::max(length, 0)));
    }
    const unsigned wait = timeout == 0 ? kLongestWait : std::min(timeout, kLongestWait);
    const int result = libusb_bulk_transfer(handle, endpoint, data, length, transferred, wait);
    if (result == LIBUSB_ERROR_TIMEOUT && transport.phase_ == Phase::kCancelled) {
        return result;  // that is how libmtp finds the end
    }
    if (result != LIBUSB_SUCCESS || sends) {
        return transport.note(result);
    }
    return transport.check_received(data, static_cast<size_t>(*transferred), *transferred < length);
}

int Transport::control(libusb_device_handle* handle, uint8_t type, uint8_t request, uint16_t value,
                       uint16_t index, unsigned char* data, uint16_t length, unsigned timeout) {
    if (current == nullptr) {
        return libusb_control_transfer(handle, type, request, value, index, data, length, timeout);
    }
    Transport& transport = *current;
    if (transport.silent()) {
        return transport.silence();
    }
    const bool is_class = (type & LIBUSB_REQUEST_TYPE_CLASS) != 0;
    if (is_class && request == kCancelRequest) {
        transport.phase_ = Phase::kCancelled;
        transport.received_ = 0;
    }
    const unsigned wait = timeout == 0 ? kLongestWait : std::min(timeout, kLongestWait);
    const int result = libusb_control_transfer(handle, type, request, value, index, data, length, wait);
    if (result == LIBUSB_ERROR_NO_DEVICE) {
        return transport.note(result);
    }
    if (is_class && request == kStatusRequest && result >= 4 && little16(data + 2) == kDeviceBusy &&
        ++transport.busy_ > kMostBusy) {
        return transport.nonsense("being busy without end");
    }
    return result;
}

bool guard_libmtp() {
    static FILE* stream = log_stream();
    const Replacement needed[] = {
        {"libusb_open", reinterpret_cast<void*>(&Transport::open)},
        {"libusb_close", reinterpret_cast<void*>(&Transport::close)},
        {"libusb_claim_interface", reinterpret_cast<void*>(&Transport::claim)},
        {"libusb_reset_device", reinterpret_cast<void*>(&Transport::reset)},
        {"libusb_bulk_transfer", reinterpret_cast<void*>(&Transport::bulk)},
        {"libusb_control_transfer", reinterpret_cast<void*>(&Transport::control)},
        {"stdout", &stream},
        {"stderr", &stream},
    };
    // Whether libmtp has these depends on how it was compiled.
    const Replacement others[] = {
        {"puts", reinterpret_cast<void*>(&log_puts)},
        {"putchar", reinterpret_cast<void*>(&log_putchar)},
        {"perror", reinterpret_cast<void*>(&log_perror)},
        {"__printf_chk", reinterpret_cast<void*>(&log_printf)},
    };
    const void* const libmtp = reinterpret_cast<const void*>(&LIBMTP_Init);
    static const bool guarded =
        stream != nullptr &&
        std::all_of(std::begin(needed), std::end(needed),
                    [libmtp](const Replacement& one) { return replace_imports(libmtp, &one, 1) > 0; }) &&
        replace_imports(libmtp, others, std::size(others)) <= std::size(others);
    return guarded;
}

}  // namespace mtp
