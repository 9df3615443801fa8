#include "ambrelio/automation/call.h"

#include <algorithm>
#include <string>

#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::automation {
namespace {

void CheckCount(const Member& member, size_t given) {
  const auto required = static_cast<size_t>(
      std::count_if(member.arguments.begin(), member.arguments.end(),
                    [](const Argument& argument) { return !argument.optional; }));
  if (given < required || given > member.arguments.size()) {
    Raise(RuntimeError::kWrongArgumentCount, member.name);
  }
}

// The list as the member receives it: all of its arguments, each of its type.
Arguments Prepare(const Member& member, const Arguments& given) {
  Arguments prepared(member.arguments.size());
  for (size_t i = 0; i < prepared.size(); ++i) {
    const Argument& argument = member.arguments[i];
    if (i < given.size() && given[i].has_value()) {
      prepared[i] = Coerce(*given[i], argument.type);
    } else if (!argument.optional) {
      Raise(RuntimeError::kArgumentNotOptional, std::string(member.name) + ": " + argument.name);
    } else if (argument.type != ValueType::kVariant) {
      prepared[i] = FreshVariable(argument.type);
    }
  }
  return prepared;
}

}  // namespace

bool CallResult::AnyChanged() const {
  return std::find(changed.begin(), changed.end(), true) != changed.end();
}

Variant Coerce(const Variant& value, ValueType type) {
  switch (type) {
    case ValueType::kBoolean:
      return ToBoolean(value);
    case ValueType::kInteger:
      return ToInteger(value);
    case ValueType::kLong:
      return ToLong(value);
    case ValueType::kDouble:
      return ToDouble(value);
    case ValueType::kDate:
      return ToDate(value);
    case ValueType::kText:
      return ToText(value);
    case ValueType::kObject:
      if (value.is_empty()) return Variant::Nothing();
      if (!value.is_object()) Raise(RuntimeError::kTypeMismatch);
      return value;
    case ValueType::kNone:
    case ValueType::kVariant:
      return value;
  }
  return value;
}

Variant FreshVariable(ValueType type) { return Coerce(Variant(), type); }

const Member& MemberOf(const Object& object, std::string_view name, Access access) {
  const Class* owner = FindClass(object.ClassName());
  const Member* member = owner == nullptr ? nullptr : FindMember(*owner, name, access);
  if (member == nullptr) {
    Raise(RuntimeError::kMemberNotFound, std::string(object.ClassName()) + "." + std::string(name));
  }
  return *member;
}

void Perform(Object& object, const Member& member, CallResult& call) {
  call.changed.assign(call.arguments.size(), false);
  CheckCount(member, call.arguments.size());
  const Arguments before = Prepare(member, call.arguments);
  Arguments after = before;
  const auto take_back = [&] {
    for (size_t i = 0; i < call.arguments.size(); ++i) {
      if (!call.arguments[i].has_value() || after[i] == before[i]) continue;
      call.changed[i] = true;
      call.arguments[i] = std::move(after[i]);
    }
  };
  try {
    call.result = member.invoke(object, after);
  } catch (...) {
    take_back();
    throw;
  }
  take_back();
}

CallResult Call(Object& object, const Member& member, Arguments arguments) {
  CallResult call;
  call.arguments = std::move(arguments);
  Perform(object, member, call);
  return call;
}

CallResult Call(Object& object, std::string_view member, Access access, Arguments arguments) {
  return Call(object, MemberOf(object, member, access), std::move(arguments));
}

}  // namespace ambrelio::automation
