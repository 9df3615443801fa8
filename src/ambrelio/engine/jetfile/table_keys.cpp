#include "ambrelio/engine/jetfile/table_keys.h"

#include <algorithm>
#include <cstdio>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/index_key.h"

namespace ambrelio::jetfile {
namespace {

std::vector<size_t> PositionsOf(const TableDefinition& definition, const IndexDefinition& index) {
  std::vector<size_t> positions;
  for (const KeyColumn& key : index.Columns()) {
    const ColumnDefinition* column = definition.FindColumn(key.column);
    if (column == nullptr) {
      throw Damage({definition.page(), 0}, "an index is over an unknown column");
    }
    positions.push_back(static_cast<size_t>(column - definition.columns.data()));
  }
  return positions;
}

std::string LanguageText(const ColumnDefinition& column) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%04X", column.collation);
  return text;
}

}  // namespace

TableKeys::TableKeys(const JetFile& file, const TableDefinition& definition)
    : file_(file), definition_(definition) {
  for (const IndexDefinition& index : definition.indexes) {
    positions_.push_back(PositionsOf(definition, index));
  }
}

void TableKeys::CheckIndexes() const {
  const bool jet4 = file_.format().jet4;
  for (size_t i = 0; i < definition_.indexes.size(); ++i) {
    if (IsEncodable(definition_, definition_.indexes[i], jet4)) continue;
    std::string languages;
    for (const size_t position : positions_[i]) {
      const ColumnDefinition& column = definition_.columns[position];
      if (column.type != ColumnType::kText && column.type != ColumnType::kMemo) continue;
      languages += (languages.empty() ? "" : ", ") + LanguageText(column);
    }
    Refuse(dao::DaoError::kNotSupported, "The rows cannot be changed: " + NameOf(i) +
                                             " is sorted as language " + languages +
                                             ", whose order is not known here.");
  }
}

bool TableKeys::Use(size_t position) const {
  return std::any_of(positions_.begin(), positions_.end(), [position](const auto& positions) {
    return std::find(positions.begin(), positions.end(), position) != positions.end();
  });
}

std::vector<bool> TableKeys::Touched(const RowValues& before, const RowValues& after) const {
  std::vector<bool> touched;
  for (const auto& positions : positions_) {
    touched.push_back(std::any_of(positions.begin(), positions.end(), [&](size_t position) {
      return before[position] != after[position];
    }));
  }
  return touched;
}

std::vector<std::optional<TableKey>> TableKeys::Of(const std::vector<Variant>& values,
                                                   const std::vector<bool>& wanted) const {
  std::vector<std::optional<TableKey>> keys(definition_.indexes.size());
  for (size_t i = 0; i < keys.size(); ++i) {
    if (!wanted[i]) continue;
    const IndexDefinition& index = definition_.indexes[i];
    std::vector<Variant> parts;
    for (const size_t position : positions_[i]) parts.push_back(values[position]);
    const auto nulls = std::count_if(parts.begin(), parts.end(),
                                     [](const Variant& part) { return part.is_null(); });
    if (nulls > 0 && index.required()) {
      Refuse(dao::DaoError::kNullInPrimaryKey, "A Null value cannot be in " + NameOf(i) + ".");
    }
    if (index.ignores_nulls() && nulls == std::ssize(parts)) continue;
    auto bytes = EncodeKey(definition_, index, parts, file_.format().jet4);
    if (!bytes) {
      Refuse(
          dao::DaoError::kNotSupported,
          "A value cannot be in " + NameOf(i) +
              ": it is too long, or has a character whose place in the order is not known here.");
    }
    keys[i] = {*std::move(bytes), nulls > 0};
  }
  return keys;
}

std::string TableKeys::TableName() const {
  const auto object = FindTable(file_, definition_.page());
  if (object) return object->name;
  return "of page " + std::to_string(definition_.page());
}

std::string TableKeys::NameOf(size_t index) const {
  std::string name = "a nameless index";
  for (const IndexName& candidate : definition_.index_names) {
    if (candidate.index == index) name = "the index '" + candidate.name + "'";
  }
  return name + " of the table '" + TableName() + "'";
}

}  // namespace ambrelio::jetfile
