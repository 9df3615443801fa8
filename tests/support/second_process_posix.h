// A second process by forking; see second_process.h.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <utility>

#include "support/temp_folder.h"

namespace ambrelio::test {

class SecondProcess {
 public:
  // Whether this code runs in the second process; never before the work begins.
  static bool IsThis() { return false; }

  // The child runs `work` and ends; it fails when `work` throws.
  SecondProcess(const TempFolder&, const std::function<void(SecondProcess&)>& work) {
    if (pipe(to_child_) != 0 || pipe(to_parent_) != 0) throw std::runtime_error("no pipe");
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("no process");
    if (pid_ > 0) return;
    try {
      work(*this);
      _exit(EXIT_SUCCESS);
    } catch (...) {
      _exit(EXIT_FAILURE);
    }
  }
  ~SecondProcess() {
    if (pid_ > 0) Kill();
    for (const int end : {to_child_[0], to_child_[1], to_parent_[0], to_parent_[1]}) close(end);
  }
  SecondProcess(const SecondProcess&) = delete;
  SecondProcess& operator=(const SecondProcess&) = delete;

  // On either side: lets the other one go on, or waits until it does. False when it has ended.
  bool Signal() {
    const char sign = 's';
    return write(pid_ > 0 ? to_child_[1] : to_parent_[1], &sign, 1) == 1;
  }
  bool Await() {
    close(pid_ > 0 ? std::exchange(to_parent_[1], -1) : std::exchange(to_child_[1], -1));
    char sign = 0;
    return read(pid_ > 0 ? to_parent_[0] : to_child_[0], &sign, 1) == 1;
  }

  // Waits for the child's end; whether it ended well.
  bool EndedWell() {
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
  }
  // Ends the child as a crash would.
  void Kill() {
    kill(pid_, SIGKILL);
    waitpid(std::exchange(pid_, -1), nullptr, 0);
  }

 private:
  pid_t pid_ = -1;
  int to_child_[2] = {-1, -1};
  int to_parent_[2] = {-1, -1};
};

}  // namespace ambrelio::test
