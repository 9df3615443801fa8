// The stand-in for DAO in the process of a test: while one lives, DAO's identifiers are its own.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ambrelio/com/apartment.h"
#include "ambrelio/com/late_bound.h"

namespace ambrelio::test {

class StandIn {
 public:
  enum class Version : uint8_t { kDao36, kDao120 };

  // Makes automation ready on this thread and the stand-in known, as that version of DAO. One
  // lives at a time.
  explicit StandIn(Version version = Version::kDao36);
  ~StandIn();
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;

  // Begins to keep the calls.
  void Record() const { control_.Call("Record"); }
  // Those since then: DAO.Database.Execute("delete from split").
  std::vector<std::string> Calls() const;
  // Names looked up since then.
  int Lookups() const;
  // Objects of DAO that somebody holds a reference to.
  int Living() const;
  // Fails the `call`th call from now on (1 is the next); 0 takes it back.
  void FailAt(int call, int number) const {
    control_.Call("FailAt", {int32_t{call}, int32_t{number}});
  }

 private:
  com::Apartment apartment_;
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
  com::LateBound control_;
};

}  // namespace ambrelio::test
