#ifndef QRA_AGENT_AGENT_SRC_QRA_ITEM_FIELDS_H
#define QRA_AGENT_AGENT_SRC_QRA_ITEM_FIELDS_H

#include <vector>

// What the JSON text of each kind of item holds besides "MEDIA_TYPE". A row is a key of the text and the
// field of the same name that is read for it.

enum class EItemField {
    Text,
    Int,
    UInt64,
    Bool,
    ExposureTime,  ///< a text, with "s" appended
    FNumber,       ///< a real number, as "f/2.8"
    Iso            ///< a number, as "ISO100"
};

/// The sources on which an item has a field.
enum class EFieldSource { Any, OnlyDLNA, NotDLNA };

struct ItemField {
    const char* szKey;
    EItemField eType;
    EFieldSource eSource = EFieldSource::Any;
};

using ItemFields = std::vector<ItemField>;

extern const ItemFields kFolderFields;
extern const ItemFields kVideoFields;
extern const ItemFields kMusicFields;
extern const ItemFields kImageFields;
extern const ItemFields kPVRFields;
extern const ItemFields kPlayListFields;
extern const ItemFields kGroupFields;
extern const ItemFields kUHDFields;
extern const ItemFields kSCSAFields;

#endif
