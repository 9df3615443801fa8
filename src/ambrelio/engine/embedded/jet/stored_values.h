// Values on their way between the columns of a Jet file and those of the storage.
#pragma once

#include <optional>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/jetfile/table_definition.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded {

// The type of field that shows a column. Nothing for what no field can: such a column is not seen,
// but keeps what it holds.
std::optional<dao::FieldType> FieldTypeOf(jetfile::ColumnType type);

// The value in a column of a statement's row, with the alternative that the type of the file's
// column asks for.
Variant ValueIn(const StorageStatement& row, int column, jetfile::ColumnType type);

// Whether the storage shows a value of the file as the value in a column of a statement's row.
bool ShowsAs(const StorageStatement& row, int column, const Variant& value,
             jetfile::ColumnType type);

}  // namespace ambrelio::embedded
