// Automation objects of others, made by their programmatic identifiers and called by name.
//
// On Windows these are the objects registered there. On any system, programs may register what they
// offer:
//
//   session.AutomationObjects().Register("Sondas.Lector", [] { return std::make_shared<Lector>();
//   });
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio {

class AutomationObject {
 public:
  virtual ~AutomationObject() = default;
  // Calls a method; raises AutomationError as the object does, 438 for a method that it lacks.
  virtual Variant Call(std::string_view method, const std::vector<Variant>& arguments) = 0;
};

class AutomationObjects {
 public:
  using Factory = std::function<std::shared_ptr<AutomationObject>()>;

  // Identifiers compare without regard to case; the last registration counts.
  void Register(std::string_view prog_id, Factory factory);
  // A new object. Raises 429 (cannot create object) when neither a registration nor the system
  // offers one of that name, and what its factory raises.
  std::shared_ptr<AutomationObject> Create(std::string_view prog_id) const;

 private:
  std::map<std::string, Factory> factories_;  // by identifier in small letters
};

}  // namespace ambrelio
