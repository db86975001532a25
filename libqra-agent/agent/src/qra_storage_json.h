#ifndef QRA_AGENT_AGENT_SRC_QRA_STORAGE_JSON_H
#define QRA_AGENT_AGENT_SRC_QRA_STORAGE_JSON_H

#include <memory>
#include <string>
#include <vector>

#include "libqra-agent/agent/src/qra_storage.h"

/// Which values of a device its JSON object has. A media server's are called otherwise than a device's.
enum class StorageFields { ALL, NAMES, SERVER };

/**
 * Devices as the content engine tells of them, and media servers as the DLNA manager does: a JSON object with
 * an array of objects, "devices". Where there is no server, the array may be missing.
 *
 * What an object lacks is left empty; a value of a type that cannot be turned into the field's is a failure
 * of the whole text, as is a text with more devices than a machine can have. Each failure is false and a log
 * line.
 */

bool ReadStorages(const std::string& strJson, StorageFields eFields,
                  std::vector<std::unique_ptr<_qra_storage_s>>& vStorages);

/// An event, in the number "event" beside the array, with its device, the array's first.
bool ReadStorageEvent(const std::string& strJson, int& nEvent, _qra_storage_s& stStorage);

/// The first media server of the array; false if there is none.
bool ReadServer(const std::string& strJson, _qra_storage_s& stStorage);

#endif
