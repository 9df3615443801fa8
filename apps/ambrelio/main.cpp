#include <csignal>
#include <iostream>

#include "ambrelio/platform/program_arguments.h"
#include "ambrelio/platform/terminal.h"
#include "run.h"

int main(int argc, char** argv) {
#ifdef SIGPIPE
  // A reader that goes away shows as a write that fails, which is reported like a full disk.
  std::signal(SIGPIPE, SIG_IGN);
#endif
  std::ios::sync_with_stdio(false);
  ambrelio::UsePlainUtf8Streams();
  std::cin.tie(nullptr);
  ambrelio::cli::Console console{std::cin, std::cout, std::cerr,
                                 ambrelio::ErrorOutputIsTerminal() && !ambrelio::OutputIsTerminal(),
                                 ambrelio::OutputIsTerminal()};
  return static_cast<int>(ambrelio::cli::Run(ambrelio::ProgramArguments(argc, argv), console));
}
