// The one exception type of the library.
//
// Thrown where a failure is known, translated once at each door (automation call, command line).
// The number is the one that a Visual Basic or DAO client sees in `Err.Number`: run-time errors of
// the language below 1000, the data access errors from 3000 on.
#pragma once

#include <exception>
#include <string>

namespace ambrelio {

class AutomationError : public std::exception {
 public:
  AutomationError(int number, std::string source, std::string description)
      : number_(number), source_(std::move(source)), description_(std::move(description)) {}

  int number() const { return number_; }
  // The class or library that failed, as `DAO.Database` or `Ambrelio`.
  const std::string& source() const { return source_; }
  // A sentence for people; programs test the number.
  const std::string& description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int number_;
  std::string source_;
  std::string description_;
};

// The run-time errors of the language that the library raises itself.
enum class RuntimeError : int {
  kInvalidCall = 5,
  kOverflow = 6,
  kSubscriptOutOfRange = 9,
  kDivisionByZero = 11,
  kTypeMismatch = 13,
  kPathFileAccess = 75,
  kObjectNotSet = 91,
  kInvalidUseOfNull = 94,
  kInvalidPropertyValue = 380,
  kObjectRequired = 424,
  kCannotCreateObject = 429,
  kMemberNotFound = 438,
  kArgumentNotOptional = 449,
  kWrongArgumentCount = 450,
};

// Throws the AutomationError of `error`, with the usual sentence, or with `detail` behind it.
[[noreturn]] void Raise(RuntimeError error, const std::string& detail = {});

}  // namespace ambrelio
