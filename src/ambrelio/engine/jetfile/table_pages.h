// The pages and maps that the parts of a table own: taking them for new parts, and giving them
// back. The definition itself is written by whoever changes it.
#pragma once

#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

// Gives a designed table, which has the first page of its definition, all that it needs else: maps,
// and a tree without entries for each index.
void PlaceTable(JetFile& file, TableDefinition& definition);
// Gives back all that a table has, its definition too. Its rows need not be deleted before.
void FreeTable(JetFile& file, const TableDefinition& definition);

// The maps of a column of long values.
LongValueMaps PlaceLongValues(JetFile& file, uint16_t column);
// Gives a column's long values back, and their maps; does nothing for a column without.
void FreeLongValues(JetFile& file, TableDefinition& definition, uint16_t column);

// A map and a root for an index that has none.
void PlaceIndex(JetFile& file, uint32_t table_page, IndexDefinition& index);
void FreeIndex(JetFile& file, const IndexDefinition& index);

}  // namespace ambrelio::jetfile
