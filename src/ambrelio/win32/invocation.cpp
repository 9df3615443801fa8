#include "ambrelio/win32/invocation.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "ambrelio/automation/call.h"
#include "ambrelio/com/conversion.h"
#include "ambrelio/com/errors.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/win32/object_bridge.h"

namespace ambrelio::win32 {
namespace {

using automation::Class;
using automation::Member;
using automation::MemberKind;
using com::OwnedVariant;

// Follows a VARIANT that refers to another one.
VARIANT& Behind(VARIANT& value) {
  VARIANT* at = &value;
  while (V_VT(at) == (VT_BYREF | VT_VARIANT)) at = V_VARIANTREF(at);
  return *at;
}

// The bytes that a variable of a type takes; 0 for a type that is not assigned here.
size_t SizeOf(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_R8:
    case VT_DATE:
    case VT_CY:
    case VT_I8:
    case VT_UI8:
      return 8;
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return sizeof(void*);
    default:
      return (type & VT_ARRAY) != 0 ? sizeof(void*) : 0;
  }
}

// Puts `value` into a variable of one type; `to` refers to it.
void AssignTyped(const VARIANT& to, OwnedVariant value) {
  const auto type = static_cast<VARTYPE>(V_VT(&to) & ~VT_BYREF);
  if (V_VT(&value.get()) != type) {
    com::Check(::VariantChangeType(&value.get(), &value.get(), 0, type), "VariantChangeType");
  }
  const size_t size = SizeOf(type);
  if (size == 0) Raise(RuntimeError::kTypeMismatch);
  // What the variable held goes with `before`; every value of these types lies at one place.
  OwnedVariant before;
  std::memcpy(&V_I8(&before.get()), V_BYREF(&to), size);
  V_VT(&before.get()) = type;
  std::memcpy(V_BYREF(&to), &V_I8(&value.get()), size);
  value.Release();
}

// Puts `value` into the caller's variable; an argument by value has none.
void Assign(VARIANT& argument, const Variant& value) {
  VARIANT& variable = Behind(argument);
  if ((V_VT(&variable) & VT_BYREF) != 0) {
    AssignTyped(variable, com::ToCom(value, ServerObjects()));
  } else if (&variable != &argument) {
    OwnedVariant before(variable);
    variable = com::ToCom(value, ServerObjects()).Release();
  }
}

void AssignChanged(const automation::CallResult& call, const GivenArguments& arguments) {
  for (size_t i = 0; i < call.changed.size(); ++i) {
    if (call.changed[i]) Assign(*arguments[i], *call.arguments[i]);
  }
}

// The arguments in the member's order. The last one given comes first in `rgvarg`, and the named
// ones before all others.
GivenArguments Collect(const Member& member, const DISPPARAMS& parameters) {
  if (parameters.cNamedArgs > parameters.cArgs) Raise(RuntimeError::kWrongArgumentCount);
  const std::span<VARIANT> given(parameters.rgvarg, parameters.cArgs);
  const auto named = given.first(parameters.cNamedArgs);
  const auto positional = given.subspan(parameters.cNamedArgs);
  GivenArguments arguments(positional.size());
  std::transform(positional.rbegin(), positional.rend(), arguments.begin(),
                 [](VARIANT& argument) { return &argument; });
  for (size_t i = 0; i < named.size(); ++i) {
    const DISPID id = parameters.rgdispidNamedArgs[i];
    const size_t place =
        id == DISPID_PROPERTYPUT ? member.arguments.size() - 1 : static_cast<size_t>(id);
    if (place >= member.arguments.size()) com::Check(DISP_E_PARAMNOTFOUND, member.name);
    if (place < positional.size()) Raise(RuntimeError::kWrongArgumentCount, member.name);
    if (arguments.size() <= place) arguments.resize(place + 1);
    arguments[place] = &named[i];
  }
  return arguments;
}

// `value(i)`, counted from 0.
OwnedVariant ElementOf(const Variant& value, const DISPPARAMS& indices) {
  if (!value.is_array()) Raise(RuntimeError::kWrongArgumentCount);
  const int32_t index = ToLong(com::FromCom(indices.rgvarg[0], ServerObjects()));
  const Variant::Array& elements = value.array();
  if (indices.cArgs != 1 || index < 0 || static_cast<size_t>(index) >= elements.size()) {
    Raise(RuntimeError::kSubscriptOutOfRange);
  }
  return com::ToCom(elements[static_cast<size_t>(index)], ServerObjects());
}

}  // namespace

OwnedVariant CallMember(Object& object, const Member& member, const GivenArguments& arguments) {
  automation::CallResult call;
  for (const VARIANT* argument : arguments) {
    if (argument == nullptr || com::IsOmitted(*argument)) {
      call.arguments.emplace_back();
    } else {
      call.arguments.emplace_back(com::FromCom(*argument, ServerObjects()));
    }
  }
  try {
    automation::Perform(object, member, call);
  } catch (...) {
    try {
      AssignChanged(call, arguments);
    } catch (...) {
      // Why the call failed says more than why a variable could not take its value.
    }
    throw;
  }
  AssignChanged(call, arguments);
  return com::ToCom(call.result, ServerObjects());
}

OwnedVariant InvokeMember(Object& object, const Member& member, const DISPPARAMS& parameters) {
  const bool indexed =
      member.kind == MemberKind::kGet && member.arguments.empty() && parameters.cArgs > 0;
  if (!indexed) return CallMember(object, member, Collect(member, parameters));
  return ElementOf(automation::Call(object, member, {}).result, parameters);
}

const Member* FindMember(const Class& owner, DISPID id, WORD flags) {
  const bool let = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  // A reference is never set: no property of the model holds an object.
  if (let && (flags & DISPATCH_PROPERTYPUT) == 0) return nullptr;
  const auto found =
      std::find_if(owner.members.begin(), owner.members.end(), [&](const Member& member) {
        return member.dispid == id && (member.kind == MemberKind::kLet) == let;
      });
  return found == owner.members.end() ? nullptr : &*found;
}

DISPID FindId(const Class& owner, std::string_view name) {
  for (const Member& member : owner.members) {
    if (automation::SameName(member.name, name)) return member.dispid;
  }
  return DISPID_UNKNOWN;
}

DISPID FindArgumentId(const Class& owner, DISPID id, std::string_view name) {
  for (const Member& member : owner.members) {
    if (member.dispid != id) continue;
    for (size_t i = 0; i < member.arguments.size(); ++i) {
      if (automation::SameName(member.arguments[i].name, name)) return static_cast<DISPID>(i);
    }
  }
  return DISPID_UNKNOWN;
}

}  // namespace ambrelio::win32
