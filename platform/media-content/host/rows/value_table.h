#ifndef QRA_MEDIA_CONTENT_ROWS_VALUE_TABLE_H
#define QRA_MEDIA_CONTENT_ROWS_VALUE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/media-content/host/database/sqlite_connection.h"

namespace media_content {

enum class ValueType : uint8_t { kNumber, kReal, kText };

/// A value that a row can be asked for, beyond what its list has read.
struct ValueColumn {
    const char* sql;  ///< over m, and p or u
    ValueType type;
};

/// The values of the rows of one kind. Column numbers are those of the enumerations below.
struct ValueTable {
    const char* from;  ///< the tables, m among them
    const ValueColumn* columns;
    size_t count;
};

/// Values of media_info_h and of its image, video and audio handles.
enum class MediaValue : uint8_t {
    kRating,
    kPlayedCount,
    kPlayedPosition,
    kPlayedTime,
    kStitchType,
    kFavorite,
    kIsDrm,
    kSize,
    kAddedTime,
    kModifiedTime,
    kWidth,
    kHeight,
    kOrientation,
    kIso,
    kDuration,
    kBitRate,
    kChannels,
    kSampleRate,
    kBitsPerSample,
    kLongitude,
    kLatitude,
    kAltitude,
    kFNumber,
    kTitle,
    kMimeType,
    kAuthor,
    kProvider,
    kContentName,
    kCategory,
    kLocationTag,
    kAgeRating,
    kKeyword,
    kDateTaken,
    kBurstId,
    kExposureTime,
    kModel,
    kAlbum,
    kArtist,
    kGenre,
    kComposer,
    kYear,
    kRecordedDate,
    kCopyright,
    kTrackNumber,
    kCount
};

enum class RecordingValue : uint8_t {
    kTimezone,
    kPtc,
    kMajor,
    kMinor,
    kChannelType,
    kProgramNum,
    kDuration,
    kEmbargoTime,
    kExpiryTime,
    kStartTime,
    kProgramStartTime,
    kProgramEndTime,
    kProgramDate,
    kParentalRating,
    kAspectRatio,
    kResolution,
    kSportsType,
    kGuidanceLength,
    kTvMode,
    kPlayCount,
    kHd,
    kTimerRecord,
    kSeriesRecord,
    kSubtitle,
    kTtx,
    kAd,
    kHardOfHearingRadio,
    kDataService,
    kContentLock,
    kContentWatch,
    kHasAudioOnly,
    kIsLocalRecord,
    kSize,
    kStorageId,
    kChannelName,
    kChannelNum,
    kProgramTitle,
    kProgramCrid,
    kGuidance,
    kSynopsis,
    kGenre,
    kLanguage,
    kModifiedMonth,
    kPrivateData,
    kCount
};

enum class UhdValue : uint8_t {
    kSize,
    kModifiedTime,
    kPlayedPosition,
    kPlayedCount,
    kContentId,
    kContentTitle,
    kReleaseDate,
    kCount
};

const ValueTable& media_values();
const ValueTable& recording_values();
const ValueTable& uhd_values();

/// "SELECT m.id, values... FROM ... WHERE m.id IN (?, ...)" with that many question marks.
std::string select_values(const ValueTable& table, size_t rows);

/// The values of one row, in one piece of memory. Never changes.
class ValueBlock {
public:
    /// Reads the columns of the current row from `first_column` on.
    static std::unique_ptr<const ValueBlock> read(const ValueTable& table, const Query& row,
                                                  int first_column);

    int64_t number(size_t column) const { return slots()[column]; }
    double real(size_t column) const;
    std::string_view text(size_t column) const;

    static void operator delete(void* block);

private:
    ValueBlock() = default;

    // A number, the bits of a real number, or where a text starts and, in the upper half, how long it is.
    const int64_t* slots() const { return reinterpret_cast<const int64_t*>(this); }
};

}  // namespace media_content

#endif
