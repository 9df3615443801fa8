// Values as JSON.
//
//   Null, True, 5, 0.6, "text"    null, true, 5, 0.6, "text"; doubles read back to the same bits
//   Date                          "YYYY-MM-DD HH:MM:SS"
//   Empty, Nothing                {"empty":true}, {"nothing":true}
//   list                          [...]
//   object                        {"object":"Tolva"}, never read back
//
// {"ref":"name"}, only read, is a value kept under a name, where there are such.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::cli {

// Keeps the order in which keys were written.
using Json = nlohmann::ordered_json;

Json ToJson(const Variant& value);

// Gives what stands for a {"ref":"name"}.
using ReferenceReader = std::function<Variant(const std::string& name)>;

// Text stays text, also when it has the form of a date. Raises Failure (wrong input) for what no
// value looks like, which without `references` a {"ref":"name"} is too.
Variant ToVariant(const Json& json, const ReferenceReader& references = nullptr);

// Reads one JSON text whole. Raises Failure (wrong input) for malformed text, a key given twice and
// nesting beyond reason.
Json ParseJson(std::string_view text);

// The text that an object has under a key. Raises Failure (wrong input) for another value.
const std::string& TextOf(const Json& object, const char* key);

// One line without its end; bytes that are no UTF-8 become U+FFFD.
std::string JsonLine(const Json& json);

// {"error":number,"description":"..."}
Json ErrorJson(const AutomationError& error);

}  // namespace ambrelio::cli
