// Late-bound calls: any member of any object, by name and with loose arguments.
#pragma once

#include <string_view>
#include <vector>

#include "ambrelio/automation/model.h"

namespace ambrelio::automation {

struct CallResult {
  Variant result;  // Empty for a method without one
  // What the caller's variables hold after the call, one for each argument given.
  Arguments arguments;
  // Whether the member changed that variable; never one that was left out.
  std::vector<bool> changed;

  bool AnyChanged() const;
};

// Converts the arguments to their declared types as automation does, fills in optional ones left
// out, and calls; what sets a property takes its indices first, then the value. Raises 438 for an
// unknown member, 450 for too few or too many arguments, 449 for one left out that is not optional,
// 6, 13 and 94 from the conversions, and whatever the member raises.
CallResult Call(Object& object, std::string_view member, Access access, Arguments arguments);
CallResult Call(Object& object, const Member& member, Arguments arguments);
// The same with the arguments that `call` holds. When the member raises, they and `changed` tell
// what it had changed before.
void Perform(Object& object, const Member& member, CallResult& call);

// The member that such a call reaches; raises 438.
const Member& MemberOf(const Object& object, std::string_view name, Access access);

// The value as an argument of that type receives it.
Variant Coerce(const Variant& value, ValueType type);
// Zero, False, "", the zero date, Empty or Nothing: a variable of that type just declared.
Variant FreshVariable(ValueType type);

}  // namespace ambrelio::automation
