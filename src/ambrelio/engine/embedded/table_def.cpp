#include "ambrelio/engine/embedded/table_def.h"

#include <algorithm>
#include <utility>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {

using dao::DaoError;

TableDef::TableDef(std::shared_ptr<Connection> connection, std::string name)
    : connection_(std::move(connection)), draft_name_(std::move(name)) {}

TableDef::TableDef(std::shared_ptr<Connection> connection, int64_t table)
    : connection_(std::move(connection)), table_(table) {}

std::string TableDef::Name() const {
  connection_->CheckOpen();
  return stored() ? Info().name : draft_name_;
}

void TableDef::SetName(const std::string& name) {
  connection_->CheckOpen();
  if (stored()) {
    connection_->catalogue().RenameTable(Name(), name);
  } else {
    draft_name_ = name;
  }
}

dao::Collection<dao::Field>& TableDef::Fields() {
  connection_->CheckOpen();
  return fields_;
}

dao::Collection<dao::Index>& TableDef::Indexes() {
  connection_->CheckOpen();
  return indexes_;
}

std::shared_ptr<dao::Field> TableDef::CreateField(const std::string& name, dao::FieldType type,
                                                  int32_t size) {
  constexpr int32_t kUsualTextSize = 50;
  connection_->CheckOpen();
  FieldInfo info;
  info.name = name;
  info.type = type;
  if (type == dao::FieldType::kText) info.size = size == 0 ? kUsualTextSize : size;
  return std::make_shared<Field>(connection_, std::move(info));
}

std::shared_ptr<dao::Index> TableDef::CreateIndex(const std::string& name) {
  connection_->CheckOpen();
  return std::make_shared<Index>(connection_, name);
}

const TableInfo& TableDef::Info() const {
  const TableInfo* const table = connection_->catalogue().Known().FindTable(table_);
  if (table == nullptr) dao::Raise(DaoError::kObjectClosed, dao::source::kTableDef);
  return *table;
}

void TableDef::Store(const std::shared_ptr<Connection>& connection) {
  TableInfo info;
  info.name = draft_name_;
  for (const auto& field : fields_.drafts()) info.fields.push_back(field->Info());
  for (const auto& index : indexes_.drafts()) info.indexes.push_back(index->Definition());
  connection->catalogue().CreateTable(info);
  connection_ = connection;
  table_ = connection->catalogue().Known().FindTable(draft_name_)->id;
  fields_.BecomeStored();
  indexes_.BecomeStored();
}

int TableFields::Count() const {
  table_.connection()->CheckOpen();
  return static_cast<int>(table_.stored() ? table_.Info().fields.size() : drafts_.size());
}

void TableFields::Append(const std::shared_ptr<dao::Field>& item) {
  const auto field = Owned<Field>(item);
  if (table_.stored()) {
    CatalogueStore& catalogue = table_.connection()->catalogue();
    catalogue.AddField(table_.Name(), field->Info());
    const TableInfo& info = table_.Info();
    field->BecomeStored(table_.connection(), info.id, info.FindField(field->Name())->id);
    return;
  }
  CheckFree(field->Name());
  int16_t position = field->Info().position;
  if (position == kNextPosition) {
    for (const auto& other : drafts_) position = std::max(position, other->OrdinalPosition());
    ++position;
  }
  field->Keep(position);
  drafts_.push_back(field);
}

void TableFields::Delete(std::string_view name) {
  const int place = PlaceOf(name);
  if (table_.stored()) {
    table_.connection()->catalogue().DropField(table_.Name(), name);
    return;
  }
  drafts_[static_cast<size_t>(place)]->LetGo();
  drafts_.erase(drafts_.begin() + place);
}

void TableFields::BecomeStored() {
  const TableInfo& info = table_.Info();
  for (const auto& field : std::exchange(drafts_, {})) {
    field->BecomeStored(table_.connection(), info.id, info.FindField(field->Name())->id);
  }
}

std::string TableFields::NameAt(int place) const {
  return table_.stored() ? InfoAt(table_.Info().fields, place).name
                         : InfoAt(drafts_, place)->Name();
}

void TableFields::Refresh() {
  if (table_.stored()) table_.connection()->catalogue().Current();
}

std::shared_ptr<dao::Field> TableFields::At(int place) const {
  if (!table_.stored()) return InfoAt(drafts_, place);
  const TableInfo& info = table_.Info();
  return std::make_shared<Field>(table_.connection(), info.id, InfoAt(info.fields, place).id);
}

int TableIndexes::Count() const {
  table_.connection()->CheckOpen();
  return static_cast<int>(table_.stored() ? table_.Info().indexes.size() : drafts_.size());
}

void TableIndexes::Append(const std::shared_ptr<dao::Index>& item) {
  const auto index = Owned<Index>(item);
  if (table_.stored()) {
    CatalogueStore& catalogue = table_.connection()->catalogue();
    catalogue.CreateIndex(table_.Name(), index->Definition());
    const TableInfo& info = table_.Info();
    index->BecomeStored(table_.connection(), info.id, info.FindIndex(index->Name())->id);
    return;
  }
  CheckFree(index->Name());
  index->Keep();
  drafts_.push_back(index);
}

void TableIndexes::Delete(std::string_view name) {
  const int place = PlaceOf(name);
  if (table_.stored()) {
    table_.connection()->catalogue().DropIndex(table_.Name(), name);
    return;
  }
  drafts_[static_cast<size_t>(place)]->LetGo();
  drafts_.erase(drafts_.begin() + place);
}

void TableIndexes::BecomeStored() {
  const TableInfo& info = table_.Info();
  for (const auto& index : std::exchange(drafts_, {})) {
    index->BecomeStored(table_.connection(), info.id, info.FindIndex(index->Name())->id);
  }
}

std::string TableIndexes::NameAt(int place) const {
  return table_.stored() ? InfoAt(table_.Info().indexes, place).name
                         : InfoAt(drafts_, place)->Name();
}

void TableIndexes::Refresh() {
  if (table_.stored()) table_.connection()->catalogue().Current();
}

std::shared_ptr<dao::Index> TableIndexes::At(int place) const {
  if (!table_.stored()) return InfoAt(drafts_, place);
  const TableInfo& info = table_.Info();
  return std::make_shared<Index>(table_.connection(), info.id, InfoAt(info.indexes, place).id);
}

int TableDefs::Count() const {
  return static_cast<int>(connection_->catalogue().Known().tables.size());
}

void TableDefs::Append(const std::shared_ptr<dao::TableDef>& item) {
  connection_->CheckOpen();
  Owned<TableDef>(item)->Store(connection_);
}

void TableDefs::Delete(std::string_view name) { connection_->catalogue().DropTable(name); }

void TableDefs::Refresh() { connection_->catalogue().Current(); }

std::string TableDefs::NameAt(int place) const {
  return InfoAt(connection_->catalogue().Known().tables, place).name;
}

std::shared_ptr<dao::TableDef> TableDefs::At(int place) const {
  const TableInfo& table = InfoAt(connection_->catalogue().Known().tables, place);
  return std::make_shared<TableDef>(connection_, table.id);
}

}  // namespace ambrelio::embedded
