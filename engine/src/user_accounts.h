#ifndef QRA_ENGINE_USER_ACCOUNTS_H
#define QRA_ENGINE_USER_ACCOUNTS_H

#include "engine/src/plugin_registry.h"

namespace engine {

/// Looks accounts up where the platform keeps them for their users.
AccountLookup user_accounts();

}  // namespace engine

#endif
