// Values as JSON.
//
//   Null, True, 5, 0.6, "text"    null, true, 5, 0.6, "text"; doubles read back to the same bits
//   Date                          "YYYY-MM-DD HH:MM:SS"
//   Empty, Nothing                {"empty":true}, {"nothing":true}
//   list                          [...]
//   object                        {"object":"Tolva"}, never read back
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::cli {

// Keeps the order in which keys were written.
using Json = nlohmann::ordered_json;

Json ToJson(const Variant& value);

// Text stays text, also when it has the form of a date. Raises Failure (wrong input) for what no
// value looks like.
Variant ToVariant(const Json& json);

// Reads one JSON text whole. Raises Failure (wrong input) for malformed text, a key given twice and
// nesting beyond reason.
Json ParseJson(std::string_view text);

// One line without its end; bytes that are no UTF-8 become U+FFFD.
std::string JsonLine(const Json& json);

// {"error":number,"description":"..."}
Json ErrorJson(const AutomationError& error);

}  // namespace ambrelio::cli
