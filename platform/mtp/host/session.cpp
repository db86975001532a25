#include "platform/mtp/host/session.h"

#include <libmtp.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "platform/mtp/host/output_file.h"

namespace mtp {

namespace {

constexpr uint16_t kGetObjectHandles = 0x1007;

constexpr uint16_t kOperationNotSupported = 0x2005;
constexpr uint16_t kInvalidStorage = 0x2008;
constexpr uint16_t kInvalidObject = 0x2009;
constexpr uint16_t kNoThumbnail = 0x2010;
constexpr uint16_t kStoreNotAvailable = 0x2013;
constexpr uint16_t kInvalidParent = 0x201A;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using Bytes = std::unique_ptr<unsigned char, Free>;
using Text = std::unique_ptr<char, Free>;

struct DestroyFile {
    void operator()(LIBMTP_file_t* file) const { LIBMTP_destroy_file_t(file); }
};
using File = std::unique_ptr<LIBMTP_file_t, DestroyFile>;

/// The entry of libmtp's own table, which knows what some devices do wrong.
LIBMTP_device_entry_t entry_of(const UsbIdentity& identity) {
    LIBMTP_device_entry_t* table = nullptr;
    int count = 0;
    LIBMTP_Get_Supported_Devices_List(&table, &count);
    for (int i = 0; i < count; ++i) {
        if (table[i].vendor_id == identity.vendor && table[i].product_id == identity.product) {
            return table[i];
        }
    }
    static char unknown[] = "unknown";
    return {unknown, identity.vendor, unknown, identity.product, 0};
}

int error_of_failure(Transport::Failure failure) {
    switch (failure) {
        case Transport::Failure::kNone:
            return MTP_ERROR_NONE;
        case Transport::Failure::kGone:
            return MTP_ERROR_NO_DEVICE;
        case Transport::Failure::kBusy:
            return MTP_ERROR_BUSY;
        default:
            return MTP_ERROR_IO;
    }
}

int error_of_response(uint16_t response) {
    switch (response) {
        case kInvalidStorage:
        case kInvalidObject:
        case kInvalidParent:
        case kStoreNotAvailable:
            return MTP_ERROR_NO_OBJECT;
        case kOperationNotSupported:
        case kNoThumbnail:
            return MTP_ERROR_NOT_SUPPORTED;
        default:
            return MTP_ERROR_IO;
    }
}

uint16_t put(void*, void* sink, uint32_t length, unsigned char* bytes, uint32_t* taken) {
    *taken = length;
    return (*static_cast<const Sink*>(sink))(bytes, length) ? LIBMTP_HANDLER_RETURN_OK
                                                            : LIBMTP_HANDLER_RETURN_CANCEL;
}

}  // namespace

std::unique_ptr<Session> Session::open(const UsbIdentity& identity, Transport& transport, int& error) {
    // libmtp makes its context of libusb at the first one.
    static std::mutex opening;
    const std::lock_guard<std::mutex> lock(opening);
    LIBMTP_raw_device_t raw{};
    raw.device_entry = entry_of(identity);
    raw.bus_location = identity.bus;
    raw.devnum = identity.device;
    LIBMTP_mtpdevice_t* const device = LIBMTP_Open_Raw_Device_Uncached(&raw);
    if (device == nullptr) {
        transport.close_leftovers();
        error = transport.failure() != Transport::Failure::kNone ? error_of_failure(transport.failure())
                                                                 : MTP_ERROR_IO;
        return nullptr;
    }
    std::unique_ptr<Session> session(new Session(device, transport));
    error = error_of_failure(transport.failure());
    return error == MTP_ERROR_NONE ? std::move(session) : nullptr;
}

Session::~Session() {
    if (transport_.gone() || transport_.failure() != Transport::Failure::kNone) {
        transport_.mute();
    }
    LIBMTP_Release_Device(device_);
}

int Session::error() const {
    if (transport_.failure() != Transport::Failure::kNone) {
        return error_of_failure(transport_.failure());
    }
    return error_of_response(transport_.refusal());
}

/// The error of a call for an object, which is not there if the device said so.
int Session::refused(uint32_t object) {
    const int code = error();
    if (code == MTP_ERROR_NO_OBJECT) {
        known_[object] = ObjectInfo();
    }
    return code;
}

std::string Session::model_name() const {
    const Text name(LIBMTP_Get_Modelname(device_));
    return name != nullptr ? name.get() : "";
}

int Session::storages(std::vector<uint32_t>& ids) {
    // libmtp gives -1 for a device without a storage, too.
    if (!std::exchange(storages_are_fresh_, false) &&
        LIBMTP_Get_Storage(device_, LIBMTP_STORAGE_SORTBY_NOTSORTED) < 0 &&
        (transport_.failure() != Transport::Failure::kNone || transport_.refusal() != 0)) {
        return error();
    }
    for (const LIBMTP_devicestorage_t* storage = device_->storage; storage != nullptr;
         storage = storage->next) {
        ids.push_back(storage->id);
    }
    return MTP_ERROR_NONE;
}

void Session::learn(const LIBMTP_file_struct& file) {
    ObjectInfo& known = known_[file.item_id];
    ObjectInfo told = object_info(file, transport_.take_pixels(file.item_id));
    if (told.width == 0 && told.height == 0) {
        // libmtp did not ask the device again.
        told.width = known.width;
        told.height = known.height;
    }
    known = std::move(told);
}

/// Gives the storage that a folder lies on, where there are several: some devices refuse any other.
int Session::find_storage(uint32_t folder, uint32_t& storage) {
    const bool has_several = device_->storage != nullptr && device_->storage->next != nullptr;
    if (folder == 0 || !has_several) {
        return MTP_ERROR_NONE;
    }
    const ObjectInfo* info = nullptr;
    const int code = this->info(folder, info);
    if (code == MTP_ERROR_NONE) {
        storage = info->storage;
    }
    return code;
}

int Session::children(uint32_t storage, uint32_t parent, std::vector<uint32_t>& objects) {
    if (const int code = find_storage(parent, storage); code != MTP_ERROR_NONE) {
        return code;
    }
    File next(
        LIBMTP_Get_Files_And_Folders(device_, storage, parent != 0 ? parent : LIBMTP_FILES_AND_FOLDERS_ROOT));
    int code = error_of_failure(transport_.failure());
    if (code == MTP_ERROR_NONE && next == nullptr && transport_.refused_operation() == kGetObjectHandles) {
        code = error();
    }
    while (next != nullptr) {
        const File file = std::exchange(next, File(next->next));
        learn(*file);
        objects.push_back(file->item_id);
    }
    return code;
}

int Session::info(uint32_t object, const ObjectInfo*& info) {
    if (object == 0) {
        return MTP_ERROR_NO_OBJECT;
    }
    auto it = known_.find(object);
    if (it == known_.end()) {
        const File file(LIBMTP_Get_Filemetadata(device_, object));
        if (file == nullptr || transport_.failure() != Transport::Failure::kNone) {
            return refused(object);
        }
        learn(*file);
        it = known_.find(object);
    }
    info = &it->second;
    return info->there ? MTP_ERROR_NONE : MTP_ERROR_NO_OBJECT;
}

/// As info(), and a folder is no object.
int Session::file_info(uint32_t object, const ObjectInfo*& info) {
    const int code = this->info(object, info);
    return code == MTP_ERROR_NONE && info->file_type == MTP_FILETYPE_FOLDER ? int{MTP_ERROR_NO_OBJECT} : code;
}

int Session::whole(uint32_t object, const Sink& sink) {
    const ObjectInfo* info = nullptr;
    if (const int code = file_info(object, info); code != MTP_ERROR_NONE) {
        return code;
    }
    const int result =
        LIBMTP_Get_File_To_Handler(device_, object, put, const_cast<Sink*>(&sink), nullptr, nullptr);
    return result == 0 && transport_.failure() == Transport::Failure::kNone ? int{MTP_ERROR_NONE}
                                                                            : refused(object);
}

int Session::thumbnail(uint32_t object, std::vector<uint8_t>& bytes) {
    if (object == 0) {
        return MTP_ERROR_NO_OBJECT;
    }
    unsigned char* data = nullptr;
    unsigned size = 0;
    const int result = LIBMTP_Get_Thumbnail(device_, object, &data, &size);
    const Bytes owner(data);
    if (result != 0 || transport_.failure() != Transport::Failure::kNone) {
        return refused(object);
    }
    if (data == nullptr || size == 0) {
        return MTP_ERROR_NOT_SUPPORTED;
    }
    bytes.assign(data, data + size);
    return MTP_ERROR_NONE;
}

int Session::range(uint32_t object, const std::string& path, uint64_t offset, uint32_t length,
                   std::vector<uint8_t>& bytes) {
    const ObjectInfo* info = nullptr;
    if (const int code = file_info(object, info); code != MTP_ERROR_NONE) {
        return code;
    }
    if (offset >= info->size) {
        return MTP_ERROR_NONE;
    }
    const auto wanted = static_cast<uint32_t>(std::min<uint64_t>(length, info->size - offset));
    if (LIBMTP_Check_Capability(device_, LIBMTP_DEVICECAP_GetPartialObject) != 0) {
        const int code = asked_range(object, offset, wanted, bytes);
        if (code != MTP_ERROR_NOT_SUPPORTED) {
            return code;
        }
    }
    return spooled_range(object, path, offset, wanted, bytes);
}

int Session::asked_range(uint32_t object, uint64_t offset, uint32_t length, std::vector<uint8_t>& bytes) {
    // Some devices give less than they were asked for, and the rest when they are asked again.
    while (bytes.size() < length) {
        unsigned char* data = nullptr;
        unsigned size = 0;
        const auto left = static_cast<uint32_t>(length - bytes.size());
        const int result =
            LIBMTP_GetPartialObject(device_, object, offset + bytes.size(), left, &data, &size);
        const Bytes owner(data);
        if (transport_.failure() != Transport::Failure::kNone || transport_.refusal() != 0) {
            return refused(object);
        }
        if (result != 0) {
            return MTP_ERROR_NOT_SUPPORTED;  // without a question: the offset has too many bits for the
                                             // device
        }
        if (size > left) {
            return MTP_ERROR_IO;
        }
        if (size == 0) {
            break;
        }
        bytes.insert(bytes.end(), data, data + size);
    }
    return MTP_ERROR_NONE;
}

int Session::spooled_range(uint32_t object, const std::string& path, uint64_t offset, uint32_t length,
                           std::vector<uint8_t>& bytes) {
    if (spool_.object != object || !spool_.file) {
        spool_ = {object, nameless_file_beside(path)};
        if (!spool_.file) {
            return MTP_ERROR_WRITE_FAILED;
        }
        bool written = true;
        const int code = whole(object, [this, &written](const unsigned char* data, size_t size) {
            written = write_all(spool_.file.get(), data, size);
            return written;
        });
        if (!written || code != MTP_ERROR_NONE) {
            spool_ = Spool();
            return written ? code : int{MTP_ERROR_WRITE_FAILED};
        }
    }
    bytes.resize(length);
    const ssize_t got = pread(spool_.file.get(), bytes.data(), length, static_cast<off_t>(offset));
    bytes.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
    return got >= 0 ? MTP_ERROR_NONE : MTP_ERROR_IO;
}

}  // namespace mtp
