#include "ambrelio/engine/embedded/storage/catalogue_rules.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;
using dao::FieldType;

constexpr size_t kMostNameCharacters = 64;
constexpr size_t kMostFields = 255;
constexpr int32_t kUsualTextSize = 50;
constexpr int32_t kMostTextSize = 255;

bool IsType(FieldType type) {
  switch (type) {
    case FieldType::kBoolean:
    case FieldType::kByte:
    case FieldType::kInteger:
    case FieldType::kLong:
    case FieldType::kCurrency:
    case FieldType::kSingle:
    case FieldType::kDouble:
    case FieldType::kDate:
    case FieldType::kText:
    case FieldType::kMemo:
      return true;
  }
  return false;
}

// SQLite keeps this start for itself.
bool IsReserved(std::string_view name) {
  constexpr std::string_view kStart = "sqlite_";
  return name.size() >= kStart.size() &&
         std::equal(kStart.begin(), kStart.end(), name.begin(),
                    [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b - 'A' + 'a' : b); });
}

int16_t NextPosition(const TableInfo& table) {
  int next = 0;
  for (const FieldInfo& field : table.fields) next = std::max(next, field.position + 1);
  return static_cast<int16_t>(std::min<int>(next, std::numeric_limits<int16_t>::max()));
}

int32_t CheckedSize(const FieldInfo& field) {
  if (field.type != FieldType::kText) return 0;
  const int32_t size = field.size == 0 ? kUsualTextSize : field.size;
  if (size < 0 || size > kMostTextSize) {
    dao::Raise(DaoError::kInvalidFieldType, dao::source::kFields,
               field.name + " with a size of " + std::to_string(size));
  }
  return size;
}

void CheckFieldName(const TableInfo& table, const FieldInfo& field) {
  CheckName(field.name);
  if (table.FindField(field.name) != nullptr) {
    dao::Raise(DaoError::kFieldExists, dao::source::kFields, field.name);
  }
  // The rows of a table need a name for their number that no field has.
  TableInfo grown = table;
  grown.fields.push_back(field);
  if (RowIdName(grown).empty()) {
    dao::Raise(DaoError::kInvalidName, dao::source::kFields, field.name);
  }
}

}  // namespace

void CheckName(const std::string& name) {
  const bool fits = !name.empty() && IsValidUtf8(name) && Utf8Length(name) <= kMostNameCharacters;
  const bool clean = std::none_of(name.begin(), name.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F ||
           std::string_view(".![]`").find(c) != std::string_view::npos;
  });
  if (!fits || !clean || name.front() == ' ' || IsReserved(name)) {
    dao::Raise(DaoError::kInvalidName, dao::source::kDatabase, name);
  }
}

FieldInfo CheckedField(const TableInfo& table, const FieldInfo& field) {
  FieldInfo checked = field;
  checked.attributes &= dao::kAutoIncrement;
  const bool counter = checked.attributes != 0;
  if (!IsType(field.type) || (counter && field.type != FieldType::kLong)) {
    dao::Raise(DaoError::kInvalidFieldType, dao::source::kFields, field.name);
  }
  CheckFieldName(table, field);
  if (table.fields.size() >= kMostFields) {
    dao::Raise(DaoError::kTooManyFields, dao::source::kFields);
  }
  checked.size = CheckedSize(field);
  if (checked.position < 0) checked.position = NextPosition(table);
  if (!checked.default_value.empty()) sql::ParseExpression(checked.default_value);
  return checked;
}

FieldInfo CheckedChange(const TableInfo& table, const FieldInfo& field, const FieldInfo& changed) {
  TableInfo others = table;
  std::erase_if(others.fields, [&](const FieldInfo& other) { return other.id == field.id; });
  FieldInfo wanted = changed;
  wanted.type = field.type;
  wanted.size = field.size;
  wanted.attributes = field.attributes;
  wanted.id = field.id;
  return CheckedField(others, wanted);
}

IndexInfo CheckedIndex(const TableInfo& table, const IndexInfo& index) {
  CheckName(index.name);
  if (table.FindIndex(index.name) != nullptr) {
    dao::Raise(DaoError::kIndexExists, dao::source::kIndexes, index.name);
  }
  if (index.primary && table.PrimaryKey() != nullptr) {
    dao::Raise(DaoError::kPrimaryKeyExists, dao::source::kIndexes, table.name);
  }
  if (index.columns.empty()) {
    dao::Raise(DaoError::kNothingDefined, dao::source::kIndexes, index.name);
  }
  IndexInfo checked = index;
  checked.unique = index.unique || index.primary;
  checked.required = index.required || index.primary;
  checked.columns.clear();
  for (const IndexColumn& column : index.columns) {
    const FieldInfo* const field = table.FindField(column.name);
    if (field == nullptr) {
      dao::Raise(DaoError::kUnknownIndexField, dao::source::kIndexes, column.name);
    }
    for (const IndexColumn& other : checked.columns) {
      if (other.name == field->name) {
        dao::Raise(DaoError::kNameInCollection, dao::source::kIndexes, column.name);
      }
    }
    checked.columns.push_back({field->name, column.descending});
  }
  return checked;
}

TableInfo CheckedTable(const TableInfo& table) {
  CheckName(table.name);
  if (table.fields.empty()) {
    dao::Raise(DaoError::kNothingDefined, dao::source::kTableDefs, table.name);
  }
  TableInfo checked;
  checked.name = table.name;
  for (const FieldInfo& field : table.fields) {
    checked.fields.push_back(CheckedField(checked, field));
    checked.fields.back().id = 0;  // whatever table the definition comes from
  }
  for (const IndexInfo& index : table.indexes) {
    checked.indexes.push_back(CheckedIndex(checked, index));
    checked.indexes.back().id = 0;
  }
  return checked;
}

}  // namespace ambrelio::embedded
