// A second process that runs the same test; see second_process.h.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include "ambrelio/com/text.h"
#include "support/temp_folder.h"

namespace ambrelio::test {

class SecondProcess {
 public:
  // Whether this code runs in the second process.
  static bool IsThis() { return std::getenv(kParent) != nullptr; }

  // The second process runs `work` and ends; it fails when `work` throws.
  SecondProcess(const TempFolder& folder, const std::function<void(SecondProcess&)>& work) {
    if (!IsThis()) {
      Start(folder);
      return;
    }
    const std::string parent = std::getenv(kParent);
    other_ = ::OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(std::stoul(parent)));
    MakeSigns(parent);
    std::swap(mine_, others_);
    try {
      work(*this);
      ::ExitProcess(EXIT_SUCCESS);
    } catch (...) {
      ::ExitProcess(EXIT_FAILURE);
    }
  }
  ~SecondProcess() {
    if (!ended_) Kill();
    for (const HANDLE handle : {other_, mine_, others_}) ::CloseHandle(handle);
  }
  SecondProcess(const SecondProcess&) = delete;
  SecondProcess& operator=(const SecondProcess&) = delete;

  // On either side: lets the other one go on, or waits until it does. False when it has ended.
  bool Signal() {
    ::ReleaseSemaphore(others_, 1, nullptr);
    return ::WaitForSingleObject(other_, 0) == WAIT_TIMEOUT;
  }
  bool Await() {
    const HANDLE awaited[] = {mine_, other_};
    return ::WaitForMultipleObjects(2, awaited, FALSE, INFINITE) == WAIT_OBJECT_0;
  }

  // Waits for its end; whether it ended well.
  bool EndedWell() {
    DWORD code = EXIT_FAILURE;
    ::WaitForSingleObject(other_, INFINITE);
    ::GetExitCodeProcess(other_, &code);
    ended_ = true;
    return code == EXIT_SUCCESS;
  }
  // Ends it as a crash would.
  void Kill() {
    ::TerminateProcess(other_, EXIT_FAILURE);
    EndedWell();
  }

 private:
  static constexpr const char* kParent = "AMBRELIO_TEST_PARENT";

  void MakeSigns(const std::string& parent) {
    const auto make = [&](const char* name) {
      return ::CreateSemaphoreA(nullptr, 0, 1000, ("ambrelio-" + parent + name).c_str());
    };
    mine_ = make("-parent");
    others_ = make("-child");
  }

  void Start(const TempFolder& folder) {
    const std::string self = std::to_string(::GetCurrentProcessId());
    MakeSigns(self);
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::wstring command = L"tests --gtest_filter=" +
                           com::ToWide(std::string(test->test_suite_name()) + "." + test->name());
    wchar_t program[MAX_PATH] = L"";
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    ::SetEnvironmentVariableA(kParent, self.c_str());
    ::SetEnvironmentVariableW(L"AMBRELIO_TEST_FOLDER", com::ToWide(folder.path()).c_str());
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;  // none
    PROCESS_INFORMATION process{};
    const BOOL started = ::CreateProcessW(program, command.data(), nullptr, nullptr, FALSE, 0,
                                          nullptr, nullptr, &start, &process);
    ::SetEnvironmentVariableA(kParent, nullptr);
    ::SetEnvironmentVariableA("AMBRELIO_TEST_FOLDER", nullptr);
    if (!started) throw std::runtime_error("no process");
    ::CloseHandle(process.hThread);
    other_ = process.hProcess;
    ended_ = false;
  }

  HANDLE other_ = nullptr;   // the process
  HANDLE mine_ = nullptr;    // what this side waits for
  HANDLE others_ = nullptr;  // what the other side waits for
  bool ended_ = true;
};

}  // namespace ambrelio::test
