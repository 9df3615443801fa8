#include "ambrelio/engine/embedded/index.h"

#include <utility>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {

using dao::DaoError;

int IndexFields::Count() const {
  const IndexInfo& info = index_.Info();
  return static_cast<int>(index_.stored() ? info.columns.size() : drafts_.size());
}

void IndexFields::Append(const std::shared_ptr<dao::Field>& item) {
  if (index_.stored()) dao::Raise(DaoError::kFixedAfterAppend, source(), index_.Name());
  const auto field = Owned<Field>(item);
  CheckFree(field->Name());
  field->Keep(static_cast<int16_t>(drafts_.size()));
  drafts_.push_back(field);
}

void IndexFields::BecomeStored() {
  for (const auto& field : std::exchange(drafts_, {})) field->KeepInIndex();
}

void IndexFields::Delete(std::string_view name) {
  if (index_.stored()) dao::Raise(DaoError::kFixedAfterAppend, source(), index_.Name());
  const auto place = drafts_.begin() + PlaceOf(name);
  (*place)->LetGo();
  drafts_.erase(place);
}

std::string IndexFields::NameAt(int place) const {
  return index_.stored() ? InfoAt(index_.Info().columns, place).name
                         : InfoAt(drafts_, place)->Name();
}

std::shared_ptr<dao::Field> IndexFields::At(int place) const {
  if (!index_.stored()) return InfoAt(drafts_, place);
  const TableInfo& table = index_.Table();
  const IndexColumn& column = InfoAt(index_.InfoIn(table).columns, place);
  FieldInfo info = *table.FindField(column.name);
  info.position = static_cast<int16_t>(place);
  info.attributes = column.descending ? dao::kDescending : 0;
  auto field = std::make_shared<Field>(index_.connection(), std::move(info));
  field->KeepInIndex();
  return field;
}

Index::Index(std::shared_ptr<Connection> connection, const std::string& name)
    : connection_(std::move(connection)) {
  draft_.name = name;
}

Index::Index(std::shared_ptr<Connection> connection, int64_t table, int64_t index)
    : connection_(std::move(connection)), table_(table), index_(index) {}

void Index::SetPrimary(bool primary) {
  IndexInfo& draft = Draft("Primary");
  draft.primary = primary;
  if (primary) draft.unique = draft.required = true;
}

dao::Collection<dao::Field>& Index::Fields() {
  connection_->CheckOpen();
  return fields_;
}

std::shared_ptr<dao::Field> Index::CreateField(const std::string& name) {
  connection_->CheckOpen();
  FieldInfo info;
  info.name = name;
  return std::make_shared<Field>(connection_, std::move(info));
}

const TableInfo& Index::Table() const {
  const TableInfo* const table = connection_->catalogue().Known().FindTable(table_);
  if (table == nullptr) dao::Raise(DaoError::kObjectClosed, dao::source::kIndex);
  return *table;
}

const IndexInfo& Index::Info() const {
  connection_->CheckOpen();
  if (!stored()) return draft_;
  return InfoIn(Table());
}

const IndexInfo& Index::InfoIn(const TableInfo& table) const {
  const IndexInfo* const index = table.FindIndex(index_);
  if (index == nullptr) dao::Raise(DaoError::kObjectClosed, dao::source::kIndex);
  return *index;
}

IndexInfo Index::Definition() const {
  IndexInfo definition = Info();
  for (const auto& field : fields_.drafts()) {
    const FieldInfo& info = field->Info();
    definition.columns.push_back({info.name, (info.attributes & dao::kDescending) != 0});
  }
  return definition;
}

void Index::BecomeStored(std::shared_ptr<Connection> connection, int64_t table, int64_t index) {
  connection_ = std::move(connection);
  table_ = table;
  index_ = index;
  fields_.BecomeStored();
}

IndexInfo& Index::Draft(const char* property) {
  Info();  // 3420
  if (stored()) dao::Raise(DaoError::kFixedAfterAppend, dao::source::kIndex, property);
  return draft_;
}

}  // namespace ambrelio::embedded
