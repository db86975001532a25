#include <json/json.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "accounts.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/json_text.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"

namespace {

/// What the tool shows of an account: all but the password.
struct AccountLine {
    std::string name;
    std::string plugin;
    std::string address;
    std::string user;
};

[[noreturn]] void fail_request(const std::string& message) {
    throw CommandError(ExitStatus::RequestFailed, message);
}

void check(int result, const std::string& name) {
    const std::string storage = printable_text(account_storage());
    switch (result) {
        case ACCOUNT_OK:
            return;
        case ACCOUNT_ERROR_PARAM:
            throw CommandError(
                ExitStatus::Usage,
                "an account needs a name, a plug-in and an address that is a URL without user and "
                "password, all in UTF-8 without control characters");
        case ACCOUNT_ERROR_SCHEME:
            throw CommandError(ExitStatus::Usage,
                               std::string("the address of an account begins with ") + account_schemes());
        case ACCOUNT_ERROR_EXISTS:
            fail_request("there is an account " + printable_text(name) + " already; remove it first");
        case ACCOUNT_ERROR_NOT_FOUND:
            fail_request("there is no account " + printable_text(name));
        case ACCOUNT_ERROR_UNSAFE:
            fail_request(storage +
                         " is not used, since others may read or replace it (it must be your own, with mode "
                         "0600, in a directory that only you may write to)");
        case ACCOUNT_ERROR_WRITE:
            fail_request(storage + " could not be written");
        default:
            fail_request(storage + " could not be read");
    }
}

/// The first line of the standard input.
std::string read_password() {
    std::string password;
    if (!std::getline(std::cin, password)) {
        throw CommandError(ExitStatus::Usage, "no password came on the standard input");
    }
    return password;
}

std::vector<AccountLine> all_accounts() {
    std::vector<AccountLine> accounts;
    const auto keep = [](const account_s* account, void* lines) {
        static_cast<std::vector<AccountLine>*>(lines)->push_back(
            {account->name, account->plugin, account->address, account->user});
        return true;
    };
    check(account_foreach(keep, &accounts), "");
    return accounts;
}

Json::Value json_of(const AccountLine& account) {
    Json::Value object(Json::objectValue);
    object["name"] = account.name;
    object["plugin"] = account.plugin;
    object["address"] = account.address;
    object["user"] = account.user;
    return object;
}

}  // namespace

void run_account_add(const CommandLine& line) {
    const AccountOptions& options = line.account;
    const std::string password = options.password_from_stdin ? read_password() : "";
    const account_s account = {options.name.c_str(), options.plugin.c_str(), options.address.c_str(),
                               options.user.c_str(), password.c_str()};
    check(account_add(&account), options.name);
}

void run_account_list(const CommandLine& line) {
    const std::vector<AccountLine> accounts = all_accounts();
    if (line.json) {
        for (const AccountLine& account : accounts) {
            print_json(json_of(account));
        }
        return;
    }
    std::size_t name_width = 0;
    std::size_t plugin_width = 0;
    std::size_t user_width = 0;
    for (const AccountLine& account : accounts) {
        name_width = std::max(name_width, cell_width(printable_text(account.name)));
        plugin_width = std::max(plugin_width, cell_width(printable_text(account.plugin)));
        user_width = std::max(user_width, cell_width(printable_text(account.user)));
    }
    for (const AccountLine& account : accounts) {
        print(padded(printable_text(account.name), name_width) +
              padded(printable_text(account.plugin), plugin_width) +
              padded(printable_text(account.user), user_width) + printable_text(account.address) + "\n");
    }
}

void run_account_remove(const CommandLine& line) {
    check(account_remove(line.account.name.c_str()), line.account.name);
}
