// How a statement goes through the embedded engine, as its engineer reads it.
#pragma once

#include <string>

#include "ambrelio/engine/embedded/execution/explanation.h"
#include "json_value.h"

namespace ambrelio::cli {

// The rewrites made, the parameters, and each statement of SQLite with its plan, in whole lines.
std::string PlanText(const embedded::Explanation& explanation);

// {"shape":"...","by_text":false,"rewrites":[{"name":"...","on":true,"made":n},...],
// "plan_refused":false,"parameters":[...],"statements":[{"use":"rows","sql":"...","plan":
// [{"step":"...","below":[...]},...]},...]}; `below` is left out where there is nothing.
Json PlanJson(const embedded::Explanation& explanation);

}  // namespace ambrelio::cli
