// A recordset whose rows can be changed as DAO's can. The engine's own recordsets only read, so
// each change is a statement: what it raises is what an insert, an update or a delete raises.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "ambrelio/dao/database.h"

namespace ambrelio::stand_in {

class EditableRows {
 public:
  // `source` as in dao::Database::OpenRecordset.
  EditableRows(const std::shared_ptr<dao::Database>& database, const std::string& source,
               dao::RecordsetType type);

  bool AtEnd() const { return rows_->AtEnd(); }
  bool AtStart() const { return rows_->AtStart(); }
  // A move drops what was put and not stored.
  void MoveFirst() { Move(&dao::Recordset::MoveFirst); }
  void MoveLast() { Move(&dao::Recordset::MoveLast); }
  void MoveNext() { Move(&dao::Recordset::MoveNext); }
  void MovePrevious() { Move(&dao::Recordset::MovePrevious); }
  void Close() { rows_->Close(); }

  // Begins a new row (a change of the current one, 3021 without one) in place of one begun before.
  // 3251 in a snapshot, 3027 where the rows are not those of one table.
  void AddNew();
  void Edit();
  // Stores the row; 3020 when none was begun. The current row stays the current one. A new row is
  // met when the recordset is opened again.
  void Update();
  void CancelUpdate();  // 3020 as above
  // Deletes the current row, which stays current; reading it raises 3167.
  void Delete();
  int16_t EditMode() const { return static_cast<int16_t>(mode_); }

  dao::Collection<dao::Field>& Fields() { return rows_->Fields(); }
  // The value put last; without one that of the current row, or Null in a new one.
  Variant Value(const dao::Field& field) const;
  void Put(const dao::Field& field, const Variant& value);  // 3020 as above

 private:
  enum class Mode : int16_t { kNone, kEdit, kAdd };

  std::shared_ptr<dao::Database> Database() const;  // 3420 when it is closed
  void Move(void (dao::Recordset::*move)());
  void Begin(Mode mode);
  void Store();
  void ExpectUpdatable();
  void ExpectBegun() const;
  void Carry(const std::string& statement);
  void ReadCurrentAgain();
  std::string OfCurrentRow() const;  // a where clause

  std::weak_ptr<dao::Database> database_;  // whoever closes it closes it for its rows
  std::string source_;
  std::string table_;  // looked for when a row is to be changed
  bool snapshot_;
  std::unique_ptr<dao::Recordset> rows_;
  Mode mode_ = Mode::kNone;
  std::map<std::string, Variant> put_;  // by the field's name
};

}  // namespace ambrelio::stand_in
