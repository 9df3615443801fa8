// What may stand in a catalogue.
#pragma once

#include <string>

#include "ambrelio/engine/embedded/storage/catalogue.h"

namespace ambrelio::embedded {

// Raises 3125 unless the text can name a table, field, index or query: 1 to 64 characters, none of
// `. ! [ ] \`` and no control characters, no blank at the start.
void CheckName(const std::string& name);

// The definitions as they are stored, or an error (see CatalogueStore): with a size, a position and
// what one property implies for another. The name of the field or index must be free in `table`.
FieldInfo CheckedField(const TableInfo& table, const FieldInfo& field);
IndexInfo CheckedIndex(const TableInfo& table, const IndexInfo& index);
TableInfo CheckedTable(const TableInfo& table);

// `field` of `table` with those properties of `changed` that a stored field can change.
FieldInfo CheckedChange(const TableInfo& table, const FieldInfo& field, const FieldInfo& changed);

}  // namespace ambrelio::embedded
