// What the flags in the rows of a stored query mean.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace ambrelio::jetfile {

// The flag of QueryPart::kKind.
enum class QueryKind : int16_t {
  kSelect = 1,
  kMakeTable = 2,
  kAppend = 3,
  kUpdate = 4,
  kDelete = 5,
  kCrosstab = 6,
  kDataDefinition = 7,
  kPassThrough = 8,
  kUnion = 9,
};

// The bits in the flag of QueryPart::kOptions.
struct QueryOption {
  static constexpr int16_t kAllColumns = 1;
  static constexpr int16_t kDistinct = 2;  // of a union: that each row comes once
  static constexpr int16_t kOwnerAccess = 4;
  static constexpr int16_t kDistinctRow = 8;
  static constexpr int16_t kTop = 16;
  static constexpr int16_t kPercent = 32;
};

// The flags of a crosstab's outputs and groups.
struct CrosstabRole {
  static constexpr int16_t kValue = 0;
  static constexpr int16_t kHeading = 1;
  static constexpr int16_t kRow = 2;
};

// The flag of QueryPart::kJoin.
enum class QueryJoin : int16_t { kInner = 1, kLeft = 2, kRight = 3 };

// The flag of QueryPart::kParameter, and the word that SQL has for it.
struct ParameterType {
  int16_t flag;
  std::string_view word;
};
inline constexpr auto kParameterTypes = std::to_array<ParameterType>({{0, "Value"},
                                                                      {1, "Bit"},
                                                                      {2, "Byte"},
                                                                      {3, "Short"},
                                                                      {4, "Long"},
                                                                      {5, "Currency"},
                                                                      {6, "IEEESingle"},
                                                                      {7, "IEEEDouble"},
                                                                      {8, "DateTime"},
                                                                      {9, "Binary"},
                                                                      {10, "Text"},
                                                                      {11, "LongBinary"},
                                                                      {12, "LongText"},
                                                                      {15, "Guid"}});

}  // namespace ambrelio::jetfile
