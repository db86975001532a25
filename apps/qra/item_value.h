#ifndef QRA_APPS_QRA_ITEM_VALUE_H
#define QRA_APPS_QRA_ITEM_VALUE_H

#include <qra/qra_content_agent.h>

#include <optional>
#include <string>
#include <variant>

/// A value at the cursor of a list request: a text as the bytes that the library gave, a number, or a bool.
using ItemValue = std::variant<std::string, long long, unsigned long long, double, bool>;

/// Reads a field with the getter of its type; a field that this tool does not know is tried with each getter,
/// text first.
/// @return nothing if the tile at the cursor has no such value
std::optional<ItemValue> read_item_value(qra_agent_handler_h list, const std::string& field);

/// Values whose absence does not matter: "" or 0 then. A negative number comes as 0.
std::string read_text(qra_agent_handler_h list, const char* field);
unsigned long long read_number(qra_agent_handler_h list, const char* field);

/// The value as `qra get` prints it.
std::string to_text(const ItemValue& value);

#endif
