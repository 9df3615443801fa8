#include <windows.h>

#include <new>

#include "ambrelio/platform/thread_value.h"

namespace ambrelio {
namespace {

void WINAPI End(void* values) { delete static_cast<ThreadValues*>(values); }

// The slot of all threads. Its callback runs on a thread that ends, and for every thread when the
// slot is freed.
class Slot {
 public:
  // At the end of a program: the thread that ends it still has what the values were made with.
  ~Slot() {
    if (index_ == FLS_OUT_OF_INDEXES) return;
    End(::FlsGetValue(index_));
    ::FlsSetValue(index_, nullptr);
  }

  ThreadValues& Values() {
    if (auto* const values = static_cast<ThreadValues*>(::FlsGetValue(index_))) return *values;
    auto made = std::make_unique<ThreadValues>();
    if (!::FlsSetValue(index_, made.get())) throw std::bad_alloc();
    return *made.release();
  }

  void Free() {
    ::FlsFree(index_);
    index_ = FLS_OUT_OF_INDEXES;
  }

 private:
  DWORD index_ = ::FlsAlloc(&End);
};

Slot& TheSlot() {
  static Slot slot;
  return slot;
}

}  // namespace

ThreadValues& ThreadValues::Current() { return TheSlot().Values(); }

void ThreadValues::EndAll() { TheSlot().Free(); }

}  // namespace ambrelio
