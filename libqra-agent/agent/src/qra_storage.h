#ifndef QRA_AGENT_AGENT_SRC_QRA_STORAGE_H
#define QRA_AGENT_AGENT_SRC_QRA_STORAGE_H

#include <qra/qra_storage.h>

/// Bytes of a text field, with the zero byte that it always ends in.
#define QRA_STORAGE_TEXT_SIZE 256

/// A device's record: flat, so that it is copied and freed as a whole.
struct _qra_storage_s {
    char id[QRA_STORAGE_TEXT_SIZE];
    char name[QRA_STORAGE_TEXT_SIZE];
    char mountpath[QRA_STORAGE_TEXT_SIZE];
    char serialnumber[QRA_STORAGE_TEXT_SIZE];
    char vendor[QRA_STORAGE_TEXT_SIZE];
    char partitionlabel[QRA_STORAGE_TEXT_SIZE];
    long long totalsize;
    long long availablesize;
    FileSystem filesystem;
    DeviceClass device_class;
    int address;
    int bus;
    int index;
    char ip[QRA_STORAGE_TEXT_SIZE];
    bool bKelvoraDevice;
};

/// A list; owns the array and the records in it.
struct _qra_storage_list_s {
    int count;
    qra_storage_h* storages;
};

#endif
