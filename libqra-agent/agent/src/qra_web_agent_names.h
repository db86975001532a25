#ifndef QRA_AGENT_AGENT_SRC_QRA_WEB_AGENT_NAMES_H
#define QRA_AGENT_AGENT_SRC_QRA_WEB_AGENT_NAMES_H

// Names that several units of the web agent share.

constexpr char kCompleteSignal[] = "qra_request_normal_complete";
constexpr char kGetPartialList[] = "get_partial_list";

/// The key of the one list record that a handle has.
constexpr char kRequestListKey[] = "qra_request_list";

// Keys of the text that hands a list over to a player.
constexpr char kAgentHandleKey[] = "qra_agent_handle";
constexpr char kSelectListShmNameKey[] = "qra_selectlist_shmname";

// Keys of the engine's answers.
constexpr char kActRequestKey[] = "qra_act_request_times";
constexpr char kDetailRequestKey[] = "qra_detail_request_times";
/// Why a list failed, in words for a person; an engine may leave it out.
constexpr char kErrorTextKey[] = "qra_error_text";

/// The id of handles that no engine knows. Engines count from 1.
constexpr unsigned int kNobodysId = 0;

#endif
