// What a test sees of the calls that reach the stand-in, and how it interferes: the object
// Ambrelio.DaoStandIn.Control, and two variables of the environment for those who cannot reach it.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "ambrelio/com/owned.h"
#include "arguments.h"

namespace ambrelio::stand_in {

class Control {
 public:
  static constexpr const char* kClassName = "Ambrelio.DaoStandIn.Control";

  // The process's. On its making it reads AMBRELIO_DAO_STAND_IN_LOG, the name of a file to which
  // every call is added, and AMBRELIO_DAO_STAND_IN_FAIL, as "12:3218": the twelfth call fails with
  // that number.
  static Control& Instance();
  // The automation object.
  static com::ComPtr<IDispatch> Object();

  // For the objects: a call arrives. Raises when it is to fail.
  void Meet(const std::string& class_name, const std::string& member, bool put,
            const Arguments& arguments);
  void LookedUp() { ++lookups_; }
  void Born() { ++living_; }
  void Died() { --living_; }

  // Keeps the calls from now on, as lines: DAO.Database.Execute("delete from split").
  void Record();
  Variant Calls() const;
  // Names looked up since Record.
  int32_t Lookups() const { return lookups_; }
  // Objects of DAO that somebody holds a reference to.
  int32_t Living() const { return living_; }
  // Fails the `call`th call from now on (1 is the next) with error `number`; 0 takes it back.
  void FailAt(int32_t call, int32_t number);

 private:
  Control();

  std::ofstream log_;
  bool recording_ = false;
  std::vector<std::string> calls_;
  int32_t lookups_ = 0;
  int32_t living_ = 0;
  int32_t countdown_ = 0;
  int32_t number_ = 0;
};

}  // namespace ambrelio::stand_in
