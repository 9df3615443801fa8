#include "editable_rows.h"

#include <utility>
#include <vector>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/host/sql_literal.h"

namespace ambrelio::stand_in {
namespace {

using dao::DaoError;

constexpr auto kSource = "DAO.Recordset";

std::shared_ptr<dao::TableDef> FindTable(dao::Database& database, const std::string& name) {
  try {
    return database.TableDefs().Item(name);
  } catch (const AutomationError&) {
    return nullptr;
  }
}

// The one table whose rows `source` gives, "" if there is none.
std::string TableOf(dao::Database& database, const std::string& source) {
  if (FindTable(database, source) != nullptr) return source;
  try {
    const auto query = embedded::sql::ParseQuery(source);
    const auto* select = query->select.get();
    if (select == nullptr || select->from.size() != 1 || select->distinct ||
        !select->group_by.empty()) {
      return "";
    }
    const std::string& name = select->from[0].name;  // "" of a join and of a query in brackets
    return FindTable(database, name) == nullptr ? "" : name;
  } catch (const AutomationError&) {
    return "";  // the name of a stored query
  }
}

std::string Bracketed(const std::string& name) { return "[" + name + "]"; }

// To the last bit: a date among the literals ends with its seconds.
std::string Literal(const Variant& value) {
  if (!value.is_date()) return host::SqlLiteral(value);
  return "CDate(" + host::SqlLiteral(value.as<OleDate>().days()) + ")";
}

}  // namespace

EditableRows::EditableRows(const std::shared_ptr<dao::Database>& database,
                           const std::string& source, dao::RecordsetType type)
    : database_(database),
      source_(source),
      snapshot_(type == dao::RecordsetType::kSnapshot),
      rows_(database->OpenRecordset(source, type)) {}

std::shared_ptr<dao::Database> EditableRows::Database() const {
  auto database = database_.lock();
  if (database == nullptr) dao::Raise(DaoError::kObjectClosed, kSource);
  return database;
}

void EditableRows::Begin(Mode mode) {
  put_.clear();
  mode_ = mode;
}

void EditableRows::Move(void (dao::Recordset::*move)()) {
  Begin(Mode::kNone);
  (*rows_.*move)();
}

void EditableRows::ExpectUpdatable() {
  if (snapshot_) dao::Raise(DaoError::kNotSupported, kSource);
  if (table_.empty()) table_ = TableOf(*Database(), source_);
  if (table_.empty()) dao::Raise(DaoError::kReadOnly, kSource);
}

void EditableRows::ExpectBegun() const {
  if (mode_ == Mode::kNone) {
    throw AutomationError(3020, kSource, "Update or CancelUpdate without AddNew or Edit.");
  }
}

void EditableRows::AddNew() {
  ExpectUpdatable();
  Begin(Mode::kAdd);
}

void EditableRows::Edit() {
  ExpectUpdatable();
  OfCurrentRow();  // raises what is wrong with it now, and not in Update
  Begin(Mode::kEdit);
}

void EditableRows::CancelUpdate() {
  ExpectBegun();
  Begin(Mode::kNone);
}

void EditableRows::Update() {
  ExpectBegun();
  Store();
  Begin(Mode::kNone);
}

void EditableRows::Store() {
  if (mode_ == Mode::kEdit) {
    std::string set;
    for (const auto& [name, value] : put_) {
      set += (set.empty() ? "" : ", ") + Bracketed(name) + " = " + Literal(value);
    }
    if (!set.empty()) {
      Carry("update " + Bracketed(table_) + " set " + set + OfCurrentRow());
      ReadCurrentAgain();
    }
    return;
  }
  // A row of nothing but what the table itself puts into it.
  if (put_.empty()) put_[Fields().Item(0)->Name()] = Variant::Null();
  std::string names;
  std::string values;
  for (const auto& [name, value] : put_) {
    names += (names.empty() ? "" : ", ") + Bracketed(name);
    values += (values.empty() ? "" : ", ") + Literal(value);
  }
  Carry("insert into " + Bracketed(table_) + " (" + names + ") values (" + values + ")");
}

void EditableRows::Delete() {
  ExpectUpdatable();
  Begin(Mode::kNone);
  Carry("delete from " + Bracketed(table_) + OfCurrentRow());
  ReadCurrentAgain();
}

void EditableRows::Carry(const std::string& statement) {
  Database()->Execute(statement, dao::kFailOnError);
}

// Beyond the last row there is a place to come back from.
void EditableRows::ReadCurrentAgain() {
  rows_->MoveNext();
  rows_->MovePrevious();
}

// By its primary key; in a table without one by all that is known of it.
std::string EditableRows::OfCurrentRow() const {
  std::vector<std::string> known_by;
  const auto table = FindTable(*Database(), table_);
  auto& indexes = table->Indexes();
  for (int i = 0; i < indexes.Count(); ++i) {
    const auto index = indexes.Item(i);
    if (!index->Primary()) continue;
    for (int f = 0; f < index->Fields().Count(); ++f) {
      known_by.push_back(index->Fields().Item(f)->Name());
    }
  }
  if (known_by.empty()) {
    for (int f = 0; f < rows_->Fields().Count(); ++f) {
      known_by.push_back(rows_->Fields().Item(f)->Name());
    }
  }
  std::string where;
  for (const std::string& name : known_by) {
    const Variant value = rows_->Value(name);
    where += (where.empty() ? " where " : " and ") + Bracketed(name) +
             (value.is_null() ? " is null" : " = " + Literal(value));
  }
  return where;
}

Variant EditableRows::Value(const dao::Field& field) const {
  const auto put = put_.find(field.Name());
  if (put != put_.end()) return put->second;
  return mode_ == Mode::kAdd ? Variant::Null() : field.Value();
}

void EditableRows::Put(const dao::Field& field, const Variant& value) {
  ExpectBegun();
  put_[field.Name()] = value;
}

}  // namespace ambrelio::stand_in
