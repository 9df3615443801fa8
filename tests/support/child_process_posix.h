// A program run by a test; see child_process.h.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace ambrelio::test {

class ChildProcess {
 public:
  // `command` is the program's path and its arguments. Standard error goes to `error_file`, or
  // nowhere, or kErrorsToOutput.
  explicit ChildProcess(const std::vector<std::string>& command,
                        const std::string& error_file = "/dev/null") {
    int to_child[2], from_child[2];
    if (pipe2(to_child, O_CLOEXEC) != 0 || pipe2(from_child, O_CLOEXEC) != 0) {
      throw std::runtime_error("no pipe");
    }
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("no process");
    if (pid_ == 0) {
      std::vector<char*> arguments;
      for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
      arguments.push_back(nullptr);
      const int errors = error_file == kErrorsToOutput
                             ? from_child[1]
                             : open(error_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      dup2(to_child[0], 0);
      dup2(from_child[1], 1);
      dup2(errors, 2);
      signal(SIGPIPE, SIG_DFL);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
    close(to_child[0]);
    close(from_child[1]);
    input_ = to_child[1];
    output_ = fdopen(from_child[0], "r");
  }

  ~ChildProcess() {
    CloseInput();
    if (pid_ > 0) Kill();
    std::fclose(output_);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // False when the child no longer reads.
  bool Write(const std::string& text) {
    // A child that ends early makes the write fail, not the test end.
    const auto before = signal(SIGPIPE, SIG_IGN);
    const bool written = WriteAll(text);
    signal(SIGPIPE, before);
    return written;
  }

  void CloseInput() {
    if (input_ >= 0) close(input_);
    input_ = -1;
  }

  // The next line without its end; false at the end of the output, where a line cut short counts
  // for nothing.
  bool ReadLine(std::string& line) {
    line.clear();
    for (int c; (c = std::fgetc(output_)) != EOF;) {
      if (c == '\n') return true;
      line += static_cast<char>(c);
    }
    return false;
  }

  void Signal(int signal) { kill(pid_, signal); }

  void Kill() {
    Signal(SIGKILL);
    Wait();
  }

  // Waits for the end and gives the exit code, or minus the signal's number.
  int Wait() {
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  bool WriteAll(const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
      const ssize_t count = write(input_, text.data() + done, text.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      done += static_cast<size_t>(count);
    }
    return true;
  }

  pid_t pid_ = -1;
  int input_ = -1;
  std::FILE* output_ = nullptr;
};

}  // namespace ambrelio::test
