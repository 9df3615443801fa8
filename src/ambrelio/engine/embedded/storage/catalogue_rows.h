// The rows of the tables in which a file keeps its catalogue (catalogue_schema.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// All of them, as one moment saw them.
Catalogue ReadCatalogue(Storage& storage);

// Each gives the id of the new row.
int64_t InsertTableRow(Storage& storage, const std::string& name);
int64_t InsertFieldRow(Storage& storage, int64_t table, const FieldInfo& field);
// `table` gives the ids of the index's fields.
int64_t InsertIndexRows(Storage& storage, const TableInfo& table, const IndexInfo& index);
int64_t InsertQueryRow(Storage& storage, const QueryInfo& query);

void UpdateTableRow(Storage& storage, int64_t id, const std::string& name);
void UpdateFieldRow(Storage& storage, const FieldInfo& field);
void UpdateQueryRow(Storage& storage, int64_t id, const std::string& sql);

void DeleteTableRows(Storage& storage, int64_t id);
void DeleteFieldRow(Storage& storage, int64_t id);
void DeleteIndexRows(Storage& storage, int64_t id);
void DeleteQueryRow(Storage& storage, int64_t id);

// "" when it was never set.
std::string ReadSetting(Storage& storage, std::string_view key);
void WriteSetting(Storage& storage, std::string_view key, const std::string& value);

}  // namespace ambrelio::embedded
