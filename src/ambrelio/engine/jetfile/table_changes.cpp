#include "ambrelio/engine/jetfile/table_changes.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/long_value.h"
#include "ambrelio/engine/jetfile/long_value_writer.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/text.h"
#include "ambrelio/engine/jetfile/values.h"

namespace ambrelio::jetfile {
namespace {

void CheckLength(const ColumnDefinition& column, const Variant& value) {
  size_t length = 0;
  if (column.type == ColumnType::kText) {
    length = WideBytes(value.as<std::string>()).size();
  } else if (column.type == ColumnType::kBinary || column.type == ColumnType::kLongBinary) {
    length = value.as<std::string>().size();
  }
  if (length > column.length) {
    dao::Raise(dao::DaoError::kTextTooLong, dao::source::kRecordset, column.name);
  }
}

}  // namespace

bool RowChange::nothing() const {
  return before && after && before->stored == after->stored && after->long_values.empty();
}

const TableKey* RowChange::OldKey(size_t index) const {
  if (!before || !before->keys[index]) return nullptr;
  return after && after->keys[index] == before->keys[index] ? nullptr : &*before->keys[index];
}

const TableKey* RowChange::NewKey(size_t index) const {
  if (!after || !after->keys[index]) return nullptr;
  return before && before->keys[index] == after->keys[index] ? nullptr : &*after->keys[index];
}

std::vector<RowChange> ChangePlanner::Plan(const TableChanges& changes) const {
  std::vector<RowChange> plan;
  for (const RowPointer row : changes.deleted) plan.push_back(PlanOne(row, nullptr));
  for (const auto& [row, values] : changes.updated) plan.push_back(PlanOne(row, &values));
  for (const auto& values : changes.inserted) plan.push_back(PlanOne({}, &values));
  return plan;
}

RowChange ChangePlanner::PlanOne(RowPointer row, const std::vector<Variant>* values) const {
  RowChange change{row, std::nullopt, std::nullopt};
  if (!row.none()) change.before = Read(row);
  if (values != nullptr) change.after = Make(*values, change.before ? &*change.before : nullptr);
  const std::vector<bool> touched = change.before && change.after
                                        ? keys_.Touched(change.before->stored, change.after->stored)
                                        : std::vector<bool>(definition_.indexes.size(), true);
  if (change.before) change.before->keys = keys_.Of(change.before->values, touched);
  if (change.after) change.after->keys = keys_.Of(change.after->values, touched);
  return change;
}

RowSide ChangePlanner::Read(RowPointer pointer) const {
  const auto body = FindRow(file_, definition_, pointer);
  if (!body) dao::Raise(dao::DaoError::kRecordDeleted, dao::source::kRecordset);
  const Row row(body->page.Row(body->at.row), definition_, file_.format().jet4);
  RowSide side;
  for (size_t i = 0; i < definition_.columns.size(); ++i) {
    const ColumnDefinition& column = definition_.columns[i];
    const bool wanted = !column.long_value() || keys_.Use(i);
    side.values.push_back(wanted ? ReadValue(file_, row, column) : Variant::Null());
    auto& stored = side.stored.emplace_back();
    if (column.type == ColumnType::kBoolean) {
      if (row.Flag(column)) stored.emplace();
    } else if (const auto bytes = row.Value(column)) {
      stored = bytes->Copy();
    }
  }
  return side;
}

RowSide ChangePlanner::Make(const std::vector<Variant>& values, const RowSide* before) const {
  RowSide side;
  side.values = values;
  side.stored.resize(definition_.columns.size());
  for (size_t i = 0; i < definition_.columns.size(); ++i) {
    MakeValue(i, values.at(i), before != nullptr ? before->stored[i] : std::nullopt, side);
  }
  EncodeRow(definition_, side.stored);
  return side;
}

void ChangePlanner::MakeValue(size_t position, const Variant& value,
                              const std::optional<Bytes>& before, RowSide& side) const {
  const ColumnDefinition& column = definition_.columns[position];
  auto& stored = side.stored[position];
  if (column.type == ColumnType::kBoolean) {
    // It is never Null.
    if (value.is_null()) side.values[position] = false;
    if (side.values[position].type() != VariantType::kBoolean) Raise(RuntimeError::kTypeMismatch);
    if (side.values[position].as<bool>()) stored.emplace();
    return;
  }
  if (value.is_null()) return;
  const Bytes bytes =
      column.long_value() ? EncodeLongValue(column, value) : EncodeValue(column, value);
  CheckLength(column, value);
  if (before && HoldsAlready(column, *before, value)) {
    stored = before;
  } else if (column.long_value()) {
    stored = LongValueWriter::Placeholder(bytes);
    side.long_values[position] = bytes;
  } else {
    stored = bytes;
  }
}

// The same text may be stored in several ways. Of numbers, only the same bytes are the same value.
bool ChangePlanner::HoldsAlready(const ColumnDefinition& column, const Bytes& stored,
                                 const Variant& value) const {
  if (column.type != ColumnType::kText && !column.long_value()) return false;
  const Bytes whole = column.long_value() ? ReadLongValue(file_, {stored, {}}).bytes : stored;
  return DecodeValue(column, {whole, {}}, file_.format().jet4) == value;
}

}  // namespace ambrelio::jetfile
