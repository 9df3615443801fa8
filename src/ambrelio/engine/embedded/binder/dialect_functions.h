// The functions that a statement can call, by the names it calls them, and what the storage engine
// calls them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ambrelio/engine/embedded/binder/value_type.h"

namespace ambrelio::embedded {

enum class Aggregate : uint8_t { kCount, kSum, kAverage, kMinimum, kMaximum, kFirst, kLast };

// `name` in any case.
std::optional<Aggregate> FindAggregate(std::string_view name);

struct DialectFunction {
  const char* name;     // in lower case
  const char* storage;  // the function that RegisterFunctions provides
  int least;            // the numbers of arguments that it takes
  int most;
  ValueType result;           // kNull: the type of its first argument
  uint8_t texts = 0;          // bit n: argument n is wanted as text
  bool type_follows = false;  // the type of the first argument is passed behind all others
};

// The function of that name, called with so many arguments; null when there is none. Whether it
// takes them is for the caller to see.
const DialectFunction* FindFunction(std::string_view name, size_t arguments);

// The type of what the function gives for a first argument of type `first`.
ValueType ResultType(const DialectFunction& function, ValueType first);

}  // namespace ambrelio::embedded
