#include "ambrelio/engine/embedded/storage/table_form.h"

#include <algorithm>
#include <vector>

#include "ambrelio/engine/embedded/functions/functions.h"

namespace ambrelio::embedded {
namespace {

using dao::FieldType;

constexpr const char* kWorkTable = "jet.reshaped";

std::string StorageType(FieldType type) {
  switch (type) {
    case FieldType::kBoolean:
      return "INTEGER NOT NULL DEFAULT 0";
    case FieldType::kByte:
    case FieldType::kInteger:
    case FieldType::kLong:
      return "INTEGER";
    case FieldType::kText:
    case FieldType::kMemo:
      return std::string("TEXT COLLATE ") + kCollation;
    default:
      return "REAL";
  }
}

std::string Check(std::string_view rule, const FieldInfo& field, const std::string& condition) {
  return " CONSTRAINT " + QuoteName(std::string(rule) + ":" + field.name) + " CHECK (" + condition +
         ")";
}

// Whether an index keeps Null out of the field.
bool IsKeyField(const TableInfo& table, const FieldInfo& field) {
  return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexInfo& index) {
    return index.required &&
           std::any_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& column) {
             return SameName(column.name, field.name);
           });
  });
}

std::string ColumnForm(const TableInfo& table, const FieldInfo& field) {
  const std::string name = QuoteName(field.name);
  const bool text = field.type == FieldType::kText || field.type == FieldType::kMemo;
  std::string form = name + " " + StorageType(field.type);
  if (field.type != FieldType::kBoolean && IsKeyField(table, field)) form += " NOT NULL";
  if (field.required) form += Check(kRequiredRule, field, name + " IS NOT NULL");
  if (text && !field.allow_zero_length) {
    form += Check(kZeroLengthRule, field, "length(" + name + ") > 0");
  }
  return form;
}

std::vector<const FieldInfo*> InOrderOfMaking(const TableInfo& table) {
  std::vector<const FieldInfo*> fields;
  for (const FieldInfo& field : table.fields) fields.push_back(&field);
  std::sort(fields.begin(), fields.end(),
            [](const FieldInfo* a, const FieldInfo* b) { return a->id < b->id; });
  return fields;
}

std::string IndexName(const TableInfo& table, const IndexInfo& index) {
  return QuoteName(table.name + "." + index.name);
}

std::string IndexForm(const TableInfo& table, const IndexInfo& index) {
  std::string columns;
  for (const IndexColumn& column : index.columns) {
    if (!columns.empty()) columns += ", ";
    columns += QuoteName(column.name) + (column.descending ? " DESC" : "");
  }
  return std::string("CREATE ") + (index.unique ? "UNIQUE " : "") + "INDEX " +
         IndexName(table, index) + " ON " + QuoteName(table.name) + "(" + columns + ")";
}

bool HasIndex(const TableInfo& table, const std::string& form) {
  return std::any_of(table.indexes.begin(), table.indexes.end(),
                     [&](const IndexInfo& index) { return IndexForm(table, index) == form; });
}

void ReshapeIndexes(Storage& storage, const TableInfo& before, const TableInfo& after) {
  for (const IndexInfo& index : before.indexes) {
    if (!HasIndex(after, IndexForm(before, index))) {
      storage.Run("DROP INDEX " + IndexName(before, index));
    }
  }
  for (const IndexInfo& index : after.indexes) {
    const std::string form = IndexForm(after, index);
    if (!HasIndex(before, form)) storage.Run(form);
  }
}

void CopyIntoNew(Storage& storage, const TableInfo& before, const TableInfo& after) {
  std::string to(RowIdName(after));
  std::string from(RowIdName(before));
  for (const FieldInfo& field : after.fields) {
    if (const FieldInfo* const old = before.FindField(field.id); old != nullptr) {
      to += ", " + QuoteName(field.name);
      from += ", " + QuoteName(old->name);
    }
  }
  const std::string work = QuoteName(kWorkTable);
  const std::string old_name = QuoteName(before.name);
  storage.Run(TableForm(after, kWorkTable));
  storage.Run("INSERT INTO " + work + "(" + to + ") SELECT " + from + " FROM " + old_name);
  storage.Run("DROP TABLE " + old_name);
  storage.Run("ALTER TABLE " + work + " RENAME TO " + QuoteName(after.name));
  CreateStoredIndexes(storage, after);
}

}  // namespace

std::string TableForm(const TableInfo& table, const std::string& name) {
  std::string columns;
  for (const FieldInfo* const field : InOrderOfMaking(table)) {
    if (!columns.empty()) columns += ", ";
    columns += ColumnForm(table, *field);
  }
  return "CREATE TABLE " + QuoteName(name) + "(" + columns + ")";
}

void CreateStored(Storage& storage, const TableInfo& table) {
  storage.Run(TableForm(table));
  CreateStoredIndexes(storage, table);
}

void CreateStoredIndexes(Storage& storage, const TableInfo& table) {
  for (const IndexInfo& index : table.indexes) storage.Run(IndexForm(table, index));
}

void Reshape(Storage& storage, const TableInfo& before, const TableInfo& after) {
  const std::string old_form = TableForm(before);
  const std::string form = TableForm(after);
  if (form != old_form) {
    // A last column that takes Null needs no copy.
    const FieldInfo& last = *InOrderOfMaking(after).back();
    const std::string column = ColumnForm(after, last);
    const bool appended =
        form == old_form.substr(0, old_form.size() - 1) + ", " + column + ")" && !last.required;
    if (!appended) return CopyIntoNew(storage, before, after);
    storage.Run("ALTER TABLE " + QuoteName(after.name) + " ADD COLUMN " + column);
  }
  ReshapeIndexes(storage, before, after);
}

}  // namespace ambrelio::embedded
