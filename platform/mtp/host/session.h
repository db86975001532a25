#ifndef QRA_PLATFORM_MTP_HOST_SESSION_H
#define QRA_PLATFORM_MTP_HOST_SESSION_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "mtp.h"
#include "platform/files/descriptor.h"
#include "platform/mtp/host/object_info.h"
#include "platform/mtp/host/transport.h"

struct LIBMTP_file_struct;
struct LIBMTP_mtpdevice_struct;

namespace mtp {

/// Where a device hangs on USB, and what it is there.
struct UsbIdentity {
    uint8_t bus = 0;
    uint8_t device = 0;
    uint16_t vendor = 0;
    uint16_t product = 0;
};

/// Takes the next bytes of an object; false to end the transfer.
using Sink = std::function<bool(const unsigned char* bytes, size_t length)>;

/**
 * The session with a device. Belongs to one thread at a time, which has the transport in use.
 *
 * Functions give a code of mtp_error_e. After one that tells of the device (MTP_ERROR_NO_DEVICE,
 * MTP_ERROR_IO) the session is of no use any more, and its destructor asks the device nothing.
 */
class Session {
public:
    /// @return null with an error
    static std::unique_ptr<Session> open(const UsbIdentity& identity, Transport& transport, int& error);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    std::string model_name() const;
    int storages(std::vector<uint32_t>& ids);
    /// Describes the objects as well, which are known from then on.
    int children(uint32_t storage, uint32_t parent, std::vector<uint32_t>& objects);
    /// @param info  valid until the next call
    int info(uint32_t object, const ObjectInfo*& info);
    int whole(uint32_t object, const Sink& sink);
    int thumbnail(uint32_t object, std::vector<uint8_t>& bytes);
    /// @param path  beside it lies what has to be fetched whole
    int range(uint32_t object, const std::string& path, uint64_t offset, uint32_t length,
              std::vector<uint8_t>& bytes);

private:
    /// The copy of an object that ranges come from.
    struct Spool {
        uint32_t object = 0;
        files::Descriptor file;
    };

    Session(LIBMTP_mtpdevice_struct* device, Transport& transport) : device_(device), transport_(transport) {}
    int error() const;
    int refused(uint32_t object);
    int find_storage(uint32_t folder, uint32_t& storage);
    void learn(const LIBMTP_file_struct& file);
    int file_info(uint32_t object, const ObjectInfo*& info);
    int asked_range(uint32_t object, uint64_t offset, uint32_t length, std::vector<uint8_t>& bytes);
    int spooled_range(uint32_t object, const std::string& path, uint64_t offset, uint32_t length,
                      std::vector<uint8_t>& bytes);

    LIBMTP_mtpdevice_struct* const device_;
    Transport& transport_;
    std::unordered_map<uint32_t, ObjectInfo> known_;
    Spool spool_;
    bool storages_are_fresh_ = true;  ///< libmtp has asked for them when it opened the session
};

}  // namespace mtp

#endif
