// The keys of indexes: bytes whose order is that of the values.
#pragma once

#include <optional>
#include <vector>

#include "ambrelio/engine/jetfile/table_definition.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::jetfile {

// The original engine cuts longer keys, in a way that is not known well enough.
inline constexpr size_t kLongestKey = 510;

// What a value adds to a key. Nothing when it cannot be told: a text in an order that is not known
// here, or with a character that has no known place in it. The value has the alternative of its
// column's type, as values.h says, or is Null.
std::optional<Bytes> EncodeKeyPart(const ColumnDefinition& column, bool ascending,
                                   const Variant& value, bool jet4);

// The whole key, of as many columns of the index as there are values. Nothing when a part of it
// cannot be told, or it is longer than kLongestKey. Raises Damage for an index over a column that
// the table does not have.
std::optional<Bytes> EncodeKey(const TableDefinition& definition, const IndexDefinition& index,
                               const std::vector<Variant>& values, bool jet4);

// Whether keys can be made of texts of a language, in the way that definitions and page 0 name it.
bool IsKnownLanguage(uint16_t language);

// Whether an index can be read and written by its keys at all: whether its texts have a known
// order.
bool IsEncodable(const TableDefinition& definition, const IndexDefinition& index, bool jet4);

}  // namespace ambrelio::jetfile
