// What the command line does to arguments before a member gets them.
#pragma once

#include <optional>
#include <string_view>

#include "ambrelio/automation/call.h"

namespace ambrelio::cli {

// Text of the form "YYYY-MM-DD HH:MM:SS" becomes a date where a date or a Variant is wanted. An
// argument that the member only writes may be left out: it gets a fresh variable, as a host would
// declare one.
automation::Arguments PrepareArguments(const automation::Member& member,
                                       automation::Arguments arguments);

// An argument as it is typed at the shell: "-" leaves it out, numbers have a point, dates also
// stand alone (YYYY-MM-DD) or with a T; lists and quoted text are JSON. Where text is wanted, all
// else is text as it stands. Raises Failure (wrong input) for malformed JSON.
std::optional<Variant> ParseArgument(std::string_view text, automation::ValueType wanted);

}  // namespace ambrelio::cli
