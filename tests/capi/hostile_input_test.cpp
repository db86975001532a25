// Every exported function with what a careless or hostile client may pass: it answers with a code and never
// crashes.

#include <gtest/gtest.h>
#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>

#include "tests/capi/media_drive.h"

namespace {

using Handle = CQRAAgentHandle*;

/// Calls visit("name", &name) for every function of exports.txt.
template <typename Visitor>
void for_each_function(Visitor&& visit) {
#define VISIT(name) visit(#name, &name);
#include "exported_functions.inc"
#undef VISIT
}

/// How a parameter record is made and destroyed.
template <typename Record>
struct RecordFunctions {
    qra_error_code_e (*create)(Record**);
    qra_error_code_e (*destroy)(Record*);
};
constexpr std::tuple kRecordFunctions(
    RecordFunctions<qra_general_s>{qra_create_general_param, qra_destroy_general_param},
    RecordFunctions<qra_page_style_s>{qra_create_page_param, qra_destroy_page_param},
    RecordFunctions<qra_share_s>{qra_create_share_param, qra_destroy_share_param},
    RecordFunctions<qra_share_user_data_s>{qra_create_share_user_data_param,
                                           qra_destroy_share_user_data_param},
    RecordFunctions<qra_playlist_file_s>{qra_create_playlist_file_param, qra_destroy_playlist_file_param},
    RecordFunctions<qra_playlist_item_s>{qra_create_playlist_item_param, qra_destroy_playlist_item_param},
    RecordFunctions<qra_comment_s>{qra_create_comment_param, qra_destroy_comment_param},
    RecordFunctions<qra_like_s>{qra_create_like_param, qra_destroy_like_param},
    RecordFunctions<qra_detail_s>{qra_create_detail_param, qra_destroy_detail_param});

template <typename T>
constexpr bool kIsRecord =
    std::disjunction_v<std::is_same<T, qra_general_s>, std::is_same<T, qra_page_style_s>,
                       std::is_same<T, qra_share_s>, std::is_same<T, qra_share_user_data_s>,
                       std::is_same<T, qra_playlist_file_s>, std::is_same<T, qra_playlist_item_s>,
                       std::is_same<T, qra_comment_s>, std::is_same<T, qra_like_s>,
                       std::is_same<T, qra_detail_s>>;

/// A parameter record for the life of this object.
template <typename Record>
class Param {
public:
    Param() { EXPECT_EQ(QRA_ERROR_NONE, functions().create(&record_)); }
    ~Param() { functions().destroy(record_); }
    Param(const Param&) = delete;
    Param& operator=(const Param&) = delete;
    operator Record*() const { return record_; }

private:
    static constexpr const RecordFunctions<Record>& functions() {
        return std::get<RecordFunctions<Record>>(kRecordFunctions);
    }
    Record* record_ = nullptr;
};

/// An argument that is right for its type: a text, room for a result, a number. A text that comes out is
/// freed.
template <typename T>
class GoodArgument {
public:
    GoodArgument() = default;
    ~GoodArgument() { std::free(result_); }
    GoodArgument(const GoodArgument&) = delete;
    GoodArgument& operator=(const GoodArgument&) = delete;

    operator T() {
        if constexpr (std::is_same_v<T, const char*>) {
            return "TITLE";
        } else if constexpr (std::is_same_v<T, char*>) {
            return text_;
        } else if constexpr (std::is_same_v<T, char**>) {
            return &result_;
        } else if constexpr (std::is_pointer_v<T>) {
            return reinterpret_cast<T>(&room_);
        } else {
            return T();
        }
    }

private:
    char text_[64] = "TITLE";
    char* result_ = nullptr;
    std::max_align_t room_ = {};
};

template <typename T>
constexpr bool kIsText = std::is_same_v<T, const char*> || std::is_same_v<T, char*>;

class ListRequest {
public:
    explicit ListRequest(const std::string& path) {
        const Param<qra_general_s> request;
        qra_param_set_general_source(request, "SOURCE_MSC");
        qra_param_set_general_path(request, path.c_str());
        qra_param_set_general_content_type(request, "CONTENT-FOLDER");
        qra_param_set_general_sort_category(request, "CATEGORY-FOLDER-TITLE");
        EXPECT_EQ(QRA_ERROR_NONE, qra_request_list_v2(request, &on_answer, this, &handle_));
        std::unique_lock<std::mutex> lock(mutex_);
        answered_.wait(lock, [this] { return event_ >= 0; });
        EXPECT_EQ(QRA_EVENT_LIST_SUCCESS, event_);
    }
    ~ListRequest() { disconnect(); }
    ListRequest(const ListRequest&) = delete;
    ListRequest& operator=(const ListRequest&) = delete;

    Handle handle() const { return handle_; }

    void set_page_style() const {
        const Param<qra_page_style_s> style;
        qra_param_set_page_style_mask(style, 0x26);
        qra_param_set_page_style_row(style, 2);
        qra_param_set_page_style_column(style, 9);
        qra_param_set_page_style_group_index(style, -1);
        EXPECT_EQ(QRA_ERROR_NONE, qra_set_page_style_v2(handle_, style));
    }

    /// Ends the request; its handle, stale from now on.
    Handle disconnect() {
        if (!disconnected_) {
            disconnected_ = true;
            qra_disconnect_v2(handle_);
        }
        return handle_;
    }

private:
    static bool on_answer(void* self, Handle, qra_event_e event, int, const char*) {
        auto* request = static_cast<ListRequest*>(self);
        const std::lock_guard<std::mutex> lock(request->mutex_);
        request->event_ = event;
        request->answered_.notify_one();
        return true;
    }

    Handle handle_ = nullptr;
    bool disconnected_ = false;
    std::mutex mutex_;
    std::condition_variable answered_;
    int event_ = -1;
};

bool is_code(qra_error_code_e code) {
    static const std::set<int> kCodes = {0, 1, 2, 3, 4, 5, 6, 8, 13, 16, 18, 19, 20, 21, 22, 23};
    return kCodes.count(code) != 0;
}

/// Hands every agent function, that is each whose first argument is a handle, to `Probe::agent`.
template <typename Probe>
struct AgentFunctions {
    Probe& probe;

    template <typename... Rest>
    void operator()(const char* name, qra_error_code_e (*function)(Handle, Rest...)) const {
        probe.agent(name, function);
    }
    template <typename Other>
    void operator()(const char*, Other*) const {}
};

struct BadHandleProbe {
    std::map<std::string, Handle> handles;
    int functions = 0;

    template <typename... Rest>
    void agent(const std::string& name, qra_error_code_e (*function)(Handle, Rest...)) {
        ++functions;
        for (const auto& [kind, handle] : handles) {
            EXPECT_EQ(QRA_ERROR_INVALID_HANDLE, function(handle, Rest()...))
                << name << ", " << kind << ", nulls";
            EXPECT_EQ(QRA_ERROR_INVALID_HANDLE, function(handle, GoodArgument<Rest>()...))
                << name << ", " << kind;
        }
    }
};

TEST(HostileInput, NoAgentFunctionTakesAHandleThatIsNone) {
    const MediaDrive drive;
    ListRequest request(drive.path());
    const Param<qra_general_s> record;
    const ListRequest live(drive.path());
    int local = 0;
    BadHandleProbe probe;
    probe.handles = {
        {"null", nullptr},
        {"a small number", reinterpret_cast<Handle>(1)},
        {"all ones", reinterpret_cast<Handle>(UINTPTR_MAX)},
        {"a variable", reinterpret_cast<Handle>(&local)},
        {"a parameter record", reinterpret_cast<Handle>(static_cast<qra_general_s*>(record))},
        {"the inside of a live handle", reinterpret_cast<Handle>(reinterpret_cast<char*>(live.handle()) + 8)},
        {"a disconnected request", request.disconnect()},
    };
    for_each_function(AgentFunctions<BadHandleProbe>{probe});
    EXPECT_EQ(36, probe.functions);
}

// Group indices are the client's promise: the header says that one outside the list ends the process.
const std::set<std::string> kGroupFunctions = {"qra_set_expand_mode_v2", "qra_select_group_v2",
                                               "qra_deselect_group_v2"};

struct NullArgumentProbe {
    std::string path;
    bool with_page;

    template <typename... Rest>
    void agent(const std::string& name, qra_error_code_e (*function)(Handle, Rest...)) {
        if (kGroupFunctions.count(name) || name == "qra_disconnect_v2") {
            return;
        }
        // What a source of this process has no use for, it does not look at.
        static const std::map<std::string, qra_error_code_e> kUnread = {
            {"qra_request_detail_v2", QRA_ERROR_NONE},    {"qra_upload_comment_v2", QRA_ERROR_INTERNAL},
            {"qra_set_like_v2", QRA_ERROR_INTERNAL},      {"qra_get_group_count_v2", QRA_ERROR_INTERNAL},
            {"qra_get_book_mark_v2", QRA_ERROR_INTERNAL},
        };
        const ListRequest request(path);
        if (with_page) {
            request.set_page_style();
        }
        const qra_error_code_e code = function(request.handle(), Rest()...);
        EXPECT_TRUE(is_code(code)) << name << " " << code;
        if (const auto unread = kUnread.find(name); unread != kUnread.end()) {
            EXPECT_EQ(unread->second, code) << name;
        } else if constexpr ((std::is_pointer_v<Rest> || ...)) {
            EXPECT_TRUE(code == QRA_ERROR_INVALID_PARAM || (!with_page && code == QRA_ERROR_INVALID_HANDLE))
                << name << " " << code;
        }
        EXPECT_TRUE(is_code(function(request.handle(), EmptyArgument<Rest>()...))) << name;
    }

    /// Like GoodArgument, but for texts, which are empty, and numbers, which are out of range.
    template <typename T>
    class EmptyArgument {
    public:
        operator T() {
            if constexpr (kIsText<T>) {
                return text_;
            } else if constexpr (std::is_same_v<T, int>) {
                return INT32_MIN;
            } else if constexpr (std::is_pointer_v<T> && kIsRecord<std::remove_pointer_t<T>>) {
                return nullptr;
            } else if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>) {
                return nullptr;
            } else {
                return good_;
            }
        }

    private:
        char text_[1] = {0};
        GoodArgument<T> good_;
    };
};

TEST(HostileInput, AgentFunctionsSurviveNullsAndEmptyTextsBeforeThePageIsMade) {
    const MediaDrive drive;
    NullArgumentProbe probe = {drive.path(), false};
    for_each_function(AgentFunctions<NullArgumentProbe>{probe});
}

TEST(HostileInput, AgentFunctionsSurviveNullsAndEmptyTextsOnAPage) {
    const MediaDrive drive;
    NullArgumentProbe probe = {drive.path(), true};
    for_each_function(AgentFunctions<NullArgumentProbe>{probe});
}

// A C client may put any number into an enumeration.
TEST(HostileInput, NumbersThatNoEnumerationHasAreAnsweredWithACode) {
    const MediaDrive drive;
    const ListRequest request(drive.path());
    request.set_page_style();
    int tiles = 0;
    ASSERT_EQ(QRA_ERROR_NONE, qra_get_item_count_v2(request.handle(), &tiles));
    for (const int number : {2, 33, 255, INT32_MAX, -1, INT32_MIN}) {
        const auto navigation = static_cast<qra_navigation_e>(number);
        EXPECT_EQ(QRA_ERROR_NONE, qra_set_navigation_v2(request.handle(), navigation));
        auto kept_navigation = QRA_NAVIGATION_TYPE_ALL;
        EXPECT_EQ(QRA_ERROR_NONE, qra_get_navigation_v2(request.handle(), &kept_navigation));
        EXPECT_EQ(navigation, kept_navigation);
        int count = 0;
        EXPECT_EQ(QRA_ERROR_NONE, qra_get_item_count_v2(request.handle(), &count));
        EXPECT_EQ(tiles, count) << "only the selection's own number counts the selection";
        EXPECT_EQ(QRA_ERROR_INVALID_PARAM,
                  qra_get_item_count_by_type_v2(request.handle(), QRA_MEDIA_TYPE_IMAGE, &count));
        EXPECT_EQ(QRA_ERROR_NONE, qra_set_navigation_v2(request.handle(), QRA_NAVIGATION_TYPE_ALL));

        EXPECT_EQ(QRA_ERROR_NONE, qra_get_item_count_by_type_v2(
                                      request.handle(), static_cast<qra_media_type_e>(number ^ 64), &count));
        EXPECT_EQ(tiles, count) << "an unknown kind leaves the variable";

        const Param<qra_page_style_s> style;
        const auto order = static_cast<qra_page_order_e>(number);
        EXPECT_EQ(QRA_ERROR_NONE, qra_param_set_page_style_order(style, order));
        auto kept_order = QRA_PAGE_ORDER_ROW;
        EXPECT_EQ(QRA_ERROR_NONE, qra_param_get_page_style_order(style, &kept_order));
        EXPECT_EQ(order, kept_order);
        qra_param_set_page_style_mask(style, 0x26);
        qra_param_set_page_style_group_index(style, -1);
        EXPECT_EQ(QRA_ERROR_NONE, qra_set_page_style_v2(request.handle(), style)) << "always in columns";
    }
}

struct RecordProbe {
    int& functions;

    /// Makers.
    template <typename Record>
    std::enable_if_t<kIsRecord<Record>> operator()(const char* name,
                                                   qra_error_code_e (*create)(Record**)) const {
        ++functions;
        EXPECT_EQ(QRA_ERROR_INVALID_PARAM, create(nullptr)) << name;
    }

    /// Destroyers.
    template <typename Record>
    std::enable_if_t<kIsRecord<Record>> operator()(const char* name,
                                                   qra_error_code_e (*destroy)(Record*)) const {
        ++functions;
        EXPECT_EQ(QRA_ERROR_INVALID_PARAM, destroy(nullptr)) << name;
    }

    /// Setters and getters.
    template <typename Record, typename Value>
    std::enable_if_t<kIsRecord<Record>> operator()(const char* name,
                                                   qra_error_code_e (*access)(Record*, Value)) const {
        ++functions;
        const Param<Record> record;
        GoodArgument<Value> good;
        // The fields of these records are accepted and not looked at.
        constexpr bool kUnread = std::is_same_v<Record, qra_comment_s> ||
                                 std::is_same_v<Record, qra_like_s> || std::is_same_v<Record, qra_detail_s>;
        const qra_error_code_e refused = kUnread ? QRA_ERROR_NONE : QRA_ERROR_INVALID_PARAM;
        EXPECT_EQ(refused, access(nullptr, good)) << name;
        if constexpr (std::is_same_v<Value, const char*>) {
            EXPECT_EQ(refused, access(record, nullptr)) << name << " of null";
            EXPECT_EQ(refused, access(record, "")) << name << " of an empty text";
        } else if (std::strstr(name, "_param_get_")) {
            EXPECT_EQ(refused, access(record, Value())) << name << " into null";
        }
        if constexpr (std::is_same_v<Value, char**>) {
            char* text = nullptr;
            EXPECT_EQ(kUnread ? QRA_ERROR_NONE : QRA_ERROR_NOT_EXIST, access(record, &text))
                << name << " of a text that was never set";
            EXPECT_EQ(nullptr, text) << name;
        }
    }

    template <typename... Other>
    void operator()(Other...) const {}
};

TEST(HostileInput, NoRecordFunctionTakesNull) {
    int functions = 0;
    for_each_function(RecordProbe{functions});
    EXPECT_EQ(187, functions);
}

TEST(HostileInput, OpaquePointersTakeNullWhereTheyMay) {
    const Param<qra_general_s> general;
    const Param<qra_share_s> share;
    EXPECT_EQ(QRA_ERROR_NONE, qra_param_set_general_service_provider(general, nullptr));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_param_set_share_dlna_service_provider(share, nullptr));
}

TEST(HostileInput, ARequestNeedsARecordASourceAndRoomForItsHandle) {
    const Param<qra_general_s> request;
    Handle handle = nullptr;
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(nullptr, nullptr, nullptr, &handle));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(request, nullptr, nullptr, &handle))
        << "no source";
    qra_param_set_general_source(request, "SOURCE_MSC");
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(request, nullptr, nullptr, nullptr));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(request, nullptr, nullptr, &handle)) << "no path";
    EXPECT_EQ(nullptr, handle);
}

TEST(HostileInput, ACameraRequestNeedsItsTexts) {
    const auto refused = [](const char* category, const char* type, const char* folder) {
        const Param<qra_general_s> request;
        qra_param_set_general_source(request, "SOURCE_PTP");
        qra_param_set_general_sort_category(request, category);
        qra_param_set_general_content_type(request, type);
        qra_param_set_general_folder_id(request, folder);
        Handle handle = nullptr;
        const qra_error_code_e code = qra_request_list_v2(request, nullptr, nullptr, &handle);
        return code == QRA_ERROR_INVALID_PARAM && handle == nullptr;
    };
    EXPECT_TRUE(refused(nullptr, "CONTENT-FOLDER", "0")) << "no sort category";
    EXPECT_TRUE(refused("CATEGORY-FOLDER-TITLE", "CONTENT-FOLDER", nullptr)) << "no folder";
    EXPECT_TRUE(refused("CATEGORY-FOLDER-TITLE", nullptr, "0")) << "no content type";
    EXPECT_TRUE(refused("CATEGORY-TITLE", "CONTENT-MUSIC", nullptr)) << "no content of cameras";
}

TEST(HostileInput, AMediaServerWithoutTheHomeNetworkServiceIsRefused) {
    const Param<qra_general_s> request;
    qra_param_set_general_source(request, "SOURCE_DLNA");
    Handle handle = nullptr;
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_request_list_v2(request, nullptr, nullptr, &handle)) << "no id";
    qra_param_set_general_path(request, "uuid:1");
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_request_list_v2(request, nullptr, nullptr, &handle));
    EXPECT_EQ(nullptr, handle);
}

TEST(HostileInput, WithoutTheHomeNetworkServiceThereAreNoServers) {
    qra_storage_list_h list = nullptr;
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_get_dlna_list(&list));
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_set_dlna_callback(nullptr, nullptr));
    EXPECT_EQ(QRA_ERROR_NONE, qra_unset_dlna_callback());
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_finalize_dlna_service(nullptr, nullptr)) << "not started";
}

TEST(HostileInput, ASourceOfTheEngineWithoutAnAccountIsRefused) {
    for (const char* source : {"CloudSource", "source_msc", " "}) {
        const Param<qra_general_s> request;
        qra_param_set_general_source(request, source);
        Handle handle = nullptr;
        EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(request, nullptr, nullptr, &handle)) << source;
        EXPECT_EQ(nullptr, handle) << source;
    }
}

TEST(HostileInput, APlaylistRequestNeedsAllItsTexts) {
    const Param<qra_general_s> request;
    Handle handle = nullptr;
    qra_param_set_general_source(request, "SOURCE_PLAYLIST");
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(request, nullptr, nullptr, &handle));
    qra_param_set_general_path(request, "/");
    qra_param_set_general_playlist_name(request, "Blues");
    qra_param_set_general_content_type(request, "CONTENT-MUSIC");
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_request_list_v2(request, nullptr, nullptr, &handle));
    EXPECT_EQ(nullptr, handle);
}

TEST(HostileInput, FunctionsWithoutARequestRefuseNullsAndUnknowns) {
    const MediaDrive drive;
    char empty[] = "";
    char nowhere[] = "/nowhere/at/all";
    char* id = nullptr;
    int number = 7;
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_get_storage_id_v2(nullptr, &id));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_get_storage_id_v2(nowhere, nullptr));
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_get_storage_id_v2(empty, &id));
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_get_storage_id_v2(nowhere, &id));
    EXPECT_EQ(nullptr, id);
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_set_item_value_int_mcf(nullptr, "PLAYED_COUNT", 1));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_set_item_value_int_mcf("1", nullptr, 1));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_get_item_value_int_mcf(nullptr, "PLAYED_COUNT", &number));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_get_item_value_int_mcf("1", nullptr, &number));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_get_item_value_int_mcf("1", "PLAYED_COUNT", nullptr));
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_get_item_value_int_mcf("", "", &number));
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_set_item_value_int_mcf("' OR 1=1 --", "PLAYED_COUNT", 1));
    EXPECT_EQ(7, number);
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_uuid_random(nullptr));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_uuid_time(nullptr));
    register_backtrace_handler();
    unregister_backtrace_handler();
}

}  // namespace
