#include "console.h"

#include <cerrno>
#include <string>
#include <system_error>

#include "failure.h"

namespace ambrelio::cli {
namespace {

void Check(const std::ostream& out) {
  if (out) return;
  const std::string cause = errno == 0 ? "" : ": " + std::generic_category().message(errno);
  throw Failure(ExitCode::kFileProblem, "the results cannot be written to standard output" + cause);
}

}  // namespace

void Write(Console& console, std::string_view text) {
  errno = 0;
  console.out << text;
  Check(console.out);
}

void Flush(Console& console) {
  errno = 0;
  console.out.flush();
  Check(console.out);
}

}  // namespace ambrelio::cli
