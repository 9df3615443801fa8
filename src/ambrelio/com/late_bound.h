// Calls by name on automation objects of others.
//
//   LateBound shell(CreateObject("WScript.Shell"));
//   LateBound folders = shell.ObjectFrom("SpecialFolders");
//   std::string desktop = ToText(folders.Call("Item", {"Desktop"}));
#pragma once

#include <ole2.h>

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/com/conversion.h"
#include "ambrelio/com/owned.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::com {

// A new object of the class that is registered under a programmatic identifier; 429 when that
// fails.
ComPtr<IDispatch> CreateObject(std::string_view prog_id);

// A reference to an object, called as Visual Basic calls: a failure comes out as an AutomationError
// with the object's own number, source and description; a member it lacks as 438; any call on
// Nothing as 91. Names compare without regard to case; each is looked up once, so that a loop over
// one object costs its calls only.
class LateBound {
 public:
  LateBound() = default;  // Nothing
  explicit LateBound(ComPtr<IDispatch> object) : object_(std::move(object)) {}

  explicit operator bool() const { return static_cast<bool>(object_); }
  IDispatch* get() const { return object_.get(); }

  // A method, or the reading of a property with or without arguments. What is given by `objects`
  // crosses as an argument too.
  Variant Call(std::string_view member, std::vector<Variant> arguments = {}) const;
  void Put(std::string_view property, const Variant& value) const;

  // The same when the result has to be an object; Nothing is Nothing, anything else raises 424.
  LateBound ObjectFrom(std::string_view member, std::vector<Variant> arguments = {}) const;
  // The default member (DISPID 0): an item of a collection.
  LateBound Item(const Variant& key) const;

  // This reference as an argument of a call.
  Variant AsArgument() const;

 private:
  DISPID IdOf(std::string_view member) const;
  OwnedVariant Invoke(DISPID member, std::string_view name, WORD flags,
                      const std::vector<Variant>& arguments) const;

  ComPtr<IDispatch> object_;
  // The numbers of the members called so far; they hold for the object's life.
  mutable std::vector<std::pair<std::string, DISPID>> ids_;
};

}  // namespace ambrelio::com
