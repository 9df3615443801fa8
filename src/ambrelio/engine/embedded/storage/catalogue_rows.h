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

// All rows of a table, which gets its ids.
void InsertTable(Storage& storage, TableInfo& table);

// Each gives the id of the new row: the one that it has, or a new one for 0.
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

// Another random text after each change of the catalogue, so that equal stamps always mean equal
// catalogues, also where a change was undone or another process made one of its own instead.
std::string ReadStamp(Storage& storage);
void Restamp(Storage& storage);

// "" when it was never set.
std::string ReadSetting(Storage& storage, std::string_view key);
void WriteSetting(Storage& storage, std::string_view key, const std::string& value);

}  // namespace ambrelio::embedded
