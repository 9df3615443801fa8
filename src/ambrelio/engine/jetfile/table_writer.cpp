#include "ambrelio/engine/jetfile/table_writer.h"

#include <algorithm>
#include <set>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

bool IsKnown(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
    case ColumnType::kByte:
    case ColumnType::kInteger:
    case ColumnType::kLong:
    case ColumnType::kMoney:
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
    case ColumnType::kBinary:
    case ColumnType::kText:
    case ColumnType::kOle:
    case ColumnType::kMemo:
    case ColumnType::kGuid:
    case ColumnType::kNumeric:
    case ColumnType::kLongBinary:
      return true;
  }
  return false;
}

}  // namespace

TableWriter::TableWriter(JetFile& file, uint32_t definition_page)
    : file_(file),
      definition_(std::make_unique<TableDefinition>(ReadDefinition(file, definition_page))),
      keys_(file, *definition_),
      rows_(file, *definition_) {
  for (const IndexDefinition& index : definition_->indexes) {
    indexes_.emplace_back(file, definition_->page(), index);
  }
}

void TableWriter::CheckWritable() const {
  if (!file_.format().jet4) {
    Refuse(dao::DaoError::kNotSupported, "Databases of Access 97 can be read only.");
  }
  for (const ColumnDefinition& column : definition_->columns) {
    if (IsKnown(column.type)) continue;
    Refuse(dao::DaoError::kNotSupported, "The rows cannot be changed: the column '" + column.name +
                                             "' has a type that is not known here.");
  }
  keys_.CheckIndexes();
}

std::vector<RowPointer> TableWriter::Apply(const TableChanges& changes) {
  if (!writable_) CheckWritable();
  writable_ = true;
  std::vector<RowChange> plan = ChangePlanner(file_, *definition_, keys_).Plan(changes);
  for (size_t i = 0; i < indexes_.size(); ++i) CheckUnique(i, plan);
  RemoveKeys(plan);
  std::vector<RowPointer> inserted;
  for (RowChange& change : plan) {
    Store(change);
    Count(change);
    if (!change.before) inserted.push_back(change.row);
  }
  AddKeys(plan);
  return inserted;
}

RowPointer TableWriter::Insert(const std::vector<Variant>& values) {
  return Apply({{}, {}, {values}}).front();
}

void TableWriter::Update(RowPointer row, const std::vector<Variant>& values) {
  Apply({{}, {{row, values}}, {}});
}

void TableWriter::Delete(RowPointer row) { Apply({{row}, {}, {}}); }

void TableWriter::CheckUnique(size_t index, const std::vector<RowChange>& changes) const {
  if (!definition_->indexes[index].unique()) return;
  std::set<Bytes> leaving;
  for (const RowChange& change : changes) {
    if (const TableKey* key = change.OldKey(index)) leaving.insert(key->bytes);
  }
  std::set<Bytes> coming;
  for (const RowChange& change : changes) {
    const TableKey* key = change.NewKey(index);
    if (key == nullptr || key->has_null) continue;
    const bool first = coming.insert(key->bytes).second;
    if (first && (leaving.contains(key->bytes) || !indexes_[index].Contains(key->bytes))) continue;
    dao::Raise(dao::DaoError::kDuplicateKey, dao::source::kRecordset,
               "It would be in " + keys_.NameOf(index) + ".");
  }
}

void TableWriter::RemoveKeys(const std::vector<RowChange>& changes) {
  for (const RowChange& change : changes) {
    for (size_t i = 0; i < indexes_.size(); ++i) {
      if (const TableKey* key = change.OldKey(i)) indexes_[i].Remove({key->bytes, change.row});
    }
  }
}

void TableWriter::AddKeys(const std::vector<RowChange>& changes) {
  for (size_t i = 0; i < indexes_.size(); ++i) {
    std::vector<IndexEntry> entries;
    for (const RowChange& change : changes) {
      if (const TableKey* key = change.NewKey(i)) entries.push_back({key->bytes, change.row});
    }
    indexes_[i].Insert(entries);
  }
}

// A changed long value is written before the old one is freed, so that its pointer is another: who
// compares rows sees that the value is not the same.
void TableWriter::Store(RowChange& change) {
  if (change.nothing()) return;
  if (change.after) {
    WriteLongValues(*change.after);
    const Bytes bytes = EncodeRow(*definition_, change.after->stored);
    if (change.before) {
      rows_.Replace(change.row, bytes);
    } else {
      change.row = rows_.Add(bytes);
    }
  } else {
    rows_.Delete(change.row);
  }
  FreeLongValues(change);
}

void TableWriter::WriteLongValues(RowSide& side) {
  for (const auto& [position, value] : side.long_values) {
    side.stored[position] = LongValues(position).Write(value);
  }
}

void TableWriter::FreeLongValues(const RowChange& change) {
  if (!change.before) return;
  for (size_t i = 0; i < definition_->columns.size(); ++i) {
    const auto& stored = change.before->stored[i];
    if (!definition_->columns[i].long_value() || !stored) continue;
    if (change.after && change.after->stored[i] == stored) continue;
    LongValues(i).Free(*stored);
  }
}

void TableWriter::Count(const RowChange& change) {
  if (!change.before) ++definition_->row_count;
  // The counter of an old file may be behind its rows.
  if (!change.after && definition_->row_count > 0) --definition_->row_count;
  if (!change.after) return;
  for (size_t i = 0; i < definition_->columns.size(); ++i) {
    const ColumnDefinition& column = definition_->columns[i];
    const Variant& value = change.after->values[i];
    if (!column.autonumber() || column.type != ColumnType::kLong || value.is_null()) continue;
    const auto last = static_cast<int32_t>(definition_->last_autonumber);
    definition_->last_autonumber = static_cast<uint32_t>(std::max(last, value.as<int32_t>()));
  }
}

LongValueWriter& TableWriter::LongValues(size_t position) {
  const uint16_t column = definition_->columns[position].number;
  return long_values_.try_emplace(position, file_, *definition_, column).first->second;
}

void TableWriter::Finish() {
  const Page page = file_.Read(definition_->page());
  Bytes bytes = *page;
  Put(bytes, DefinitionLayout::kRowCountAt, definition_->row_count, sizeof definition_->row_count);
  Put(bytes, DefinitionLayout::kAutonumberAt, definition_->last_autonumber,
      sizeof definition_->last_autonumber);
  if (bytes != *page) file_.Write(definition_->page(), std::move(bytes));
}

}  // namespace ambrelio::jetfile
