// What the tests of this room share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/value/automation_error.h"
#include "tree_printer.h"

namespace ambrelio::embedded::sql {

inline std::string Printed(std::string_view statement) {
  return TreePrinter().PrintStatement(Parse(statement));
}

inline std::string PrintedExpression(std::string_view expression) {
  return TreePrinter().Print(*ParseExpression(expression));
}

// The error that parsing `statement` raises; number 0 when there is none.
inline AutomationError ErrorOf(std::string_view statement) {
  try {
    Parse(statement);
  } catch (const AutomationError& error) {
    return error;
  }
  return AutomationError(0, "", "");
}

inline int ErrorNumberOf(std::string_view statement) { return ErrorOf(statement).number(); }

}  // namespace ambrelio::embedded::sql
