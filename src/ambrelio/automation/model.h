// The object model as one table: every public class with its members, in interface order.
//
// Whatever binds by name or by number reads it here: late-bound calls, the command line, the
// automation DLL, the documentation. The table is made on first use and never changes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::automation {

// What an argument or a result is declared as.
enum class ValueType : uint8_t {
  kNone,  // a method without a result
  kBoolean,
  kInteger,  // 16 bits
  kLong,     // 32 bits
  kDouble,
  kDate,
  kText,
  kVariant,
  kObject,
};

// The name of the type in Visual Basic, as "Integer".
const char* TypeName(ValueType type);

// All arguments are by reference. An omitted optional argument reaches its member as zero of its
// type, a Variant as missing.
struct Argument {
  const char* name;
  ValueType type;
  const char* object_class;  // of a kObject, else null
  bool optional;
  bool output;  // the member only writes it
};

// The let of a property takes the property's own arguments, and the value behind them.
enum class MemberKind : uint8_t { kMethod, kGet, kLet };

// The arguments of a call, in the member's order; nothing stands for one left out.
using Arguments = std::vector<std::optional<Variant>>;

// Calls the C++ member. There is one element for each declared argument, already of its type; what
// the member changes is left in it.
using Invoker = std::function<Variant(Object& self, Arguments& arguments)>;

struct Member {
  const char* name;
  MemberKind kind;
  int32_t dispid;  // shared by the get and the let of a property; never changes once published
  std::vector<Argument> arguments;
  ValueType result;
  const char* result_class;        // of a kObject, else null
  const char* result_enumeration;  // of a kLong that is one, else null
  const char* help;                // one sentence
  Invoker invoke;
};

struct Class {
  const char* name;
  bool creatable;
  bool application_object;  // members may be called without naming an instance
  const char* help;         // one sentence
  std::vector<Member> members;
};

const std::vector<Class>& Model();

// Named values of a Long. Calls by name give and take the number.
struct Enumeration {
  struct Value {
    const char* name;
    int32_t number;
    const char* help;  // one sentence
  };
  const char* name;
  const char* help;  // one sentence
  std::vector<Value> values;
};

const std::vector<Enumeration>& Enumerations();

// The class or member of that name, without regard to case; null when there is none. A call finds
// methods and the reading of properties, a let their setting.
enum class Access : uint8_t { kCall, kLet };
const Class* FindClass(std::string_view name);
const Member* FindMember(const Class& owner, std::string_view name, Access access);

// Whether two names of the model are the same: letters of Western European languages compare
// without regard to case.
bool SameName(std::string_view a, std::string_view b);

}  // namespace ambrelio::automation
