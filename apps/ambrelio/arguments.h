// What the command line does to paths and arguments before a member gets them.
#pragma once

#include <optional>
#include <string_view>

#include "ambrelio/automation/call.h"
#include "ambrelio/automation/path.h"

namespace ambrelio::cli {

// A path of the object model. IniciarCampana is read as IniciarCampaña, which not every shell can
// type. Raises Failure (wrong input) for what is no path.
automation::Path ReadPath(std::string_view text);

// Text of the form "YYYY-MM-DD HH:MM:SS" becomes a date where a date or a Variant is wanted. An
// argument that the member only writes may be left out: it gets a fresh variable, as a host would
// declare one.
automation::Arguments PrepareArguments(const automation::Member& member,
                                       automation::Arguments arguments);

// A date as it is typed at the shell: YYYY-MM-DD HH:MM:SS, also with a T between, or YYYY-MM-DD for
// its midnight. Nothing for any other text.
std::optional<OleDate> ParseMoment(std::string_view text);

// An argument as it is typed at the shell: "-" leaves it out, numbers have a point, dates also
// stand alone (YYYY-MM-DD) or with a T; lists and quoted text are JSON. Where text is wanted, all
// else is text as it stands. Raises Failure (wrong input) for malformed JSON.
std::optional<Variant> ParseArgument(std::string_view text, automation::ValueType wanted);

}  // namespace ambrelio::cli
