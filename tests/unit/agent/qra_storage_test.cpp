#include "libqra-agent/agent/src/qra_storage.h"

#include <atomic>
#include <cstring>
#include <thread>

#include "tests/unit/agent/engine_client_fixture.h"

namespace {

constexpr const char* kStick =
    R"({"id":"u1","name":"USBDrive1","mountPath":"/media/USBDrive1","serialNumber":"S-1","vendor":"Acme",)"
    R"("partitionLabel":"HOLIDAY","totalSize":"2000000000","availableSize":"1000","fileSystem":"VFAT",)"
    R"("type":"msc","deviceAddress":"7","deviceBus":"2","deviceIndex":3})";

std::string devices(const std::string& objects) {
    return R"({"devices":[)" + objects + "]}";
}

std::string event(int number, const std::string& objects) {
    return "{\"event\":" + std::to_string(number) + R"(,"devices":[)" + objects + "]}";
}

/// A text in GVariant's text form, in a tuple of its own.
std::string in_tuple(const std::string& text, const std::string& before = "") {
    std::string quoted;
    for (const char c : text) {
        quoted += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return "(" + before + "'" + quoted + "',)";
}

std::string reply(const std::string& json) {
    std::string tuple = in_tuple(json, "uint32 0, ");
    return tuple.replace(tuple.size() - 2, 2, ")");
}

void add_event(void* user_data, int number, qra_storage_h storage) {
    static_cast<Received*>(user_data)->add(std::to_string(number) + " " + qra_storage_get_id(storage));
}

class Storages : public EngineClient {
protected:
    /// The USB list that the engine's text gives.
    qra_storage_list_h usb_list(const std::string& json) {
        engine.answer("get_usb_storages", {reply(json)});
        qra_storage_list_h list = nullptr;
        EXPECT_EQ(qra_get_usb_list(QRA_STORAGE_DEVICE_ALL, &list), QRA_ERROR_NONE) << json;
        return list;
    }

    void set_usb_callback(Received& to) {
        engine.answer("bind_usb_event", {"(uint32 0,)"});
        ASSERT_EQ(qra_set_usb_callback(add_event, &to), QRA_ERROR_NONE);
        round_trip();
    }

    void notify(const std::string& json) { engine.emit("qra_usb_notification", in_tuple(json)); }

    Received received;
};

class StorageEvents : public Storages {
protected:
    MainLoopThread loop;
};

}  // namespace

TEST_F(Storages, EveryValueOfADriveIsRead) {
    const qra_storage_list_h list = usb_list(devices(kStick));
    ASSERT_EQ(qra_storage_get_list_count(list), 1);
    const qra_storage_h stick = qra_storage_get_storage(0, list);
    EXPECT_STREQ(qra_storage_get_id(stick), "u1");
    EXPECT_STREQ(qra_storage_get_name(stick), "USBDrive1");
    EXPECT_STREQ(qra_storage_get_mountpath(stick), "/media/USBDrive1");
    EXPECT_STREQ(qra_storage_get_serialnumber(stick), "S-1");
    EXPECT_STREQ(qra_storage_get_vendor(stick), "Acme");
    EXPECT_STREQ(qra_storage_get_partitionlabel(stick), "HOLIDAY");
    EXPECT_EQ(qra_storage_get_totalsize(stick), 2000000000);
    EXPECT_EQ(qra_storage_get_availablesize(stick), 1000);
    EXPECT_EQ(qra_storage_get_filesystem(stick), 1);
    EXPECT_EQ(qra_storage_get_class(stick), 0);
    EXPECT_EQ(qra_storage_get_address(stick), 7);
    EXPECT_EQ(qra_storage_get_bus(stick), 2);
    EXPECT_EQ(qra_storage_get_index(stick), 3);
    EXPECT_STREQ(qra_storage_get_ip(stick), "");
    EXPECT_FALSE(qra_storage_get_bKelvoraDevice(stick));
    EXPECT_TRUE(log.contains("Calling qra_get_usb_list..."));
    EXPECT_TRUE(log.contains("size[1]"));
    EXPECT_EQ(qra_storage_list_destory(list), QRA_ERROR_NONE);
}

TEST_F(Storages, TheDeviceTypeGoesToTheEngineAsItIs) {
    engine.answer("get_usb_storages", {reply(devices(""))});
    qra_storage_list_h list = nullptr;
    ASSERT_EQ(qra_get_usb_list(4711, &list), QRA_ERROR_NONE);
    EXPECT_EQ(arguments_of("get_usb_storages"), "(uint32 4711,)");
    qra_storage_list_destory(list);
}

TEST_F(Storages, AnOpticalDriveHasItsNamesOnly) {
    engine.answer("get_bd_storages", {reply(devices(kStick))});
    qra_storage_list_h list = nullptr;
    ASSERT_EQ(qra_get_bd_list(&list), QRA_ERROR_NONE);
    ASSERT_EQ(qra_storage_get_list_count(list), 1);
    const qra_storage_h drive = qra_storage_get_storage(0, list);
    EXPECT_STREQ(qra_storage_get_id(drive), "u1");
    EXPECT_STREQ(qra_storage_get_name(drive), "USBDrive1");
    EXPECT_STREQ(qra_storage_get_mountpath(drive), "/media/USBDrive1");
    EXPECT_STREQ(qra_storage_get_vendor(drive), "");
    EXPECT_EQ(qra_storage_get_totalsize(drive), 0);
    EXPECT_EQ(qra_storage_get_filesystem(drive), 0);
    EXPECT_EQ(qra_storage_get_index(drive), 0);
    EXPECT_TRUE(log.contains("Calling qra_get_bd_list..."));
    qra_storage_list_destory(list);
}

TEST_F(Storages, ALongNameIsCutTo255Bytes) {
    const std::string name(300, 'n');
    const qra_storage_list_h list =
        usb_list(devices(R"({"name":")" + name + R"(","vendor":")" + name + "\"}"));
    EXPECT_EQ(qra_storage_get_name(qra_storage_get_storage(0, list)), std::string(255, 'n'));
    EXPECT_EQ(qra_storage_get_vendor(qra_storage_get_storage(0, list)), std::string(255, 'n'));
    qra_storage_list_destory(list);
}

TEST_F(Storages, FileSystemsAndClassesHaveTheirNumbers) {
    const qra_storage_list_h list =
        usb_list(devices(R"({"fileSystem":"VFAT","type":"msc"},{"fileSystem":"EXT4","type":"ptp"},)"
                         R"({"fileSystem":"NTFS","type":"mtp"},{"fileSystem":"ntfs","type":"PTP"},{}  )"));
    const int file_systems[] = {1, 2, 3, 4, 4};
    const int classes[] = {0, 1, 3, 3, 3};
    ASSERT_EQ(qra_storage_get_list_count(list), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(qra_storage_get_filesystem(qra_storage_get_storage(i, list)), file_systems[i]) << i;
        EXPECT_EQ(qra_storage_get_class(qra_storage_get_storage(i, list)), classes[i]) << i;
    }
    qra_storage_list_destory(list);
}

TEST_F(Storages, ALargeDriveReadsAsTheLargestNumber) {
    const qra_storage_list_h list =
        usb_list(devices(R"({"totalSize":"64000000000","availableSize":"2147483648","deviceBus":"nine"})"));
    const qra_storage_h stick = qra_storage_get_storage(0, list);
    EXPECT_EQ(qra_storage_get_totalsize(stick), 2147483647);
    EXPECT_EQ(qra_storage_get_availablesize(stick), 2147483647);
    EXPECT_EQ(qra_storage_get_bus(stick), 0);
    qra_storage_list_destory(list);
}

TEST_F(Storages, NoDevicesGiveAnEmptyList) {
    const qra_storage_list_h list = usb_list(devices(""));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(qra_storage_get_list_count(list), 0);
    qra_storage_list_destory(list);
}

TEST_F(Storages, AnAnswerThatIsNoJsonIsAnInternalError) {
    qra_storage_list_h list = nullptr;
    for (const std::string text : {"", "{", "no json", R"({"devices":[)"}) {
        engine.answer("get_usb_storages", {reply(text)});
        EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_INTERNAL) << text;
    }
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(log.count("Can't parse storages:\n"), 4);
}

TEST_F(Storages, AnAnswerWithWrongTypesIsAnInternalError) {
    const std::string many = [] {
        std::string objects = "{}";
        for (int i = 0; i < 5000; ++i) {
            objects += ",{}";
        }
        return devices(objects);
    }();
    const std::string texts[] = {
        "[]",
        "7",
        "{}",
        R"({"devices":{}})",
        R"({"devices":"none"})",
        devices("7"),
        devices("null"),
        devices("[]"),
        devices(R"({"id":{}})"),
        devices(R"({"totalSize":[1]})"),
        devices(R"({"deviceIndex":"3"})"),
        devices(R"({"deviceIndex":99999999999})"),
        std::string(kStick),
        devices(std::string(2000, '[') + std::string(2000, ']')),
        many,
    };
    int handled = 0;
    qra_storage_list_h list = nullptr;
    for (const std::string& text : texts) {
        engine.answer("get_usb_storages", {reply(text)});
        EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_INTERNAL) << text.substr(0, 80);
        EXPECT_EQ(log.count("Exception Handled by["), ++handled) << text.substr(0, 80);
    }
    EXPECT_EQ(list, nullptr);
}

TEST_F(Storages, AnAnswerWithoutATextIsAnInternalError) {
    engine.answer("get_usb_storages", {"(uint32 0,)"});
    qra_storage_list_h list = nullptr;
    EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_INTERNAL);
    EXPECT_TRUE(log.contains("szStorages is NULL..."));
}

TEST_F(Storages, TheEnginesCodeIsHandedOn) {
    engine.answer("get_usb_storages", {"(uint32 4, '')", "(uint32 4000000000, '')", ""});
    qra_storage_list_h list = nullptr;
    EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_READ_FAILED);
    EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_ENGINE) << "a number that is no code";
    EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_ENGINE) << "an error of the bus";
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(log.count("GetStorages() failed."), 3);
}

TEST(StoragesWithoutABus, EveryFunctionThatNeedsTheEngineFailsAtOnce) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
    LogCapture log;
    Received received;
    qra_storage_list_h list = nullptr;
    EXPECT_EQ(qra_get_usb_list(0, &list), QRA_ERROR_ENGINE);
    EXPECT_EQ(qra_get_bd_list(&list), QRA_ERROR_ENGINE);
    EXPECT_EQ(qra_set_usb_callback(add_event, &received), QRA_ERROR_ENGINE);
    EXPECT_EQ(qra_set_bd_callback(add_event, &received), QRA_ERROR_ENGINE);
    EXPECT_EQ(qra_unset_usb_callback(), QRA_ERROR_ENGINE);
    EXPECT_EQ(qra_unset_bd_callback(), QRA_ERROR_ENGINE);
    EXPECT_EQ(log.count(" ConnectDbus() failed."), 6) << log.text();
}

TEST_F(Storages, ACloneOfAListOutlivesTheList) {
    const qra_storage_list_h list = usb_list(devices(std::string(kStick) + R"(,{"id":"u2"})"));
    qra_storage_list_h clone = nullptr;
    ASSERT_EQ(qra_storage_list_clone(&clone, list), QRA_ERROR_NONE);
    EXPECT_EQ(log.count("clone src to dst..."), 2);
    ASSERT_EQ(qra_storage_get_list_count(clone), 2);
    for (int i = 0; i < 2; ++i) {
        const qra_storage_h original = qra_storage_get_storage(i, list);
        EXPECT_NE(qra_storage_get_storage(i, clone), original);
        EXPECT_EQ(std::memcmp(qra_storage_get_storage(i, clone), original, sizeof *original), 0);
    }
    qra_storage_list_destory(list);
    EXPECT_STREQ(qra_storage_get_partitionlabel(qra_storage_get_storage(0, clone)), "HOLIDAY");
    EXPECT_STREQ(qra_storage_get_id(qra_storage_get_storage(1, clone)), "u2");
    qra_storage_list_destory(clone);
}

TEST_F(Storages, ACloneOfARecordOutlivesItsList) {
    const qra_storage_list_h list = usb_list(devices(kStick));
    qra_storage_h clone = nullptr;
    ASSERT_EQ(qra_storage_clone(&clone, qra_storage_get_storage(0, list)), QRA_ERROR_NONE);
    qra_storage_list_destory(list);
    EXPECT_STREQ(qra_storage_get_id(clone), "u1");
    EXPECT_EQ(qra_storage_destroy(clone), QRA_ERROR_NONE);
}

TEST(StorageRecords, NullsAreRefused) {
    LogCapture log;
    qra_storage_h record = nullptr;
    qra_storage_list_h list = nullptr;
    EXPECT_EQ(qra_storage_clone(&record, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_storage_list_clone(&list, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log.count("_src INVALID_PARAMETER"), 2);
    EXPECT_EQ(qra_storage_clone(nullptr, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_storage_list_clone(nullptr, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_storage_destroy(nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_storage_list_destory(nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_storage_get_list_count(nullptr), 0);
}

TEST(StorageRecordsDeathTest, AnAccessorOfNoRecordEndsTheProcess) {
    EXPECT_DEATH(qra_storage_get_id(nullptr), "storage_device");
    EXPECT_DEATH(qra_storage_get_totalsize(nullptr), "storage_device");
    EXPECT_DEATH(qra_storage_get_bKelvoraDevice(nullptr), "storage_device");
    EXPECT_DEATH(qra_storage_get_storage(0, nullptr), "storagelist");
    EXPECT_DEATH(qra_get_usb_list(0, nullptr), "storages != __null");
    EXPECT_DEATH(qra_get_bd_list(nullptr), "storages != __null");
}

TEST_F(StorageEvents, ADriveThatComesAndGoesIsTold) {
    set_usb_callback(received);
    EXPECT_EQ(arguments_of("bind_usb_event"), "(uint32 1,)");

    notify(event(1, kStick));
    notify(event(2, kStick));

    ASSERT_TRUE(received.wait_for(2));
    EXPECT_EQ(received.all(), (std::vector<std::string>{"1 u1", "2 u1"}));
    EXPECT_TRUE(log.contains("Calling qra_set_usb_callback..."));
    EXPECT_TRUE(log.contains("recive [qra_usb_notification]\n{\"event\":1,"));
    EXPECT_EQ(log.count("Calling userdata->app_cb  in get_storage_callback..."), 2);
    EXPECT_EQ(qra_unset_usb_callback(), QRA_ERROR_NONE);
}

TEST_F(StorageEvents, OpticalDrivesHaveASignalAndABindingOfTheirOwn) {
    engine.answer("bind_bd_event", {"(uint32 0,)"});
    ASSERT_EQ(qra_set_bd_callback(add_event, &received), QRA_ERROR_NONE);
    round_trip();

    notify(event(1, kStick));
    engine.emit("qra_bd_notification", in_tuple(event(1, R"({"id":"b1"})")));

    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{"1 b1"});
    EXPECT_EQ(qra_unset_bd_callback(), QRA_ERROR_NONE);
    EXPECT_EQ(arguments_of("bind_bd_event"), "(uint32 0,)");
    EXPECT_EQ(engine.count("bind_usb_event"), 0);
}

TEST_F(StorageEvents, TheSecondCallbackTakesThePlaceOfTheFirst) {
    Received first;
    set_usb_callback(first);
    set_usb_callback(received);

    notify(event(1, kStick));

    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_EQ(received.all().size(), 1u);
    EXPECT_TRUE(first.all().empty());
    qra_unset_usb_callback();
}

TEST_F(StorageEvents, AnUnsetCallbackGetsNothingMore) {
    set_usb_callback(received);
    EXPECT_EQ(qra_unset_usb_callback(), QRA_ERROR_NONE);
    EXPECT_EQ(arguments_of("bind_usb_event"), "(uint32 0,)");

    notify(event(1, kStick));
    settle();

    EXPECT_TRUE(received.all().empty());
}

TEST_F(StorageEvents, EventsThatCannotBeReadAreDropped) {
    set_usb_callback(received);
    const std::string texts[] = {
        "",
        "no json",
        "[]",
        "{}",
        devices(kStick),
        R"({"event":1})",
        event(1, ""),
        event(1, "7"),
        R"({"event":"1","devices":[{}]})",
        R"({"event":99999999999,"devices":[{}]})",
        event(1, R"({"id":[]})"),
    };
    for (const std::string& text : texts) {
        notify(text);
    }
    notify(event(1, kStick));

    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{"1 u1"});
    EXPECT_EQ(log.count("Can't parse storages:\n") + log.count("Exception Handled by["), 11);
    qra_unset_usb_callback();
}

TEST_F(Storages, ACallbackIsRequired) {
    EXPECT_EQ(qra_set_usb_callback(nullptr, &received), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_bd_callback(nullptr, &received), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log.count("cb == NULL."), 2);
    EXPECT_EQ(engine.count("start_server"), 0);
}

TEST_F(StorageEvents, ACallbackThatTheEngineRefusesIsNotSet) {
    engine.answer("bind_usb_event", {"(uint32 20,)", ""});
    EXPECT_EQ(qra_set_usb_callback(add_event, &received), QRA_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(qra_set_usb_callback(add_event, &received), QRA_ERROR_ENGINE);
    EXPECT_EQ(log.count("qra_set_usb_callback() failed."), 2);
    round_trip();

    notify(event(1, kStick));
    settle();

    EXPECT_TRUE(received.all().empty());
}

TEST_F(StorageEvents, UnsettingWhatTheEngineDoesNotConfirmDropsTheCallback) {
    set_usb_callback(received);
    engine.answer("bind_usb_event", {"(uint32 4,)"});
    EXPECT_EQ(qra_unset_usb_callback(), QRA_ERROR_READ_FAILED);

    notify(event(1, kStick));
    settle();

    EXPECT_TRUE(received.all().empty());
    EXPECT_TRUE(log.contains("qra_unset_usb_callback() failed."));
}

// A client frees what its callback uses as soon as the callback is unset; the sanitizers see a late event.
TEST_F(StorageEvents, NoEventReachesAClientAfterItsUnsetInFiveHundredRounds) {
    engine.answer("bind_usb_event", {"(uint32 0,)"});
    std::atomic<bool> done{false};
    std::thread sender([&] {
        while (!done) {
            notify(event(1, kStick));
        }
    });
    for (int round = 0; round < 500; ++round) {
        auto client = std::make_unique<Received>();
        ASSERT_EQ(qra_set_usb_callback(add_event, client.get()), QRA_ERROR_NONE);
        if (round % 10 == 0) {
            ASSERT_TRUE(client->wait_for(1));
        }
        ASSERT_EQ(qra_unset_usb_callback(), QRA_ERROR_NONE);
    }
    done = true;
    sender.join();
}
