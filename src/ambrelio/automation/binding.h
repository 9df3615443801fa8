// The templates behind the table: they derive the types of a row from the C++ member it names, and
// make the function that calls it.
//
//   ClassTable<Tolva>("A hopper.")
//       .Get(1, "MomentoInicio", &Tolva::MomentoInicio, "When ... was opened.")
//       .Method(3, "Descargar", &Tolva::Descargar, {"dto", "mol", Optional("qto")}, "Closes ...")
//
// A row may also name a free function that takes the object first.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "ambrelio/automation/model.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::automation {

// The name of a C++ class in the object model; specialised beside the table.
template <class T>
inline constexpr const char* kClassName = nullptr;
// The same of a C++ enumeration.
template <class E>
inline constexpr const char* kEnumerationName = nullptr;

template <ValueType kType>
struct PlainType {
  static constexpr ValueType type = kType;
  static constexpr const char* object_class = nullptr;
  static constexpr const char* enumeration = nullptr;
};
template <class T>
struct TypeOf : PlainType<ValueType::kLong> {
  static_assert(std::is_enum_v<T>);
  static constexpr const char* enumeration = kEnumerationName<T>;
};
template <>
struct TypeOf<void> : PlainType<ValueType::kNone> {};
template <>
struct TypeOf<bool> : PlainType<ValueType::kBoolean> {};
template <>
struct TypeOf<int16_t> : PlainType<ValueType::kInteger> {};
template <>
struct TypeOf<int32_t> : PlainType<ValueType::kLong> {};
template <>
struct TypeOf<double> : PlainType<ValueType::kDouble> {};
template <>
struct TypeOf<OleDate> : PlainType<ValueType::kDate> {};
template <>
struct TypeOf<std::string> : PlainType<ValueType::kText> {};
template <>
struct TypeOf<Variant> : PlainType<ValueType::kVariant> {};
// A Variant for members that tell a missing one from an Empty one.
template <>
struct TypeOf<std::optional<Variant>> : PlainType<ValueType::kVariant> {};
template <class T>
struct TypeOf<std::shared_ptr<T>> : PlainType<ValueType::kObject> {
  static constexpr const char* object_class = kClassName<T>;
};

// What a member gives, as its caller gets it: an enumeration as its number.
template <class T>
Variant ResultValue(T&& result) {
  using Value = std::remove_cvref_t<T>;
  if constexpr (std::is_enum_v<Value>) {
    return static_cast<int32_t>(result);
  } else {
    return Value(std::forward<T>(result));
  }
}

// The value of an argument while its member runs. A member that takes it by reference to non-const
// finds what it wrote in the list afterwards.
template <class A>
class Slot {
 public:
  using Value = std::remove_cvref_t<A>;

  explicit Slot(std::optional<Variant>& argument) : argument_(argument), value_(Read(argument)) {}

  Value& value() { return value_; }
  void WriteBack() {
    if constexpr (std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>) {
      argument_ = Variant(std::move(value_));
    }
  }

 private:
  static Value Read(const std::optional<Variant>& argument) {
    if constexpr (std::is_same_v<Value, std::optional<Variant>>) {
      return argument;
    } else if constexpr (std::is_same_v<Value, Variant>) {
      return argument.value_or(Variant());
    } else if constexpr (TypeOf<Value>::type == ValueType::kObject) {
      const Variant::ObjectPtr& object = argument.value().object();
      Value typed = std::dynamic_pointer_cast<typename Value::element_type>(object);
      if (object != nullptr && typed == nullptr) Raise(RuntimeError::kTypeMismatch);
      return typed;
    } else {
      return argument.value().template as<Value>();
    }
  }

  std::optional<Variant>& argument_;
  Value value_;
};

// Calls `call(slot values...)` with the arguments read, and writes them back: also when it raises,
// as what an argument refers to stays changed then.
template <class R, class... A, class F, size_t... kIndex>
Variant CallWithSlots(F&& call, [[maybe_unused]] Arguments& arguments,
                      std::index_sequence<kIndex...>) {
  std::tuple<Slot<A>...> slots{Slot<A>(arguments[kIndex])...};
  struct WriteBackAtEnd {
    ~WriteBackAtEnd() { (std::get<kIndex>(slots).WriteBack(), ...); }
    std::tuple<Slot<A>...>& slots;
  };
  const WriteBackAtEnd at_end{slots};
  if constexpr (std::is_void_v<R>) {
    call(std::get<kIndex>(slots).value()...);
    return {};
  } else {
    return ResultValue(call(std::get<kIndex>(slots).value()...));
  }
}

// What a row needs to know of the C++ function it names.
template <class C, class R, class... A>
struct Signature {
  using Result = std::remove_cvref_t<R>;
  static constexpr size_t kArity = sizeof...(A);

  template <class F>
  static Invoker MakeInvoker(F function) {
    return [function](Object& self, Arguments& arguments) {
      return CallWithSlots<R, A...>(
          [&](auto&... values) -> R {
            return std::invoke(function, dynamic_cast<C&>(self), values...);
          },
          arguments, std::index_sequence_for<A...>());
    };
  }

  static std::vector<ValueType> ArgumentTypes() {
    return {TypeOf<std::remove_cvref_t<A>>::type...};
  }
  static std::vector<const char*> ArgumentClasses() {
    return {TypeOf<std::remove_cvref_t<A>>::object_class...};
  }
};
template <class C, class R, class... A>
Signature<C, R, A...> SignatureOf(R (C::*)(A...));
template <class C, class R, class... A>
Signature<C, R, A...> SignatureOf(R (C::*)(A...) const);
template <class C, class R, class... A>
Signature<C, R, A...> SignatureOf(R (*)(C&, A...));

// The name of an argument in a row, with what its type does not say.
struct Parameter {
  Parameter(const char* parameter_name)  // NOLINT(google-explicit-constructor)
      : name(parameter_name) {}
  const char* name;
  bool optional = false;
  bool output = false;
};
inline Parameter Optional(const char* name) {
  Parameter parameter(name);
  parameter.optional = true;
  return parameter;
}
inline Parameter Output(const char* name) {
  Parameter parameter(name);
  parameter.output = true;
  return parameter;
}

// Collects the rows of one class.
template <class C>
class ClassTable {
 public:
  explicit ClassTable(const char* help) : class_{kClassName<C>, false, false, help, {}} {}

  ClassTable& Creatable() {
    class_.creatable = true;
    return *this;
  }
  ClassTable& ApplicationObject() {
    class_.application_object = true;
    return *this;
  }

  template <class F, size_t kCount>
  ClassTable& Method(int32_t dispid, const char* name, F function,
                     const Parameter (&parameters)[kCount], const char* help) {
    static_assert(decltype(SignatureOf(function))::kArity == kCount, "name every argument");
    return Add(MemberKind::kMethod, dispid, name, function, parameters, kCount, help);
  }
  template <class F>
  ClassTable& Method(int32_t dispid, const char* name, F function, const char* help) {
    static_assert(decltype(SignatureOf(function))::kArity == 0, "name every argument");
    return Add(MemberKind::kMethod, dispid, name, function, nullptr, 0, help);
  }
  template <class F>
  ClassTable& Get(int32_t dispid, const char* name, F function, const char* help) {
    static_assert(decltype(SignatureOf(function))::kArity == 0, "name every argument");
    return Add(MemberKind::kGet, dispid, name, function, nullptr, 0, help);
  }
  template <class F>
  ClassTable& Let(int32_t dispid, const char* name, F function, const char* help) {
    static_assert(decltype(SignatureOf(function))::kArity == 1, "a let takes the value");
    const Parameter value(kValue);
    return Add(MemberKind::kLet, dispid, name, function, &value, 1, help);
  }

  // A property whose get and let are told by one sentence.
  template <class G, class L>
  ClassTable& Property(int32_t dispid, const char* name, G get, L let, const char* help) {
    return Get(dispid, name, get, help).Let(dispid, name, let, help);
  }
  // One with an index.
  template <class G, class L>
  ClassTable& Property(int32_t dispid, const char* name, G get, L let, const Parameter& index,
                       const char* help) {
    static_assert(decltype(SignatureOf(get))::kArity == 1, "a get takes the index");
    static_assert(decltype(SignatureOf(let))::kArity == 2, "a let takes the index and the value");
    const Parameter parameters[] = {index, kValue};
    return Add(MemberKind::kGet, dispid, name, get, parameters, 1, help)
        .Add(MemberKind::kLet, dispid, name, let, parameters, 2, help);
  }

  Class Take() { return std::move(class_); }

 private:
  static constexpr const char* kValue = "valor";  // what a let sets

  template <class F>
  ClassTable& Add(MemberKind kind, int32_t dispid, const char* name, F function,
                  const Parameter* parameters, size_t count, const char* help) {
    using Signature = decltype(SignatureOf(function));
    using Result = TypeOf<typename Signature::Result>;
    std::vector<Argument> arguments;
    const std::vector<ValueType> types = Signature::ArgumentTypes();
    const std::vector<const char*> classes = Signature::ArgumentClasses();
    for (size_t i = 0; i < count; ++i) {
      arguments.push_back(
          {parameters[i].name, types[i], classes[i], parameters[i].optional, parameters[i].output});
    }
    class_.members.push_back({name, kind, dispid, std::move(arguments), Result::type,
                              Result::object_class, Result::enumeration, help,
                              Signature::MakeInvoker(function)});
    return *this;
  }

  Class class_;
};

}  // namespace ambrelio::automation
