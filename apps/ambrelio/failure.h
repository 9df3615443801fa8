// How a command fails, and the exit codes that scripts test.
#pragma once

#include <stdexcept>
#include <string>

namespace ambrelio::cli {

enum class ExitCode : int {
  kSuccess = 0,
  kAutomationError = 1,  // the library or an engine raised an error
  kWrongInput = 2,       // wrong arguments, or input that is malformed
  kFileProblem = 3,      // a file, folder or database that cannot be read, written or opened
};

// Ends a command. what() is a sentence for the person at the shell.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

// Ends a command whose input is malformed.
[[noreturn]] inline void FailInput(const std::string& problem) {
  throw Failure(ExitCode::kWrongInput, problem);
}

}  // namespace ambrelio::cli
