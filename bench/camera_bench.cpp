// What the list of a camera with 5,000 pictures costs through the camera service, and through the agent on
// top of it, beside a client that does the same with libmtp alone. All meet the same virtual camera in this
// process; its own work is part of every figure.

#include <libmtp.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "libqra-agent/source/ptp/qra_ptp_manage.h"
#include "mtp.h"
#include "platform/mtp/virtual-camera/virtual_camera.h"
#include "tests/fakes/virtual_cameras.h"

namespace {

using bench::Cost;
using bench::give_up;
using bench::median;

constexpr int kObjects = 5000;
constexpr int kFolders = 2;
constexpr int kRounds = 9;
constexpr int kBus = 1;

void expect(bool done, const char* what) {
    if (!done) {
        give_up(what);
    }
}

int count_bare(LIBMTP_mtpdevice_t* device, uint32_t storage, uint32_t folder) {
    int count = 0;
    LIBMTP_file_t* file = LIBMTP_Get_Files_And_Folders(device, storage, folder);
    while (file != nullptr) {
        LIBMTP_file_t* const next = file->next;
        ++count;
        if (file->filetype == LIBMTP_FILETYPE_FOLDER) {
            count += count_bare(device, storage, file->item_id);
        }
        LIBMTP_destroy_file_t(file);
        file = next;
    }
    return count;
}

/// With libmtp alone.
int list_bare(int number) {
    static char unknown[] = "unknown";
    LIBMTP_raw_device_t raw{};
    raw.device_entry = {unknown, 0x1209, unknown, 0x0001, 0};
    raw.bus_location = kBus;
    raw.devnum = static_cast<uint8_t>(number);
    LIBMTP_mtpdevice_t* const device = LIBMTP_Open_Raw_Device_Uncached(&raw);
    expect(device != nullptr, "libmtp cannot open the camera");
    const int count = count_bare(device, device->storage->id, LIBMTP_FILES_AND_FOLDERS_ROOT);
    LIBMTP_Release_Device(device);
    return count;
}

int count_served(mtp_device_h device, mtp_storage_h storage, mtp_object_h folder) {
    mtp_object_h* objects = nullptr;
    int count = 0;
    expect(mtp_get_object_handles(device, storage, MTP_FILETYPE_ALL, folder, &objects, &count) == 0,
           "no handles");
    int all = count;
    for (int i = 0; i < count; ++i) {
        mtp_object_info info{};
        expect(mtp_objectinfo_get_object_info(device, objects[i], &info) == 0, "no description");
        if (info.file_type == MTP_FILETYPE_FOLDER) {
            all += count_served(device, storage, objects[i]);
        }
    }
    std::free(objects);
    return all;
}

/// With the service.
int list_served(int number) {
    mtp_device_h* devices = nullptr;
    mtp_storage_h* storages = nullptr;
    int count = 0;
    int found = 0;
    expect(mtp_initialize() == 0 && mtp_get_devices(&devices, &count) == 0 && count == 1, "no camera");
    expect(mtp_deviceinfo_get_device_number(devices[0], &found) == 0 && found == number, "another camera");
    expect(mtp_get_storages(devices[0], &storages, &count) == 0 && count == 1, "no storage");
    const int all = count_served(devices[0], storages[0], 0);
    std::free(devices);
    std::free(storages);
    mtp_deinitialize();
    return all;
}

bool count_item(_stPtpContentItem&, void* count) {
    ++*static_cast<int*>(count);
    return true;
}

/// With the agent, all pictures in a row; it does not count folders.
int list_with_agent(int number) {
    CQRAPTPManage manager;
    _stPTPParam param;
    param.strSortCategory = "CATEGORY-TITLE";
    param.strContentType = "CONTENT-IMAGE";
    param.nBusValue = kBus;
    param.nDeviceValue = number;
    int count = 0;
    expect(manager.InitParam(&param) && manager.FindCamera(kBus, number, true) &&
               manager.RequestListofDCM(count_item, &count),
           "the agent has no list");
    mtp_deinitialize();
    return count + kFolders;
}

struct Client {
    const char* name;
    int (*list)(int number);
    std::vector<double> wall;
    std::vector<double> processor;
    uint64_t transactions = 0;
};

void measure(Client& client, int number) {
    const uint64_t transactions = virtual_camera_transactions(kBus, number, 0);
    const Cost cost = bench::cost_of([&] {
        if (client.list(number) != kObjects + kFolders) {
            give_up(std::string("the list is not complete: ") + client.name);
        }
    });
    client.wall.push_back(cost.wall);
    client.processor.push_back(cost.processor);
    client.transactions = virtual_camera_transactions(kBus, number, 0) - transactions;
}

void run(VirtualCameras& cameras, const std::string& kind) {
    const int number =
        cameras.plug("camera", {"kind = " + kind, "objects = " + std::to_string(kObjects), "log ="});
    Client clients[] = {{"libmtp alone", list_bare, {}, {}},
                        {"camera service", list_served, {}, {}},
                        {"agent", list_with_agent, {}, {}}};
    // One after the other, so that all meet the same load of the machine; the first round warms up.
    for (int round = 0; round <= kRounds; ++round) {
        for (Client& client : clients) {
            measure(client, number);
            if (round == 0) {
                client.wall.clear();
                client.processor.clear();
            }
        }
    }
    const Client& floor = clients[0];
    for (const Client& client : clients) {
        std::printf(
            "camera, %s, %-16s %6llu transactions (%.3fx) %8.1f ms (%.2fx) %8.1f ms of processor (%.2fx)\n",
            kind.c_str(), client.name, static_cast<unsigned long long>(client.transactions),
            static_cast<double>(client.transactions) / static_cast<double>(floor.transactions),
            median(client.wall) * 1e3, median(client.wall) / median(floor.wall),
            median(client.processor) * 1e3, median(client.processor) / median(floor.processor));
    }
}

}  // namespace

int main() {
    setenv("QRA_LOG", "off", 0);
    VirtualCameras cameras;
    // libmtp's texts go to the log from here on, for all three.
    expect(mtp_initialize() == 0, "no service");
    run(cameras, "ptp");
    run(cameras, "mtp");
}
