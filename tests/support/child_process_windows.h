// A program run by a test; see child_process.h.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/com/text.h"

namespace ambrelio::test {

class ChildProcess {
 public:
  // `command` is the program's path and its arguments. Standard error goes to `error_file`, or
  // nowhere, or kErrorsToOutput.
  explicit ChildProcess(const std::vector<std::string>& command,
                        const std::string& error_file = "NUL") {
    HANDLE child_input = nullptr;
    HANDLE child_output = nullptr;
    if (!::CreatePipe(&child_input, &input_, nullptr, 0) ||
        !::CreatePipe(&output_, &child_output, nullptr, 0)) {
      throw std::runtime_error("no pipe");
    }
    const bool together = error_file == kErrorsToOutput;
    const HANDLE errors = together ? child_output
                                   : ::CreateFileW(com::ToWide(error_file).c_str(), GENERIC_WRITE,
                                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                   CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = child_input;
    start.hStdOutput = child_output;
    start.hStdError = errors;
    for (const HANDLE handle : {child_input, child_output, errors}) {
      ::SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    }
    std::wstring line;
    for (const std::string& word : command) line += Quoted(word);
    PROCESS_INFORMATION process{};
    const BOOL started = ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          nullptr, &start, &process);
    ::CloseHandle(child_input);
    ::CloseHandle(child_output);
    if (!together) ::CloseHandle(errors);
    if (!started) throw std::runtime_error("no process: " + command.at(0));
    ::CloseHandle(process.hThread);
    process_ = process.hProcess;
  }

  ~ChildProcess() {
    CloseInput();
    if (process_ != nullptr) Kill();
    CloseOutput();
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // False when the child no longer reads.
  bool Write(const std::string& text) {
    for (size_t done = 0; done < text.size();) {
      DWORD count = 0;
      if (!::WriteFile(input_, text.data() + done, static_cast<DWORD>(text.size() - done), &count,
                       nullptr)) {
        return false;
      }
      done += count;
    }
    return true;
  }

  void CloseInput() {
    if (input_ != nullptr) ::CloseHandle(std::exchange(input_, nullptr));
  }

  // Reads no more.
  void CloseOutput() {
    if (output_ != nullptr) ::CloseHandle(std::exchange(output_, nullptr));
  }

  // The next line without its end; false at the end of the output, where a line cut short counts
  // for nothing.
  bool ReadLine(std::string& line) {
    size_t end = 0;
    while ((end = read_.find('\n')) == std::string::npos) {
      char block[4096];
      DWORD count = 0;
      if (!::ReadFile(output_, block, sizeof block, &count, nullptr)) return false;
      read_.append(block, count);
    }
    line = read_.substr(0, end);
    read_.erase(0, end + 1);
    return true;
  }

  // Ends it as a crash would.
  void Kill() {
    ::TerminateProcess(process_, 1);
    Wait();
  }

  // Waits for the end and gives the exit code.
  int Wait() {
    ::WaitForSingleObject(process_, INFINITE);
    DWORD code = 0;
    ::GetExitCodeProcess(process_, &code);
    ::CloseHandle(std::exchange(process_, nullptr));
    return static_cast<int>(code);
  }

 private:
  // A word of a command line, by the rules that the C library takes it apart with.
  static std::wstring Quoted(const std::string& word) {
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t c : com::ToWide(word)) {
      if (c == L'"') quoted.append(backslashes + 1, L'\\');
      backslashes = c == L'\\' ? backslashes + 1 : 0;
      quoted += c;
    }
    return quoted.append(backslashes, L'\\') + L"\" ";
  }

  HANDLE process_ = nullptr;
  HANDLE input_ = nullptr;
  HANDLE output_ = nullptr;
  std::string read_;  // what has come and was not asked for yet
};

}  // namespace ambrelio::test
