// The form that a table of the catalogue has in the storage.
//
//   Boolean                INTEGER, 0 or -1, never Null
//   Byte, Integer, Long    INTEGER
//   Single, Double         REAL
//   Currency               REAL: exact to the ten-thousandth up to 900 000 million
//   Date                   REAL, days as in an OLE date
//   Text, Memo             TEXT COLLATE JET
//
// What a column refuses are constraints, so that the storage itself skips or refuses the rows (see
// kRequiredRule). The columns stand in the order of their making; the order in which they are
// delivered is the catalogue's alone.
#pragma once

#include <string>

#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// The statement that makes the storage table, under `name`, without its indexes.
std::string TableForm(const TableInfo& table, const std::string& name);
inline std::string TableForm(const TableInfo& table) { return TableForm(table, table.name); }

void CreateStored(Storage& storage, const TableInfo& table);
// The indexes alone, which is faster once the rows are there.
void CreateStoredIndexes(Storage& storage, const TableInfo& table);

// Changes the stored table `before` into `after`, keeping its rows and their row numbers; fields
// are recognised by their ids. The rows of a table whose form changes are copied into a new one:
// SQLite can add no constraint to a column that exists.
void Reshape(Storage& storage, const TableInfo& before, const TableInfo& after);

}  // namespace ambrelio::embedded
