/**
 * @file qra_content_agent.h
 * Everything that the QRA content agent offers. Start reading at qra_agent.h.
 */
#ifndef QRA_QRA_CONTENT_AGENT_H
#define QRA_QRA_CONTENT_AGENT_H

#include <qra/qra_agent.h>
#include <qra/qra_batch.h>
#include <qra/qra_device_check.h>
#include <qra/qra_folder_thumb.h>
#include <qra/qra_param.h>
#include <qra/qra_playlist.h>
#include <qra/qra_storage.h>
#include <qra/qra_types.h>
#include <qra/qra_util.h>

#endif
