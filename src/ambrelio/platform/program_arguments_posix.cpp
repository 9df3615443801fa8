#include "ambrelio/platform/program_arguments.h"

namespace ambrelio {

std::vector<std::string> ProgramArguments(int count, char** values) {
  if (count == 0) return {};
  return {values + 1, values + count};
}

}  // namespace ambrelio
