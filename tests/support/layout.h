// The layout of a database, as text that a test can compare.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/dao/database.h"

namespace ambrelio::test {

// "name type" of every column, in order; "name type size" of a Text.
inline std::vector<std::string> Columns(dao::Database& database, const std::string& table) {
  std::vector<std::string> columns;
  const auto definition = database.TableDefs().Item(table);
  for (int i = 0; i < definition->Fields().Count(); ++i) {
    const auto field = definition->Fields().Item(i);
    std::string column = field->Name() + " " + std::to_string(static_cast<int>(field->Type()));
    if (field->Type() == dao::FieldType::kText) column += " " + std::to_string(field->Size());
    columns.push_back(std::move(column));
  }
  return columns;
}

// "primary unique ignore-nulls over columns" of an index.
inline std::string IndexText(dao::Database& database, const std::string& table,
                             const std::string& name) {
  const auto index = database.TableDefs().Item(table)->Indexes().Item(name);
  std::string text = std::string(index->Primary() ? "primary " : "") +
                     (index->Unique() ? "unique " : "") +
                     (index->IgnoreNulls() ? "ignore-nulls " : "") + "over";
  for (int i = 0; i < index->Fields().Count(); ++i) text += " " + index->Fields().Item(i)->Name();
  return text;
}

}  // namespace ambrelio::test
