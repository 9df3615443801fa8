#include "measure.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>

namespace ambrelio::bench {

namespace {

[[noreturn]] void WorkAndExit(const std::function<void()>& work, int out, const void* result,
                              size_t size) {
  try {
    work();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    std::exit(1);
  }
  std::fflush(nullptr);
  _exit(write(out, result, size) == static_cast<ssize_t>(size) ? 0 : 1);
}

}  // namespace

double SecondsSince(const std::chrono::steady_clock::time_point& start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int64_t PeakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stoll(line.substr(6)) / 1024;
  }
  return 0;
}

void ForgetPeakMemory() { std::ofstream("/proc/self/clear_refs") << "5"; }

int64_t PeakMemoryOfChildren() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return usage.ru_maxrss / 1024;
}

void RunInOwnProcess(const std::function<void()>& work, void* result, size_t size) {
  std::fflush(nullptr);
  int ends[2] = {};
  if (pipe(ends) != 0) std::exit(1);
  const pid_t child = fork();
  if (child < 0) std::exit(1);
  if (child == 0) WorkAndExit(work, ends[1], result, size);
  close(ends[1]);
  const ssize_t got = read(ends[0], result, size);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0 || got != static_cast<ssize_t>(size)) std::exit(1);
}

}  // namespace ambrelio::bench
