#include "platform/mtp/virtual-camera/responder.h"

#include <algorithm>

#include "platform/mtp/virtual-camera/dataset.h"
#include "platform/mtp/virtual-camera/ptp_codes.h"

namespace virtual_camera {

namespace {

constexpr uint16_t kVersion = 100;
constexpr uint32_t kMtpExtension = 6;
constexpr uint32_t kTooLarge = 0xFFFFFFFF;  ///< stands for sizes of 4 GiB and more

constexpr uint16_t kUint16 = 0x0004;
constexpr uint16_t kUint32 = 0x0006;
constexpr uint16_t kUint64 = 0x0008;
constexpr uint16_t kText = 0xFFFF;

struct Property {
    uint16_t code;
    uint16_t type;
};

constexpr Property kProperties[] = {
    {property::kStorageId, kUint32}, {property::kFormat, kUint16}, {property::kSize, kUint64},
    {property::kFileName, kText},    {property::kParent, kUint32},
};

Answer with_data(Dataset& dataset) {
    Payload payload;
    payload.bytes = std::move(dataset.bytes());
    return {response::kOk, std::move(payload)};
}

Answer refusal(uint16_t code) {
    return {code, std::nullopt};
}

uint32_t narrow(uint64_t size) {
    return size >= kTooLarge ? kTooLarge : static_cast<uint32_t>(size);
}

const Property* find_property(uint16_t code) {
    const auto* const it = std::find_if(std::begin(kProperties), std::end(kProperties),
                                        [code](const Property& property) { return property.code == code; });
    return it != std::end(kProperties) ? it : nullptr;
}

void add_value(Dataset& dataset, const Object& object, uint16_t code, const Disguise& disguise) {
    switch (code) {
        case property::kStorageId:
            dataset.u32(object.storage);
            break;
        case property::kFormat:
            dataset.u16(object.format);
            break;
        case property::kSize:
            dataset.u64(disguise.size.value_or(object.size));
            break;
        case property::kFileName:
            dataset.text(disguise.name.value_or(object.name));
            break;
        default:
            dataset.u32(object.parent);
            break;
    }
}

}  // namespace

std::vector<uint8_t> Payload::read(uint64_t at, size_t most) const {
    if (object) {
        return Card::read(*object, offset + at, static_cast<size_t>(std::min<uint64_t>(most, length - at)));
    }
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    return {first, first + static_cast<std::ptrdiff_t>(std::min<uint64_t>(most, bytes.size() - at))};
}

Answer Responder::answer(const Command& command, const Disguise& disguise) {
    if (command.operation == op::kGetDeviceInfo) {
        return device_info();
    }
    if (command.operation == op::kOpenSession) {
        return open_session();
    }
    if (!session_open_) {
        return refusal(response::kSessionNotOpen);
    }
    if (!can(command.operation)) {
        return refusal(response::kOperationNotSupported);
    }
    const uint32_t first = command.parameters[0];
    switch (command.operation) {
        case op::kCloseSession:
            session_open_ = false;
            return refusal(response::kOk);
        case op::kGetStorageIds: {
            Dataset ids;
            return with_data(ids.u32_array(card_.storages()));
        }
        case op::kGetStorageInfo:
            return storage_info(first);
        case op::kGetObjectHandles:
            return object_handles(command);
        case op::kGetObjectPropsSupported:
            return properties_supported();
        case op::kGetObjectPropDesc:
            return property_description(static_cast<uint16_t>(first));
        default:
            return with_object(command, disguise);
    }
}

Answer Responder::with_object(const Command& command, const Disguise& disguise) const {
    const uint32_t handle = command.parameters[0];
    if (card_.find(handle) == nullptr) {
        return refusal(response::kInvalidObject);
    }
    switch (command.operation) {
        case op::kGetObjectInfo:
            return object_info(handle, disguise);
        case op::kGetObject:
            return whole_object(handle);
        case op::kGetThumb:
            return thumbnail(handle);
        case op::kGetPartialObject:
            return range(handle, command.parameters[1], command.parameters[2]);
        case op::kGetPartialObject64:
            return range(handle, command.parameters[1] | static_cast<uint64_t>(command.parameters[2]) << 32U,
                         command.parameters[3]);
        case op::kGetObjectPropValue:
            return property_value(handle, static_cast<uint16_t>(command.parameters[1]), disguise);
        default:
            return property_list(handle, disguise);
    }
}

std::vector<uint16_t> Responder::operations() const {
    std::vector<uint16_t> operations = {op::kGetDeviceInfo, op::kOpenSession,    op::kCloseSession,
                                        op::kGetStorageIds, op::kGetStorageInfo, op::kGetObjectHandles,
                                        op::kGetObjectInfo, op::kGetObject,      op::kGetThumb};
    if (description_.ranges) {
        operations.push_back(op::kGetPartialObject);
    }
    if (description_.wide_ranges) {
        operations.push_back(op::kGetPartialObject64);
    }
    if (description_.kind != Kind::kPtp) {
        operations.insert(operations.end(),
                          {op::kGetObjectPropsSupported, op::kGetObjectPropDesc, op::kGetObjectPropValue});
    }
    if (description_.kind == Kind::kMtp) {
        operations.push_back(op::kGetObjectPropList);
    }
    return operations;
}

bool Responder::can(uint16_t operation) const {
    const std::vector<uint16_t> known = operations();
    return std::find(known.begin(), known.end(), operation) != known.end();
}

Answer Responder::device_info() const {
    const bool mtp = description_.kind != Kind::kPtp;
    Dataset info;
    info.u16(kVersion)
        .u32(mtp ? kMtpExtension : 0)
        .u16(kVersion)
        .text(mtp ? "microsoft.com: 1.0;" : "")
        .u16(0)
        .u16_array(operations())
        .u16_array({})
        .u16_array({})
        .u16_array({format::kJpeg})
        .u16_array({format::kFolder, format::kJpeg, format::kPng})
        .text(description_.vendor)
        .text(description_.model)
        .text("1.0")
        .text(description_.serial);
    return with_data(info);
}

Answer Responder::open_session() {
    if (session_open_) {
        return refusal(response::kSessionAlreadyOpen);
    }
    session_open_ = true;
    return refusal(response::kOk);
}

Answer Responder::storage_info(uint32_t storage) const {
    if (!card_.has_storage(storage)) {
        return refusal(response::kInvalidStorage);
    }
    constexpr uint16_t kRemovable = 4;
    constexpr uint16_t kHierarchical = 3;
    Dataset info;
    info.u16(kRemovable)
        .u16(kHierarchical)
        .u16(1)
        .u64(uint64_t{32} << 30U)
        .u64(uint64_t{16} << 30U)
        .u32(kTooLarge)
        .text("Card")
        .text("CARD");
    return with_data(info);
}

Answer Responder::object_handles(const Command& command) const {
    const uint32_t storage = command.parameters[0];
    const uint32_t parent = command.parameters[2];
    if (storage != kAllStorages && !card_.has_storage(storage)) {
        return refusal(response::kInvalidStorage);
    }
    if (parent != kRootParent &&
        (card_.find(parent) == nullptr || card_.find(parent)->format != format::kFolder)) {
        return refusal(response::kInvalidParent);
    }
    // Some cameras are that strict.
    if (parent != kRootParent && storage != kAllStorages && card_.find(parent)->storage != storage) {
        return refusal(response::kInvalidParent);
    }
    Dataset handles;
    return with_data(handles.u32_array(card_.children(storage, parent)));
}

Answer Responder::object_info(uint32_t handle, const Disguise& disguise) const {
    const Object& object = *card_.find(handle);
    constexpr uint16_t kGenericFolder = 1;
    Dataset info;
    info.u32(object.storage)
        .u16(object.format)
        .u16(0)
        .u32(narrow(disguise.size.value_or(object.size)))
        .u16(object.format == format::kJpeg ? format::kJpeg : 0)
        .u32(0)
        .u32(0)
        .u32(0)
        .u32(object.width)
        .u32(object.height)
        .u32(0)
        .u32(object.parent)
        .u16(object.format == format::kFolder ? kGenericFolder : 0)
        .u32(0)
        .u32(0)
        .text(disguise.name.value_or(object.name))
        .date(object.modified)
        .date(object.modified)
        .text("");
    return with_data(info);
}

Answer Responder::whole_object(uint32_t handle) const {
    const Object& object = *card_.find(handle);
    if (object.format == format::kFolder) {
        return refusal(response::kInvalidObject);
    }
    Payload payload;
    payload.object = object;
    payload.length = object.size;
    return {response::kOk, std::move(payload)};
}

Answer Responder::thumbnail(uint32_t handle) const {
    Payload payload;
    payload.bytes = Card::thumbnail(*card_.find(handle));
    if (payload.bytes.empty()) {
        return refusal(response::kNoThumbnail);
    }
    return {response::kOk, std::move(payload)};
}

Answer Responder::range(uint32_t handle, uint64_t offset, uint32_t length) const {
    const Object& object = *card_.find(handle);
    if (object.format == format::kFolder || offset > object.size) {
        return refusal(response::kInvalidParameter);
    }
    Payload payload;
    payload.object = object;
    payload.offset = offset;
    payload.length = std::min<uint64_t>(length, object.size - offset);
    return {response::kOk, std::move(payload)};
}

Answer Responder::properties_supported() const {
    std::vector<uint16_t> codes;
    for (const Property& property : kProperties) {
        codes.push_back(property.code);
    }
    Dataset properties;
    return with_data(properties.u16_array(codes));
}

Answer Responder::property_description(uint16_t code) const {
    const Property* const property = find_property(code);
    if (property == nullptr || property->type != kUint64) {
        return refusal(response::kInvalidParameter);
    }
    Dataset description;
    return with_data(description.u16(code).u16(property->type).u8(0).u64(0).u32(0).u8(0));
}

Answer Responder::property_value(uint32_t handle, uint16_t code, const Disguise& disguise) const {
    if (find_property(code) == nullptr) {
        return refusal(response::kInvalidParameter);
    }
    Dataset value;
    add_value(value, *card_.find(handle), code, disguise);
    return with_data(value);
}

Answer Responder::property_list(uint32_t handle, const Disguise& disguise) const {
    Dataset list;
    list.u32(static_cast<uint32_t>(std::size(kProperties)));
    for (const Property& property : kProperties) {
        list.u32(handle).u16(property.code).u16(property.type);
        add_value(list, *card_.find(handle), property.code, disguise);
    }
    return with_data(list);
}

}  // namespace virtual_camera
