#include "platform/media-content/host/query/group_list.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/query/row_query.h"
#include "platform/media-content/host/text/local_calendar.h"
#include "platform/media-content/host/text/sort_key.h"

namespace media_content {

namespace {

enum class GroupType { kDate, kText, kNumberPair, kAll };

struct GroupField {
    int number;  ///< media_group_field_e
    RowKind kind;
    GroupType type;
    const char* columns;  ///< what the value is made of
    const char* order;    ///< of the groups, where the filter has none
};

constexpr GroupField kFields[] = {
    {MEDIA_GROUP_DATE, RowKind::kMedia, GroupType::kDate, "m.sort_time", "MEDIA_MODIFIED_DATE"},
    {MEDIA_GROUP_TITLE, RowKind::kMedia, GroupType::kText, "m.title", "MEDIA_TITLE"},
    {MEDIA_GROUP_ARTIST, RowKind::kMedia, GroupType::kText, "m.artist", "MEDIA_ARTIST"},
    {MEDIA_GROUP_GENRE, RowKind::kMedia, GroupType::kText, "m.genre", "MEDIA_GENRE"},
    {MEDIA_GROUP_FOLDER_DATE, RowKind::kMedia, GroupType::kDate, "m.sort_time", "MEDIA_MODIFIED_DATE"},
    {MEDIA_GROUP_ALBUM, RowKind::kMedia, GroupType::kText, "m.album", "MEDIA_ALBUM"},
    {MEDIA_GROUP_NONE, RowKind::kMedia, GroupType::kAll, "NULL", "MEDIA_DISPLAY_NAME"},
    {MEDIA_GROUP_CHANNEL_NAME, RowKind::kRecording, GroupType::kText, "p.channel_name", "PVR_CHANNEL_NAME"},
    {MEDIA_GROUP_CHANNEL_NUM, RowKind::kRecording, GroupType::kNumberPair, "p.major, p.minor",
     "PVR_MAJOR,PVR_MINOR"},
    {MEDIA_GROUP_PVR_TITLE, RowKind::kRecording, GroupType::kText, "p.program_title", "PVR_PROGRAM_TITLE"},
    {MEDIA_GROUP_PVR_DATE, RowKind::kRecording, GroupType::kDate, "m.sort_time", "PVR_MODIFIED_DATE"},
};

struct Group {
    std::string name;
    int count = 0;
};

/// Puts rows, which come in the order of the list, into groups.
class Grouping {
public:
    explicit Grouping(GroupType type) : type_(type) {}

    void add(const Query& row) {
        std::string name = name_of(row);
        // Rows of one group come one after the other nearly always.
        if (groups_.empty() || groups_[current_].name != name) {
            const std::string key = type_ == GroupType::kText ? fold(name) : name;
            const auto [known, added] = by_key_.try_emplace(key, groups_.size());
            current_ = known->second;
            if (added) {
                groups_.push_back({std::move(name), 0});
            }
        }
        ++groups_[current_].count;
    }

    const std::vector<Group>& groups() const { return groups_; }

private:
    std::string name_of(const Query& row) {
        switch (type_) {
            case GroupType::kDate:
                return calendar_.date(row.integer(0));
            case GroupType::kText:
                return std::string(row.text(0));
            case GroupType::kNumberPair:
                return std::to_string(row.integer(0)) + '-' + std::to_string(row.integer(1));
            case GroupType::kAll:
                break;
        }
        return {};
    }

    GroupType type_;
    LocalCalendar calendar_;
    std::vector<Group> groups_;
    std::unordered_map<std::string, size_t> by_key_;
    size_t current_ = 0;
};

std::vector<Group> read_groups(const GroupField& field, const filter_s* filter) {
    filter_s ordered;
    if (filter != nullptr) {
        ordered = *filter;
    }
    if (ordered.order_keys.empty()) {
        ordered.order_keys = field.order;
        ordered.order = MEDIA_CONTENT_ORDER_ASC;
    }
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    Sql sql = select_rows(lease.connection(), field.kind, &ordered);
    append_order(sql, field.kind, &ordered);
    Query query(lease.connection(), std::string("SELECT ") + field.columns + sql.text);
    bind_values(query, sql.values);
    Grouping grouping(field.type);
    while (query.step()) {
        grouping.add(query);
    }
    return grouping.groups();
}

}  // namespace

void list_groups(const filter_s* filter, int group_field, media_group_cb callback, void* user_data) {
    const auto* field = std::find_if(std::begin(kFields), std::end(kFields),
                                     [&](const GroupField& each) { return each.number == group_field; });
    if (field == std::end(kFields)) {
        throw MediaError(MEDIA_CONTENT_ERROR_INVALID_PARAMETER,
                         "no group field " + std::to_string(group_field));
    }
    for (const Group& group : read_groups(*field, filter)) {
        if (!callback(group.name.empty() ? nullptr : group.name.c_str(), group.count, user_data)) {
            return;
        }
    }
}

}  // namespace media_content
