// One value of a type for each thread: made when the thread first asks for it, gone with the
// thread, later values before earlier ones.
//
//   Session& session = ThreadValue<Session>();
//
// On Windows they live in fiber-local storage. A thread_local with a destructor will not do in a
// DLL made with mingw-w64: it runs when its memory is gone, and keeps the DLL from being unloaded.
#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace ambrelio {

// The values of one thread, each under the address that stands for its type.
class ThreadValues {
 public:
  // The calling thread's.
  static ThreadValues& Current();
#ifdef _WIN32
  // Ends the values of every thread; a DLL about to be unloaded calls it, and then nothing here any
  // more.
  static void EndAll();
#endif

  ThreadValues() = default;
  ThreadValues(const ThreadValues&) = delete;
  ThreadValues& operator=(const ThreadValues&) = delete;
  ~ThreadValues() {
    while (!values_.empty()) {
      // Out of the list first: its destructor may ask for the values before it.
      const auto last = std::move(values_.back());
      values_.pop_back();
    }
  }

  void* Find(const void* type) const {
    for (const auto& [key, value] : values_) {
      if (key == type) return value.get();
    }
    return nullptr;
  }
  void Add(const void* type, std::shared_ptr<void> value) {
    values_.emplace_back(type, std::move(value));
  }

 private:
  std::vector<std::pair<const void*, std::shared_ptr<void>>> values_;
};

template <class T>
T& ThreadValue() {
  static const char type = 0;
  ThreadValues& values = ThreadValues::Current();
  if (void* const found = values.Find(&type)) return *static_cast<T*>(found);
  const auto made = std::make_shared<T>();
  values.Add(&type, made);
  return *made;
}

}  // namespace ambrelio
