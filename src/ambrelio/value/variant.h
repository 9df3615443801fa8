// The value that crosses every door: an automation Variant as a C++ value type.
//
// A Variant owns its text and its array elements; an object is shared. Copies are deep except for
// objects. Not synchronised: a Variant belongs to one thread at a time.
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ambrelio/value/object.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio {

// An amount of money, in ten-thousandths.
struct Currency {
  int64_t ten_thousandths = 0;
  friend bool operator==(Currency, Currency) = default;
};

// In the order of Variant's alternatives.
enum class VariantType : uint8_t {
  kEmpty,
  kNull,
  kBoolean,
  kByte,
  kInteger,  // 16 bits
  kLong,     // 32 bits
  kSingle,
  kDouble,
  kCurrency,
  kDate,
  kText,  // UTF-8
  kArray,
  kObject,
};

class Variant {
 public:
  using Array = std::vector<Variant>;
  using ObjectPtr = std::shared_ptr<Object>;

  Variant() = default;  // Empty
  static Variant Null() { return Variant(NullValue{}); }
  static Variant Nothing() { return Variant(ObjectPtr()); }

  // Implicit from exactly the types below and from nothing that would have to be converted.
  // NOLINTBEGIN(google-explicit-constructor)
  template <class T>
  requires(std::same_as<T, bool> || std::same_as<T, uint8_t> || std::same_as<T, int16_t> ||
           std::same_as<T, int32_t> || std::same_as<T, float> || std::same_as<T, double> ||
           std::same_as<T, Currency> || std::same_as<T, OleDate> || std::same_as<T, std::string> ||
           std::same_as<T, Array>) Variant(T value)
      : value_(std::move(value)) {}
  Variant(const char* text) : value_(std::string(text)) {}
  Variant(std::string_view text) : value_(std::string(text)) {}
  template <class T>
  requires std::derived_from<T, Object> Variant(std::shared_ptr<T> object)
      : value_(ObjectPtr(std::move(object))) {}
  // NOLINTEND(google-explicit-constructor)

  VariantType type() const { return static_cast<VariantType>(value_.index()); }
  bool is_empty() const { return type() == VariantType::kEmpty; }
  bool is_null() const { return type() == VariantType::kNull; }
  bool is_date() const { return type() == VariantType::kDate; }
  bool is_text() const { return type() == VariantType::kText; }
  bool is_array() const { return type() == VariantType::kArray; }
  bool is_object() const { return type() == VariantType::kObject; }

  // The value held, without any conversion: the type must be the one held (see convert.h for
  // conversions), else std::bad_variant_access.
  template <class T>
  const T& as() const {
    return std::get<T>(value_);
  }
  const Array& array() const { return as<Array>(); }
  Array& array() { return std::get<Array>(value_); }
  const ObjectPtr& object() const { return as<ObjectPtr>(); }

  // Same type and same value; objects by identity.
  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  struct NullValue {
    friend bool operator==(NullValue, NullValue) = default;
  };
  explicit Variant(NullValue null) : value_(null) {}

  std::variant<std::monostate, NullValue, bool, uint8_t, int16_t, int32_t, float, double, Currency,
               OleDate, std::string, Array, ObjectPtr>
      value_;
};

// The type's name as `TypeName` gives it: "Integer", "Date", "Variant()", "Nothing", ...
std::string TypeName(const Variant& value);

}  // namespace ambrelio
