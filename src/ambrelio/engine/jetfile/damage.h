// How reading fails: with DAO's number, and what was found where.
#pragma once

#include <string>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

// Something in the file contradicts its format (3049).
class Damage : public AutomationError {
 public:
  Damage(Place place, const std::string& what);

  Place place() const { return place_; }
  // What is wrong, without the place.
  const std::string& what_is_wrong() const { return what_is_wrong_; }

 private:
  Place place_;
  std::string what_is_wrong_;
};

// Raises the error of a file that is whole but not one to be read here; `why` becomes its sentence.
[[noreturn]] void Refuse(dao::DaoError error, const std::string& why);

}  // namespace ambrelio::jetfile
