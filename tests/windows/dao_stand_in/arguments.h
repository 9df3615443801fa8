// What a call brings along, and how values go between members and the stand-in's classes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ambrelio/com/owned.h"
#include "ambrelio/dao/definitions.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::stand_in {

// The arguments of one call, the first one first.
class Arguments {
 public:
  explicit Arguments(std::vector<Variant> given) : given_(std::move(given)) {}

  size_t size() const { return given_.size(); }
  // Empty when it was left out, at the end or in the middle.
  const Variant& operator[](size_t place) const {
    static const Variant kLeftOut;
    return place < given_.size() ? given_[place] : kLeftOut;
  }
  bool Has(size_t place) const { return !(*this)[place].is_empty(); }

 private:
  std::vector<Variant> given_;
};

// As DAO types its results: short numbers as such, lists counted in 16 bits.
inline Variant Result(const std::string& value) { return value; }
inline Variant Result(bool value) { return value; }
inline Variant Result(int16_t value) { return value; }
inline Variant Result(int32_t value) { return value; }
inline Variant Result(dao::FieldType value) { return static_cast<int16_t>(value); }
inline Variant Result(Variant value) { return value; }
Variant Result(const com::ComPtr<IDispatch>& object);

template <class T>
T Argument(const Variant& value);
template <>
inline Variant Argument(const Variant& value) {
  return value;
}
template <>
inline std::string Argument(const Variant& value) {
  return ToText(value);
}
template <>
inline bool Argument(const Variant& value) {
  return ToBoolean(value);
}
template <>
inline int16_t Argument(const Variant& value) {
  return ToInteger(value);
}
template <>
inline int32_t Argument(const Variant& value) {
  return ToLong(value);
}

}  // namespace ambrelio::stand_in
