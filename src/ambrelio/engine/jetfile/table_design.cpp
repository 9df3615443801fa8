#include "ambrelio/engine/jetfile/table_design.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/general_order.h"
#include "ambrelio/platform/characters.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;

constexpr uint32_t kMarker = 1625;
constexpr uint32_t kIndexMarker = 1923;
constexpr uint8_t kIndexOfJet4 = 0x80;
constexpr size_t kReservedBytes = 5;
constexpr uint32_t kNoNumber = 0xFFFFFFFF;
constexpr uint8_t kNoRelationship = 4;  // where one says what follows a change
constexpr uint16_t kLongestText = 255;
constexpr uint16_t kLongestBinary = 510;

// In bytes; of what has no fixed size, 0.
uint16_t SizeOf(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
    case ColumnType::kByte:
      return 1;
    case ColumnType::kInteger:
      return 2;
    case ColumnType::kLong:
    case ColumnType::kSingle:
      return 4;
    case ColumnType::kMoney:
    case ColumnType::kDouble:
    case ColumnType::kDate:
      return 8;
    case ColumnType::kGuid:
      return 16;
    default:
      return 0;
  }
}

// In bytes, as the definition has it; nothing for what a column cannot be.
std::optional<uint16_t> LengthOf(const NewColumn& column) {
  if (column.autonumber && column.type != ColumnType::kLong) return std::nullopt;
  switch (column.type) {
    case ColumnType::kText:
      if (column.length == 0 || column.length > kLongestText) return std::nullopt;
      return static_cast<uint16_t>(2 * column.length);
    case ColumnType::kBinary:
      if (column.length == 0 || column.length > kLongestBinary) return std::nullopt;
      return column.length;
    case ColumnType::kMemo:
    case ColumnType::kOle:
      return uint16_t{0};
    default:
      if (SizeOf(column.type) == 0) return std::nullopt;
      return SizeOf(column.type);
  }
}

uint16_t FixedEnd(const TableDefinition& definition) {
  uint16_t end = 0;
  for (const ColumnDefinition& column : definition.columns) {
    if (!column.fixed() || column.type == ColumnType::kBoolean) continue;
    end = std::max(end, static_cast<uint16_t>(column.fixed_offset + column.length));
  }
  return end;
}

uint16_t NextOrdinal(const TableDefinition& definition) {
  if (definition.columns.empty()) return 0;
  return static_cast<uint16_t>(definition.columns.back().ordinal + 1);
}

// Ordinals may be equal, and then names decide.
void Insert(TableDefinition& definition, ColumnDefinition column) {
  const std::pair rank{column.ordinal, UpperCase(column.name)};
  const auto place = std::find_if(definition.columns.begin(), definition.columns.end(),
                                  [&rank](const ColumnDefinition& other) {
                                    return rank < std::pair{other.ordinal, UpperCase(other.name)};
                                  });
  definition.columns.insert(place, std::move(column));
}

uint8_t FlagsOf(const NewIndex& index) {
  uint8_t flags = kIndexOfJet4;
  if (index.primary || index.unique) flags |= IndexDefinition::kUnique;
  if (index.primary || index.required) flags |= IndexDefinition::kRequired;
  if (index.ignore_nulls) flags |= IndexDefinition::kIgnoreNulls;
  return flags;
}

// The keys of other types are not known well enough to write them.
bool CanBeKey(ColumnType type) {
  return type != ColumnType::kBoolean && type != ColumnType::kOle && type != ColumnType::kMemo &&
         type != ColumnType::kNumeric && type != ColumnType::kLongBinary;
}

uint32_t NextNumber(const TableDefinition& definition) {
  uint32_t next = 0;
  for (const IndexName& name : definition.index_names) next = std::max(next, name.number + 1);
  return next;
}

}  // namespace

void RequireName(std::string_view name) {
  const std::u16string units = Utf8ToUtf16(name);
  const bool sound =
      !units.empty() && units.size() <= kLongestName && units.front() != u' ' &&
      std::none_of(units.begin(), units.end(), [](char16_t unit) {
        return unit < u' ' || std::u16string_view(u".![]`").find(unit) != std::u16string_view::npos;
      });
  if (!sound) dao::Raise(DaoError::kInvalidName, dao::source::kTableDef, std::string(name));
}

// That of a text, as far as its order is known.
Bytes NameKey(std::string_view name) {
  if (auto key = GeneralOrderKey(name, TextOrder::kGeneral)) return *key;
  const std::string upper = UpperCase(name);
  return {upper.begin(), upper.end()};
}

TableDefinition NewDefinition(uint8_t kind) {
  TableDefinition definition;
  definition.marker = kMarker;
  definition.increment = 1;
  definition.kind = kind;
  return definition;
}

uint16_t DesignColumn(TableDefinition& definition, const NewColumn& column, uint16_t language) {
  constexpr uint8_t kUpdatable = 0x02;
  RequireName(column.name);
  if (definition.FindColumn(column.name) != nullptr) {
    dao::Raise(DaoError::kFieldExists, dao::source::kTableDef, column.name);
  }
  const auto length = LengthOf(column);
  const bool second_autonumber =
      column.autonumber && std::any_of(definition.columns.begin(), definition.columns.end(),
                                       [](const auto& other) { return other.autonumber(); });
  if (!length || second_autonumber) {
    dao::Raise(DaoError::kInvalidFieldType, dao::source::kTableDef, column.name);
  }
  if (definition.column_mark >= kMostColumns) {
    dao::Raise(DaoError::kTooManyFields, dao::source::kTableDef);
  }

  ColumnDefinition made;
  made.name = column.name;
  made.type = column.type;
  made.marker = kMarker;
  made.number = definition.column_mark++;
  made.ordinal = column.ordinal.value_or(NextOrdinal(definition));
  made.collation = language;
  made.length = *length;
  made.flags = kUpdatable;
  // A fixed column has the index that a variable one in its place would have.
  made.variable_index = definition.variable_mark;
  if (SizeOf(column.type) == 0) {
    ++definition.variable_mark;
  } else {
    made.flags |= ColumnDefinition::kFixed;
    if (column.type != ColumnType::kBoolean) made.fixed_offset = FixedEnd(definition);
  }
  if (column.autonumber) made.flags |= ColumnDefinition::kAutonumber;
  Insert(definition, std::move(made));
  return static_cast<uint16_t>(definition.column_mark - 1);
}

void RedesignColumn(TableDefinition& definition, uint16_t number, std::string_view name,
                    uint16_t ordinal) {
  RequireName(name);
  const ColumnDefinition* other = definition.FindColumn(name);
  if (other != nullptr && other->number != number) {
    dao::Raise(DaoError::kFieldExists, dao::source::kTableDef, std::string(name));
  }
  const auto found = std::find_if(definition.columns.begin(), definition.columns.end(),
                                  [number](const auto& column) { return column.number == number; });
  ColumnDefinition column = *found;
  definition.columns.erase(found);
  column.name = name;
  column.ordinal = ordinal;
  Insert(definition, std::move(column));
}

IndexDefinition DesignIndex(const TableDefinition& definition, const NewIndex& index) {
  if (index.columns.size() > kMostKeyColumns) {
    Refuse(DaoError::kInvalidArgument,
           "The index '" + index.name + "' has more columns than ten, which is the most.");
  }
  IndexDefinition tree;
  tree.marker = kIndexMarker;
  tree.flags = FlagsOf(index);
  tree.reserved.resize(kReservedBytes);
  for (size_t i = 0; i < index.columns.size(); ++i) {
    const auto& [name, ascending] = index.columns[i];
    const ColumnDefinition* column = definition.FindColumn(name);
    const bool twice = column != nullptr &&
                       std::any_of(tree.slots.begin(), tree.slots.end(),
                                   [&](KeyColumn slot) { return slot.column == column->number; });
    if (column == nullptr || twice || !CanBeKey(column->type)) {
      dao::Raise(DaoError::kUnknownIndexField, dao::source::kTableDef, name);
    }
    tree.slots.at(i) = {column->number, static_cast<uint8_t>(ascending ? 1 : 0)};
  }
  if (index.columns.empty()) {
    dao::Raise(DaoError::kUnknownIndexField, dao::source::kTableDef, index.name);
  }
  return tree;
}

void AddIndex(TableDefinition& definition, const NewIndex& index, const IndexDefinition& tree) {
  RequireName(index.name);
  if (FindIndexName(definition, index.name) != nullptr) {
    dao::Raise(DaoError::kIndexExists, dao::source::kTableDef, index.name);
  }
  const bool second_primary =
      index.primary &&
      std::any_of(definition.index_names.begin(), definition.index_names.end(),
                  [](const IndexName& name) { return name.kind == IndexName::kPrimary; });
  if (second_primary) dao::Raise(DaoError::kPrimaryKeyExists, dao::source::kTableDef, index.name);
  if (definition.index_names.size() >= kMostIndexes) {
    Refuse(DaoError::kInvalidArgument,
           "The index '" + index.name + "' would be one more than 32, which is the most.");
  }
  IndexName name;
  name.name = index.name;
  name.marker = kMarker;
  name.number = NextNumber(definition);
  name.index = static_cast<uint32_t>(definition.indexes.size());
  name.other_number = kNoNumber;
  name.on_update = kNoRelationship;
  name.on_delete = kNoRelationship;
  name.kind = index.primary ? IndexName::kPrimary : uint8_t{0};
  definition.indexes.push_back(tree);
  const auto place = std::find_if(
      definition.index_names.begin(), definition.index_names.end(),
      [&](const IndexName& other) { return NameKey(name.name) < NameKey(other.name); });
  definition.index_names.insert(place, std::move(name));
}

const IndexName* FindIndexName(const TableDefinition& definition, std::string_view name) {
  const auto found =
      std::find_if(definition.index_names.begin(), definition.index_names.end(),
                   [name](const IndexName& index) { return SameText(index.name, name); });
  return found == definition.index_names.end() ? nullptr : &*found;
}

}  // namespace ambrelio::jetfile
