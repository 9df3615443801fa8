// What a call gave, for people and for programs that read values, not JSON.
//
// `class_name` and `member` say what was called; they choose the names of the columns.
#pragma once

#include <string>

#include "ambrelio/automation/call.h"

namespace ambrelio::cli {

// For people: lists as tables with Spanish headings, and the arguments that the member changed.
std::string CallReport(const std::string& class_name, const automation::Member& member,
                       const automation::CallResult& result);

// Comma-separated values: a list by its columns, any other result as a column "resultado" beside
// the arguments that the member changed. Nothing for a member that gives nothing.
std::string CallCsv(const std::string& class_name, const automation::Member& member,
                    const automation::CallResult& result);

}  // namespace ambrelio::cli
