#include "ambrelio/value/automation_error.h"

namespace ambrelio {
namespace {

const char* Sentence(RuntimeError error) {
  switch (error) {
    case RuntimeError::kInvalidCall:
      return "Invalid procedure call or argument";
    case RuntimeError::kOverflow:
      return "Overflow";
    case RuntimeError::kSubscriptOutOfRange:
      return "Subscript out of range";
    case RuntimeError::kDivisionByZero:
      return "Division by zero";
    case RuntimeError::kTypeMismatch:
      return "Type mismatch";
    case RuntimeError::kPathFileAccess:
      return "Path/File access error";
    case RuntimeError::kObjectNotSet:
      return "Object variable or With block variable not set";
    case RuntimeError::kInvalidUseOfNull:
      return "Invalid use of Null";
    case RuntimeError::kInvalidPropertyValue:
      return "Invalid property value";
    case RuntimeError::kObjectRequired:
      return "Object required";
    case RuntimeError::kCannotCreateObject:
      return "ActiveX component can't create object";
    case RuntimeError::kMemberNotFound:
      return "Object doesn't support this property or method";
    case RuntimeError::kArgumentNotOptional:
      return "Argument not optional";
    case RuntimeError::kWrongArgumentCount:
      return "Wrong number of arguments or invalid property assignment";
  }
  return "Application-defined or object-defined error";
}

}  // namespace

void Raise(RuntimeError error, const std::string& detail) {
  std::string description = Sentence(error);
  if (!detail.empty()) description += ": " + detail;
  throw AutomationError(static_cast<int>(error), "Ambrelio", std::move(description));
}

}  // namespace ambrelio
