// The use of automation by a thread whose program may not have asked for it.
#pragma once

#include <ole2.h>

namespace ambrelio::com {

// While it lives, the thread may use automation, in the apartment that it is in already or else in
// one of its own. What is made meanwhile has to go before it.
class Apartment {
 public:
  Apartment() : entered_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
  ~Apartment() {
    if (entered_) ::CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  bool entered_;  // not when the thread is in the apartment of all threads
};

}  // namespace ambrelio::com
