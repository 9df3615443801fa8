#include "ambrelio/engine/embedded/execution/recordset.h"

#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"

namespace ambrelio::embedded {

namespace {

using dao::DaoError;

constexpr const char* kRecordset = "DAO.Recordset";
constexpr const char* kFields = "DAO.Fields";
constexpr const char* kField = "DAO.Field";

// The rows of a set, of which one at a time is current.
class Rows {
 public:
  virtual ~Rows() = default;
  virtual int64_t Count() const = 0;
  virtual void MakeCurrent(int64_t row) = 0;
  // Of the current row.
  virtual Variant Value(size_t column) const = 0;

 protected:
  Rows() = default;
  Rows(const Rows&) = default;
  Rows& operator=(const Rows&) = default;
};

class SnapshotRows : public Rows {
 public:
  explicit SnapshotRows(RowBuffer rows) : rows_(std::move(rows)) {}
  int64_t Count() const override { return static_cast<int64_t>(rows_.Count()); }
  void MakeCurrent(int64_t row) override { current_ = static_cast<size_t>(row); }
  Variant Value(size_t column) const override { return rows_.Value(current_, column); }

 private:
  RowBuffer rows_;
  size_t current_ = 0;
};

class DynasetRows : public Rows {
 public:
  DynasetRows(std::vector<int64_t> row_ids, Lease lease)
      : row_ids_(std::move(row_ids)), lease_(std::move(lease)), current_(lease_->columns) {}
  int64_t Count() const override { return static_cast<int64_t>(row_ids_.size()); }

  void MakeCurrent(int64_t row) override {
    current_.Clear();
    StorageStatement& statement = *lease_->row;
    statement.Bind(lease_->row_parameter, row_ids_[static_cast<size_t>(row)]);
    if (statement.Step()) current_.Append(statement);
    // Lets go of the storage but keeps the bindings.
    sqlite3_reset(statement.raw());
  }

  Variant Value(size_t column) const override {
    if (current_.Count() == 0) dao::Raise(DaoError::kRecordDeleted, kRecordset);
    return current_.Value(0, column);
  }

 private:
  std::vector<int64_t> row_ids_;
  Lease lease_;
  RowBuffer current_;
};

// What a recordset and its fields share; a field can outlive its recordset.
class State {
 public:
  State(std::unique_ptr<Rows> rows, std::shared_ptr<const Columns> columns, Liveness alive)
      : rows_(std::move(rows)), columns_(std::move(columns)), alive_(std::move(alive)) {
    if (rows_->Count() > 0) rows_->MakeCurrent(0);
  }

  void RequireOpen(const char* source) const {
    if (!rows_ || !*alive_) dao::Raise(DaoError::kObjectClosed, source);
  }

  bool AtEnd() const { return place_ == rows_->Count(); }
  bool AtStart() const { return place_ < 0 || rows_->Count() == 0; }

  // To the row of that place, or to one of the ends.
  void Move(int64_t place) {
    place_ = place;
    if (!AtEnd() && !AtStart()) rows_->MakeCurrent(place_);
  }
  int64_t place() const { return place_; }
  int64_t count() const { return rows_->Count(); }

  Variant Value(size_t column) const {
    RequireOpen(kField);
    if (AtEnd() || AtStart()) dao::Raise(DaoError::kNoCurrentRecord, kField);
    return rows_->Value(column);
  }

  const Columns& columns() const { return *columns_; }
  void Close() { rows_.reset(); }

 private:
  std::unique_ptr<Rows> rows_;  // null once closed
  std::shared_ptr<const Columns> columns_;
  Liveness alive_;
  int64_t place_ = 0;  // -1 before the first row, the number of rows behind the last
};

class RecordsetField : public dao::Field {
 public:
  RecordsetField(std::shared_ptr<const State> state, size_t column)
      : state_(std::move(state)), column_(column) {}

  std::string Name() const override { return Column().name; }
  dao::FieldType Type() const override { return FieldTypeOf(Column().type); }
  int32_t Size() const override { return Column().size; }
  int16_t OrdinalPosition() const override { return static_cast<int16_t>(column_); }
  int32_t Attributes() const override {
    return IsText(Column().type) ? dao::kVariableField : dao::kFixedField;
  }
  bool Required() const override { return false; }
  bool AllowZeroLength() const override { return IsText(Column().type); }
  std::string DefaultValue() const override { return {}; }
  Variant Value() const override { return state_->Value(column_); }

  void SetName(const std::string& /*unused*/) override { Fixed(); }
  void SetOrdinalPosition(int16_t /*unused*/) override { Fixed(); }
  void SetAttributes(int32_t /*unused*/) override { Fixed(); }
  void SetRequired(bool /*unused*/) override { Fixed(); }
  void SetAllowZeroLength(bool /*unused*/) override { Fixed(); }
  void SetDefaultValue(const std::string& /*unused*/) override { Fixed(); }

 private:
  const bound::Column& Column() const { return state_->columns()[column_]; }
  [[noreturn]] static void Fixed() { dao::Raise(DaoError::kFixedAfterAppend, kField); }

  std::shared_ptr<const State> state_;
  size_t column_;
};

// The fields are made when they are asked for.
class RecordsetFields : public dao::Collection<dao::Field> {
 public:
  explicit RecordsetFields(std::shared_ptr<const State> state) : state_(std::move(state)) {}

  int Count() const override {
    state_->RequireOpen(kFields);
    return static_cast<int>(state_->columns().size());
  }

  std::shared_ptr<dao::Field> Item(int index) const override {
    if (index < 0 || index >= Count()) {
      dao::Raise(DaoError::kNotInCollection, kFields, std::to_string(index));
    }
    return At(static_cast<size_t>(index));
  }

  std::shared_ptr<dao::Field> Item(std::string_view name) const override {
    state_->RequireOpen(kFields);
    const Columns& columns = state_->columns();
    for (size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].name == name) return At(i);
    }
    for (size_t i = 0; i < columns.size(); ++i) {
      if (SameName(columns[i].name, name)) return At(i);
    }
    dao::Raise(DaoError::kNotInCollection, kFields, std::string(name));
  }

  void Append(const std::shared_ptr<dao::Field>& /*unused*/) override {
    dao::Raise(DaoError::kInvalidOperation, kFields);
  }
  void Delete(std::string_view /*unused*/) override {
    dao::Raise(DaoError::kInvalidOperation, kFields);
  }
  void Refresh() override { state_->RequireOpen(kFields); }

 private:
  std::shared_ptr<dao::Field> At(size_t column) const {
    fields_.resize(state_->columns().size());
    if (!fields_[column]) fields_[column] = std::make_shared<RecordsetField>(state_, column);
    return fields_[column];
  }

  std::shared_ptr<const State> state_;
  mutable std::vector<std::shared_ptr<dao::Field>> fields_;
};

class EmbeddedRecordset : public dao::Recordset {
 public:
  explicit EmbeddedRecordset(std::shared_ptr<State> state)
      : state_(std::move(state)), fields_(state_) {}
  // A field that is still held shall not hold the rows.
  ~EmbeddedRecordset() override { state_->Close(); }
  EmbeddedRecordset(const EmbeddedRecordset&) = delete;
  EmbeddedRecordset& operator=(const EmbeddedRecordset&) = delete;

  bool AtEnd() const override { return Open().AtEnd(); }
  bool AtStart() const override { return Open().AtStart(); }

  void MoveFirst() override { NotEmpty().Move(0); }
  void MoveLast() override {
    State& state = NotEmpty();
    state.Move(state.count() - 1);
  }
  void MoveNext() override {
    State& state = NotEmpty();
    if (state.AtEnd()) dao::Raise(DaoError::kNoCurrentRecord, kRecordset);
    state.Move(state.place() + 1);
  }
  void MovePrevious() override {
    State& state = NotEmpty();
    if (state.AtStart()) dao::Raise(DaoError::kNoCurrentRecord, kRecordset);
    state.Move(state.place() - 1);
  }

  dao::Collection<dao::Field>& Fields() override {
    Open();
    return fields_;
  }

  void Close() override {
    Open();
    state_->Close();
  }

 private:
  State& Open() const {
    state_->RequireOpen(kRecordset);
    return *state_;
  }
  State& NotEmpty() const {
    State& state = Open();
    if (state.count() == 0) dao::Raise(DaoError::kNoCurrentRecord, kRecordset);
    return state;
  }

  std::shared_ptr<State> state_;
  RecordsetFields fields_;
};

std::unique_ptr<dao::Recordset> Make(std::unique_ptr<Rows> rows,
                                     std::shared_ptr<const Columns> columns, Liveness alive) {
  return std::make_unique<EmbeddedRecordset>(
      std::make_shared<State>(std::move(rows), std::move(columns), std::move(alive)));
}

}  // namespace

std::unique_ptr<dao::Recordset> OpenSnapshot(RowBuffer rows, std::shared_ptr<const Columns> columns,
                                             Liveness alive) {
  return Make(std::make_unique<SnapshotRows>(std::move(rows)), std::move(columns),
              std::move(alive));
}

std::unique_ptr<dao::Recordset> OpenDynaset(std::vector<int64_t> row_ids, Lease lease,
                                            Liveness alive) {
  auto columns = lease->columns;
  return Make(std::make_unique<DynasetRows>(std::move(row_ids), std::move(lease)),
              std::move(columns), std::move(alive));
}

}  // namespace ambrelio::embedded
