#include "engine/src/user_accounts.h"

#include "accounts.h"

namespace engine {

namespace {

std::string reason_of(int result, const std::string& name) {
    switch (result) {
        case ACCOUNT_ERROR_NOT_FOUND:
        case ACCOUNT_ERROR_PARAM:
            return "there is no account " + name;
        case ACCOUNT_ERROR_UNSAFE:
            return "the file of the accounts is not used, since others than its user may read or replace it";
        default:
            return "the file of the accounts cannot be read";
    }
}

bool keep(const account_s* stored, void* account) {
    *static_cast<Account*>(account) = {stored->name, stored->plugin, stored->address, stored->user,
                                       stored->password};
    return false;
}

std::optional<Account> find_account(uid_t user, const std::string& name, std::string& reason) {
    Account account;
    const int result = account_find(user, name.c_str(), keep, &account);
    if (result != ACCOUNT_OK) {
        reason = reason_of(result, name);
        return std::nullopt;
    }
    return account;
}

}  // namespace

AccountLookup user_accounts() {
    return find_account;
}

}  // namespace engine
