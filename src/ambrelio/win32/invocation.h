// Calls over the object model's table, as both doors of the server make them: IDispatch::Invoke and
// the methods of the dual interfaces.
#pragma once

#include <ole2.h>

#include <vector>

#include "ambrelio/automation/model.h"
#include "ambrelio/com/owned.h"
#include "ambrelio/value/object.h"

namespace ambrelio::win32 {

// The arguments of a call in the member's order; null for one left out. They stay the caller's.
using GivenArguments = std::vector<VARIANT*>;

// Calls the member. What it changes of its arguments goes back into those that refer to a variable
// (VT_BYREF), also when it raises: a Variant takes the type of the parameter, any other variable
// keeps its own. Variables it leaves alone keep what they hold. Raises what automation::Call
// raises.
com::OwnedVariant CallMember(Object& object, const automation::Member& member,
                             const GivenArguments& arguments);

// IDispatch::Invoke on a member: positional and named arguments, and the indexing of what a
// property without arguments holds.
com::OwnedVariant InvokeMember(Object& object, const automation::Member& member,
                               const DISPPARAMS& parameters);

// The member that a number and flags of Invoke name; null when there is none.
const automation::Member* FindMember(const automation::Class& owner, DISPID id, WORD flags);

// The number of a member, or of an argument of it: its place. DISPID_UNKNOWN when there is none.
DISPID FindId(const automation::Class& owner, std::string_view name);
DISPID FindArgumentId(const automation::Class& owner, DISPID member, std::string_view name);

}  // namespace ambrelio::win32
