// Reading the lists that clients hand in, with the run-time errors of Visual Basic.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::tanks {

// An element by its index: 13 (type mismatch) when there is no list, 9 (subscript out of range)
// when the list is too short.
inline const Variant& Element(const Variant& list, size_t index) {
  if (!list.is_array()) Raise(RuntimeError::kTypeMismatch);
  if (index >= list.array().size()) Raise(RuntimeError::kSubscriptOutOfRange);
  return list.array()[index];
}

// For lists that are walked with a 16-bit counter: 6 (overflow) above 32767 elements.
inline void RequireCountable(const Variant::Array& list) {
  if (list.size() > std::numeric_limits<int16_t>::max()) Raise(RuntimeError::kOverflow);
}

}  // namespace ambrelio::tanks
