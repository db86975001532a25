#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_DESCRIPTION_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_DESCRIPTION_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace virtual_camera {

enum class FaultKind {
    kUnplug,  ///< the camera is pulled out before it answers
    kSever,   ///< the camera is pulled out in the middle of what it sends
    kStall,   ///< no answer: the transfer times out, without waiting for the time to pass
    kSlow,    ///< answers after some milliseconds
    kShort,   ///< sends fewer bytes than it announced
    kLong,    ///< sends more bytes than it announced
    kCut,     ///< sends half of a container's head
    kFlood,   ///< sends without end
    kVanish,  ///< the object that is asked for is gone from now on
    kRefuse,  ///< answers with a response code
    kName,    ///< describes the object with another name
    kSize,    ///< describes the object with another size
    kGarbage  ///< sends random bytes of the announced length
};

struct Fault {
    FaultKind kind;
    uint16_t operation;  ///< 0: any
    unsigned at;         ///< the how manieth such transaction, from 1; 0: each
    std::string argument;
};

enum class Kind {
    kPtp,       ///< a plain still image camera
    kMtp,       ///< tells object properties in lists
    kMtpSingle  ///< tells object properties one by one only
};

/// A camera as its file describes it.
struct Description {
    std::string name;  ///< of the file, without its suffix
    std::string file;
    std::string vendor = "Example";
    std::string model = "Virtual Camera";
    std::string serial = "0001";
    uint8_t bus = 1;
    uint8_t device = 1;
    Kind kind = Kind::kPtp;
    bool ranges = true;
    bool wide_ranges = false;  ///< ranges behind 4 GiB
    unsigned objects = 0;      ///< pictures that are made up, beside the files of the storages
    std::vector<std::string> storages;
    std::vector<Fault> faults;
    std::string log;  ///< a line for each transaction goes to this file
};

/**
 * The cameras that are plugged in: the files "*.camera" of the directory, by the identity of the file. A file
 * that is replaced is another camera.
 */
std::map<std::string, Description> read_cameras(const std::string& directory);

/// The number of an operation by its name in the standard, such as "GetObject"; 0 for "any" and unknown
/// names.
uint16_t operation_number(const std::string& name);
/// The name, or the number as text.
std::string operation_name(uint16_t number);

}  // namespace virtual_camera

#endif
