#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "ambrelio/com/text.h"
#include "ambrelio/platform/program_arguments.h"

namespace ambrelio {

std::vector<std::string> ProgramArguments(int, char**) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> words(
      ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(com::FromWide(words.get()[i]));
  return arguments;
}

}  // namespace ambrelio
