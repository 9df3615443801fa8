// What a call gave, for people: lists as tables with Spanish headings.
#pragma once

#include <string>

#include "ambrelio/automation/call.h"

namespace ambrelio::cli {

// `class_name` and `member` say what was called; they choose the headings.
std::string CallReport(const std::string& class_name, const automation::Member& member,
                       const automation::CallResult& result);

}  // namespace ambrelio::cli
