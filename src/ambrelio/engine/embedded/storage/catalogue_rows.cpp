#include "ambrelio/engine/embedded/storage/catalogue_rows.h"

#include <algorithm>
#include <concepts>
#include <map>
#include <vector>

#include "ambrelio/engine/embedded/functions/functions.h"

namespace ambrelio::embedded {
namespace {

constexpr const char* kStamp = "stamp";

void BindValue(StorageStatement& statement, int parameter, std::string_view value) {
  statement.Bind(parameter, Variant(value));
}
void BindValue(StorageStatement& statement, int parameter, std::integral auto value) {
  statement.Bind(parameter, static_cast<int64_t>(value));
}

// Runs a statement that gives no rows, with its parameters in order.
template <class... Values>
void Write(Storage& storage, const std::string& sql, const Values&... values) {
  StorageStatement statement(storage.raw(), sql);
  int parameter = 0;
  (BindValue(statement, ++parameter, values), ...);
  statement.Step();
}

template <class... Values>
int64_t Insert(Storage& storage, const std::string& sql, const Values&... values) {
  Write(storage, sql, values...);
  return sqlite3_last_insert_rowid(storage.raw());
}

template <class T>
void SortByName(std::vector<T>& items) {
  std::sort(items.begin(), items.end(),
            [](const T& a, const T& b) { return CompareText(a.name, b.name) < 0; });
}

FieldInfo ReadField(const StorageStatement& row) {
  FieldInfo field;
  field.id = row.Integer(1);
  field.name = row.Text(2);
  field.type = static_cast<dao::FieldType>(row.Integer(3));
  field.size = static_cast<int32_t>(row.Integer(4));
  field.position = static_cast<int16_t>(row.Integer(5));
  field.attributes = static_cast<int32_t>(row.Integer(6));
  field.required = row.Integer(7) != 0;
  field.allow_zero_length = row.Integer(8) != 0;
  field.default_value = row.Text(9);
  return field;
}

IndexInfo ReadIndex(const StorageStatement& row) {
  IndexInfo index;
  index.id = row.Integer(1);
  index.name = row.Text(2);
  index.primary = row.Integer(3) != 0;
  index.unique = row.Integer(4) != 0;
  index.ignore_nulls = row.Integer(5) != 0;
  index.required = row.Integer(6) != 0;
  return index;
}

using Tables = std::map<int64_t, TableInfo>;

void ReadFields(Storage& storage, Tables& tables) {
  StorageStatement row(storage.raw(),
                       "select table_id, id, name, type, size, position, attributes, required,"
                       " zero_length, default_value from \"jet.fields\" order by id");
  while (row.Step()) tables[row.Integer(0)].fields.push_back(ReadField(row));
  for (auto& [id, table] : tables) table.SortFields();
}

void ReadIndexes(Storage& storage, Tables& tables) {
  StorageStatement row(storage.raw(),
                       "select i.table_id, i.id, i.name, i.is_primary, i.is_unique, i.ignore_nulls,"
                       " i.required, f.name, c.descending from \"jet.indexes\" i"
                       " join \"jet.index_columns\" c on c.index_id = i.id"
                       " join \"jet.fields\" f on f.id = c.field_id order by i.id, c.place");
  while (row.Step()) {
    std::vector<IndexInfo>& indexes = tables[row.Integer(0)].indexes;
    if (indexes.empty() || indexes.back().id != row.Integer(1)) indexes.push_back(ReadIndex(row));
    indexes.back().columns.push_back({std::string(row.Text(7)), row.Integer(8) != 0});
  }
}

std::vector<TableInfo> ReadTables(Storage& storage) {
  Tables by_id;
  StorageStatement row(storage.raw(), "select id, name from \"jet.tables\"");
  while (row.Step()) {
    TableInfo& table = by_id[row.Integer(0)];
    table.id = row.Integer(0);
    table.name = row.Text(1);
  }
  ReadFields(storage, by_id);
  ReadIndexes(storage, by_id);
  std::vector<TableInfo> tables;
  for (auto& [id, table] : by_id) tables.push_back(std::move(table));
  return tables;
}

std::vector<QueryInfo> ReadQueries(Storage& storage) {
  std::vector<QueryInfo> queries;
  StorageStatement row(storage.raw(), "select id, name, sql from \"jet.queries\"");
  while (row.Step()) {
    queries.push_back({std::string(row.Text(1)), std::string(row.Text(2)), row.Integer(0)});
  }
  return queries;
}

}  // namespace

Catalogue ReadCatalogue(Storage& storage) {
  Catalogue catalogue;
  catalogue.tables = ReadTables(storage);
  catalogue.queries = ReadQueries(storage);
  SortByName(catalogue.tables);
  SortByName(catalogue.queries);
  return catalogue;
}

void InsertTable(Storage& storage, TableInfo& table) {
  table.id = Insert(storage, "insert into \"jet.tables\"(id, name) values(nullif(?, 0), ?)",
                    table.id, table.name);
  for (FieldInfo& field : table.fields) field.id = InsertFieldRow(storage, table.id, field);
  for (IndexInfo& index : table.indexes) index.id = InsertIndexRows(storage, table, index);
}

int64_t InsertFieldRow(Storage& storage, int64_t table, const FieldInfo& field) {
  return Insert(storage,
                "insert into \"jet.fields\"(id, table_id, name, type, size, position, attributes,"
                " required, zero_length, default_value)"
                " values(nullif(?, 0), ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                field.id, table, field.name, static_cast<int>(field.type), field.size,
                field.position, field.attributes, field.required, field.allow_zero_length,
                field.default_value);
}

int64_t InsertIndexRows(Storage& storage, const TableInfo& table, const IndexInfo& index) {
  const int64_t id = Insert(storage,
                            "insert into \"jet.indexes\"(id, table_id, name, is_primary, is_unique,"
                            " ignore_nulls, required) values(nullif(?, 0), ?, ?, ?, ?, ?, ?)",
                            index.id, table.id, index.name, index.primary, index.unique,
                            index.ignore_nulls, index.required);
  int place = 0;
  for (const IndexColumn& column : index.columns) {
    Write(storage, "insert into \"jet.index_columns\" values(?, ?, ?, ?)", id, place++,
          table.FindField(column.name)->id, column.descending);
  }
  return id;
}

int64_t InsertQueryRow(Storage& storage, const QueryInfo& query) {
  return Insert(storage, "insert into \"jet.queries\"(id, name, sql) values(nullif(?, 0), ?, ?)",
                query.id, query.name, query.sql);
}

void UpdateTableRow(Storage& storage, int64_t id, const std::string& name) {
  Write(storage, "update \"jet.tables\" set name = ? where id = ?", name, id);
}

void UpdateFieldRow(Storage& storage, const FieldInfo& field) {
  Write(storage,
        "update \"jet.fields\" set name = ?, position = ?, required = ?, zero_length = ?,"
        " default_value = ? where id = ?",
        field.name, field.position, field.required, field.allow_zero_length, field.default_value,
        field.id);
}

void UpdateQueryRow(Storage& storage, int64_t id, const std::string& sql) {
  Write(storage, "update \"jet.queries\" set sql = ? where id = ?", sql, id);
}

void DeleteTableRows(Storage& storage, int64_t id) {
  Write(storage,
        "delete from \"jet.index_columns\" where index_id in"
        " (select id from \"jet.indexes\" where table_id = ?)",
        id);
  Write(storage, "delete from \"jet.indexes\" where table_id = ?", id);
  Write(storage, "delete from \"jet.fields\" where table_id = ?", id);
  Write(storage, "delete from \"jet.tables\" where id = ?", id);
}

void DeleteFieldRow(Storage& storage, int64_t id) {
  Write(storage, "delete from \"jet.fields\" where id = ?", id);
}

void DeleteIndexRows(Storage& storage, int64_t id) {
  Write(storage, "delete from \"jet.index_columns\" where index_id = ?", id);
  Write(storage, "delete from \"jet.indexes\" where id = ?", id);
}

void DeleteQueryRow(Storage& storage, int64_t id) {
  Write(storage, "delete from \"jet.queries\" where id = ?", id);
}

std::string ReadStamp(Storage& storage) { return ReadSetting(storage, kStamp); }

void Restamp(Storage& storage) {
  storage.Run("replace into \"jet.settings\" values(" + QuoteText(kStamp) +
              ", hex(randomblob(16)))");
}

std::string ReadSetting(Storage& storage, std::string_view key) {
  StorageStatement row(storage.raw(), "select value from \"jet.settings\" where name = ?");
  row.Bind(1, Variant(key));
  return row.Step() ? std::string(row.Text(0)) : std::string();
}

void WriteSetting(Storage& storage, std::string_view key, const std::string& value) {
  Write(storage, "replace into \"jet.settings\" values(?, ?)", key, value);
}

}  // namespace ambrelio::embedded
