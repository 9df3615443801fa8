// Time and memory of what is measured, and processes of their own for it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <type_traits>

namespace ambrelio::bench {

double SecondsSince(const std::chrono::steady_clock::time_point& start);

// Of this process in MiB; the peak since it was last forgotten.
int64_t PeakMemory();
void ForgetPeakMemory();
// The same of the largest process that this one has started and waited for.
int64_t PeakMemoryOfChildren();

// Does the work in a process of its own, which gives `size` bytes of `result` back. Ends the
// program when the process fails.
void RunInOwnProcess(const std::function<void()>& work, void* result, size_t size);

// What `work` gives, done in a process of its own: neither the memory that it needs nor what it
// keeps open shows in what is measured after it. Needs a process of one thread without databases.
template <class Work>
auto InOwnProcess(const Work& work) {
  using Given = std::invoke_result_t<Work>;
  static_assert(std::is_trivially_copyable_v<Given>);
  Given result{};
  RunInOwnProcess([&] { result = work(); }, &result, sizeof result);
  return result;
}

}  // namespace ambrelio::bench
