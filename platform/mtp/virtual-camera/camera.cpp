#include "platform/mtp/virtual-camera/camera.h"

#include <fcntl.h>
#include <libusb-1.0/libusb.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

#include "platform/mtp/virtual-camera/dataset.h"
#include "platform/mtp/virtual-camera/ptp_codes.h"

namespace virtual_camera {

namespace {

constexpr size_t kPacketSize = 512;
constexpr uint64_t kWrongBy = 100;  ///< bytes
constexpr uint64_t kEndless = UINT64_MAX;
constexpr uint32_t kUnknownSize = 0xFFFFFFFF;

std::string identity_of(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    return std::to_string(status.st_ino) + ":" + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec);
}

uint32_t little32(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8U |
           static_cast<uint32_t>(bytes[2]) << 16U | static_cast<uint32_t>(bytes[3]) << 24U;
}

bool parse(const uint8_t* bytes, size_t length, Command& command) {
    const uint32_t type = length >= container::kHeadSize ? little32(bytes + 4) : 0;
    if ((type & 0xFFFFU) != container::kCommand) {
        return false;
    }
    command.operation = static_cast<uint16_t>(type >> 16U);
    command.transaction = little32(bytes + 8);
    for (size_t i = 0; i < std::size(command.parameters) && container::kHeadSize + 4 * (i + 1) <= length;
         ++i) {
        command.parameters[i] = little32(bytes + container::kHeadSize + 4 * i);
    }
    return true;
}

const Fault* find(const std::vector<Fault>& faults, FaultKind kind) {
    const auto it =
        std::find_if(faults.begin(), faults.end(), [kind](const Fault& fault) { return fault.kind == kind; });
    return it != faults.end() ? &*it : nullptr;
}

Disguise disguise_of(const std::vector<Fault>& faults) {
    Disguise disguise;
    if (const Fault* name = find(faults, FaultKind::kName)) {
        disguise.name = name->argument;
    }
    if (const Fault* size = find(faults, FaultKind::kSize)) {
        disguise.size = std::strtoull(size->argument.c_str(), nullptr, 0);
    }
    return disguise;
}

void fill_with_garbage(Payload& payload) {
    payload.bytes.resize(static_cast<size_t>(std::min<uint64_t>(payload.size(), 1U << 20U)));
    payload.object.reset();
    uint32_t state = 12345;
    for (uint8_t& byte : payload.bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<uint8_t>(state >> 24U);
    }
}

}  // namespace

Camera::Camera(Description description)
    : description_(std::move(description)),
      identity_(identity_of(description_.file)),
      responder_(description_) {}

bool Camera::is_there() const {
    return !pulled_ && identity_of(description_.file) == identity_;
}

void Camera::pull() {
    if (!pulled_.exchange(true)) {
        unlink(description_.file.c_str());
    }
}

int Camera::claim() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (claim_) {
        return LIBUSB_ERROR_BUSY;
    }
    files::Descriptor file(open(description_.file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file || !is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        return LIBUSB_ERROR_BUSY;
    }
    claim_ = std::move(file);
    return 0;
}

void Camera::release() {
    const std::lock_guard<std::mutex> lock(mutex_);
    claim_ = files::Descriptor();
}

std::vector<Fault> Camera::faults_of(uint16_t operation) const {
    std::vector<Fault> faults;
    for (const Fault& fault : description_.faults) {
        const auto it = operations_.find(operation);
        const uint64_t number = fault.operation == 0 ? all_operations_ : it->second;
        if ((fault.operation == 0 || fault.operation == operation) && (fault.at == 0 || fault.at == number)) {
            faults.push_back(fault);
        }
    }
    return faults;
}

int Camera::send(const uint8_t* bytes, size_t length) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Command command;
    if (!is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    if (length == 0) {
        return 0;
    }
    if (!parse(bytes, length, command)) {
        return LIBUSB_ERROR_PIPE;
    }
    return answer(command);
}

int Camera::answer(const Command& command) {
    ++operations_[command.operation];
    ++all_operations_;
    outgoing_.clear();
    stalled_ = false;
    const std::vector<Fault> faults = faults_of(command.operation);
    if (find(faults, FaultKind::kUnplug) != nullptr) {
        pull();
        return LIBUSB_ERROR_NO_DEVICE;
    }
    if (const Fault* slow = find(faults, FaultKind::kSlow)) {
        delay_ = static_cast<unsigned>(std::strtoul(slow->argument.c_str(), nullptr, 10));
    }
    stalled_ = find(faults, FaultKind::kStall) != nullptr;
    if (find(faults, FaultKind::kVanish) != nullptr) {
        responder_.card().remove(command.parameters[0]);
    }
    Answer answer = responder_.answer(command, disguise_of(faults));
    if (const Fault* refuse = find(faults, FaultKind::kRefuse)) {
        answer = {static_cast<uint16_t>(std::strtoul(refuse->argument.c_str(), nullptr, 0)), std::nullopt};
    }
    write_log(command, answer);
    if (answer.data) {
        queue_data(command, std::move(*answer.data), faults);
    }
    queue_response(command, answer.code);
    return 0;
}

void Camera::queue_data(const Command& command, Payload payload, const std::vector<Fault>& faults) {
    if (find(faults, FaultKind::kGarbage) != nullptr) {
        fill_with_garbage(payload);
    }
    uint64_t size = container::kHeadSize + payload.size();
    uint64_t announced = size;
    if (find(faults, FaultKind::kShort) != nullptr) {
        announced += kWrongBy;
    }
    if (find(faults, FaultKind::kLong) != nullptr) {
        size += kWrongBy;
    }
    if (find(faults, FaultKind::kFlood) != nullptr) {
        size = kEndless;
    }
    if (find(faults, FaultKind::kCut) != nullptr) {
        size = container::kHeadSize / 2;
    }
    Dataset head;
    head.u32(announced >= kUnknownSize ? kUnknownSize : static_cast<uint32_t>(announced))
        .u16(container::kData)
        .u16(command.operation)
        .u32(command.transaction);
    Outgoing outgoing;
    outgoing.head = std::move(head.bytes());
    outgoing.payload = std::move(payload);
    outgoing.size = size;
    outgoing.severed = find(faults, FaultKind::kSever) != nullptr;
    outgoing_.push_back(std::move(outgoing));
}

void Camera::queue_response(const Command& command, uint16_t code) {
    Dataset head;
    head.u32(container::kHeadSize).u16(container::kResponse).u16(code).u32(command.transaction);
    Outgoing outgoing;
    outgoing.head = std::move(head.bytes());
    outgoing.size = outgoing.head.size();
    outgoing_.push_back(std::move(outgoing));
}

// A slow camera can still be pulled out while it thinks.
bool Camera::waits_too_long(unsigned timeout) {
    const auto begin = std::chrono::steady_clock::now();
    const auto delay = std::chrono::milliseconds(std::exchange(delay_, 0U));
    while (is_there() && std::chrono::steady_clock::now() - begin < delay) {
        if (timeout != 0 && std::chrono::steady_clock::now() - begin >= std::chrono::milliseconds(timeout)) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

int Camera::receive(uint8_t* bytes, size_t most, size_t& got, unsigned timeout) {
    const std::lock_guard<std::mutex> lock(mutex_);
    got = 0;
    if (waits_too_long(timeout)) {
        return LIBUSB_ERROR_TIMEOUT;
    }
    if (!is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    if (stalled_ || outgoing_.empty()) {
        return LIBUSB_ERROR_TIMEOUT;
    }
    Outgoing& outgoing = outgoing_.front();
    if (outgoing.severed && (outgoing.sent + most) * 2 >= outgoing.size) {
        pull();
        return LIBUSB_ERROR_NO_DEVICE;
    }
    const uint64_t left = outgoing.size - outgoing.sent;
    got = take(outgoing, bytes, static_cast<size_t>(std::min<uint64_t>(most, left)));
    bytes_sent_ += got;
    // A transfer ends with a short packet; one that ends with a full packet has an empty one behind it, which
    // goes with the rest if there is room for more.
    if (outgoing.sent == outgoing.size && (got < most || outgoing.size % kPacketSize != 0)) {
        outgoing_.pop_front();
    }
    return 0;
}

size_t Camera::take(Outgoing& outgoing, uint8_t* bytes, size_t most) {
    size_t got = 0;
    while (got < most) {
        const uint64_t at = outgoing.sent;
        std::vector<uint8_t> piece(most - got, 0);
        if (at < outgoing.head.size()) {
            piece.assign(outgoing.head.begin() + static_cast<std::ptrdiff_t>(at), outgoing.head.end());
        } else if (at - outgoing.head.size() < outgoing.payload.size()) {
            const std::vector<uint8_t> read = outgoing.payload.read(at - outgoing.head.size(), most - got);
            // A file that became shorter goes on with zeros.
            piece = read.empty() ? piece : read;
        }
        const size_t length = std::min(piece.size(), most - got);
        std::memcpy(bytes + got, piece.data(), length);
        got += length;
        outgoing.sent += length;
    }
    return got;
}

void Camera::cancel() {
    const std::lock_guard<std::mutex> lock(mutex_);
    outgoing_.clear();
    stalled_ = false;
}

void Camera::reset() {
    const std::lock_guard<std::mutex> lock(mutex_);
    outgoing_.clear();
    stalled_ = false;
    responder_.end_session();
}

uint64_t Camera::transactions(uint16_t operation) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto it = operations_.find(operation);
    return operation == 0 ? all_operations_ : it != operations_.end() ? it->second : 0;
}

void Camera::write_log(const Command& command, const Answer& answer) const {
    if (description_.log.empty()) {
        return;
    }
    const files::Descriptor file(
        open(description_.log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    char line[256];
    const int length = std::snprintf(line, sizeof line, "%s %u %u %u -> 0x%04x, %llu bytes\n",
                                     operation_name(command.operation).c_str(), command.parameters[0],
                                     command.parameters[1], command.parameters[2], answer.code,
                                     static_cast<unsigned long long>(answer.data ? answer.data->size() : 0));
    if (!file || write(file.get(), line, static_cast<size_t>(length)) != length) {
        std::fprintf(stderr, "virtual camera: cannot write %s\n", description_.log.c_str());
    }
}

std::string camera_directory() {
    const char* directory = std::getenv("QRA_VIRTUAL_CAMERAS");
    return directory != nullptr ? directory : "";
}

std::vector<std::shared_ptr<Camera>> plugged_cameras() {
    static std::mutex mutex;
    static auto* const cameras = new std::map<std::string, std::shared_ptr<Camera>>;
    const std::lock_guard<std::mutex> lock(mutex);
    std::map<std::string, std::shared_ptr<Camera>> now;
    for (auto& [identity, description] : read_cameras(camera_directory())) {
        const auto known = cameras->find(identity);
        now[identity] = known != cameras->end() ? known->second : std::make_shared<Camera>(description);
    }
    cameras->swap(now);
    std::vector<std::shared_ptr<Camera>> list;
    for (const auto& [identity, camera] : *cameras) {
        if (camera->is_there()) {
            list.push_back(camera);
        }
    }
    return list;
}

}  // namespace virtual_camera
