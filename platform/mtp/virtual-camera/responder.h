#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_RESPONDER_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_RESPONDER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/mtp/virtual-camera/card.h"
#include "platform/mtp/virtual-camera/description.h"

namespace virtual_camera {

struct Command {
    uint16_t operation = 0;
    uint32_t transaction = 0;
    uint32_t parameters[5] = {};
};

/// What is sent in a data phase: bytes, or a range of an object that is read as it goes.
struct Payload {
    std::vector<uint8_t> bytes;
    std::optional<Object> object;
    uint64_t offset = 0;
    uint64_t length = 0;  ///< of the object's range

    uint64_t size() const { return object ? length : bytes.size(); }
    std::vector<uint8_t> read(uint64_t at, size_t most) const;
};

struct Answer {
    uint16_t code;
    std::optional<Payload> data;
};

/// How a fault changes the description of an object.
struct Disguise {
    std::optional<std::string> name;
    std::optional<uint64_t> size;
};

/// Answers the operations of PTP, and those of MTP that the camera has. Belongs to one thread at a time.
class Responder {
public:
    explicit Responder(const Description& description) : description_(description), card_(description) {}

    Answer answer(const Command& command, const Disguise& disguise);
    Card& card() { return card_; }
    void end_session() { session_open_ = false; }

private:
    Answer device_info() const;
    Answer open_session();
    Answer storage_info(uint32_t storage) const;
    Answer object_handles(const Command& command) const;
    Answer object_info(uint32_t handle, const Disguise& disguise) const;
    Answer whole_object(uint32_t handle) const;
    Answer thumbnail(uint32_t handle) const;
    Answer range(uint32_t handle, uint64_t offset, uint32_t length) const;
    Answer property_description(uint16_t property) const;
    Answer property_value(uint32_t handle, uint16_t property, const Disguise& disguise) const;
    Answer property_list(uint32_t handle, const Disguise& disguise) const;
    Answer properties_supported() const;
    std::vector<uint16_t> operations() const;
    bool can(uint16_t operation) const;
    Answer with_object(const Command& command, const Disguise& disguise) const;

    const Description description_;
    Card card_;
    bool session_open_ = false;
};

}  // namespace virtual_camera

#endif
