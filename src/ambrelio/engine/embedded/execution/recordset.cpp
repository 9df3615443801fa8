#include "ambrelio/engine/embedded/execution/recordset.h"

#include <optional>
#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/execution/rows.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"

namespace ambrelio::embedded {

namespace {

using dao::DaoError;

constexpr const char* kRecordset = dao::source::kRecordset;
constexpr const char* kFields = dao::source::kFields;
constexpr const char* kField = dao::source::kField;

// What a recordset and its fields share; a field can outlive its recordset.
class State {
 public:
  State(std::shared_ptr<Rows> rows, std::shared_ptr<const Columns> columns, Liveness alive)
      : rows_(std::move(rows)), columns_(std::move(columns)), alive_(std::move(alive)) {
    empty_ = !rows_->Has(0);
    GoTo(0);
  }

  void RequireOpen(const char* source) const {
    if (!rows_ || !*alive_) dao::Raise(DaoError::kObjectClosed, source);
  }

  bool AtEnd() const { return at_ == At::kEnd; }
  bool AtStart() const { return at_ == At::kStart || empty_; }
  bool empty() const { return empty_; }

  // To the row of that place, or behind the last one.
  void GoTo(int64_t place) {
    if (rows_->Has(place)) {
      MakeCurrent(place);
    } else {
      at_ = At::kEnd;
    }
  }
  void GoToLast() { MakeCurrent(rows_->FindLast()); }
  // Not from the end.
  void GoOn() {
    if (at_ == At::kStart) return GoTo(0);
    if (place_) return GoTo(*place_ + 1);
    at_ = At::kEnd;
  }
  // Not from the start.
  void GoBack() {
    if (at_ == At::kEnd) return GoToLast();
    const int64_t place = place_ ? *place_ : rows_->Count() - 1;
    if (place > 0) {
      GoTo(place - 1);
    } else {
      at_ = At::kStart;
    }
  }

  Variant Value(size_t column) const {
    RequireOpen(kField);
    if (at_ != At::kRow) dao::Raise(DaoError::kNoCurrentRecord, kField);
    return rows_->Value(column);
  }

  const Columns& columns() const { return *columns_; }

  // The place of a column; 3265 when there is none.
  size_t Find(int index) const {
    RequireOpen(kFields);
    if (index < 0 || static_cast<size_t>(index) >= columns_->size()) {
      dao::Raise(DaoError::kNotInCollection, kFields, std::to_string(index));
    }
    return static_cast<size_t>(index);
  }
  size_t Find(std::string_view name) const {
    RequireOpen(kFields);
    for (size_t i = 0; i < columns_->size(); ++i) {
      if ((*columns_)[i].name == name) return i;
    }
    for (size_t i = 0; i < columns_->size(); ++i) {
      if (SameName((*columns_)[i].name, name)) return i;
    }
    dao::Raise(DaoError::kNotInCollection, kFields, std::string(name));
  }

  void Close() { rows_.reset(); }

 private:
  enum class At : uint8_t { kStart, kRow, kEnd };

  void MakeCurrent(std::optional<int64_t> place) {
    at_ = At::kRow;
    place_ = place;
    rows_->MakeCurrent(place);
  }

  std::shared_ptr<Rows> rows_;  // null once closed
  std::shared_ptr<const Columns> columns_;
  Liveness alive_;
  bool empty_ = false;
  At at_ = At::kStart;
  std::optional<int64_t>
      place_;  // of the current row; nothing for the last one of an unknown count
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

  std::shared_ptr<dao::Field> Item(int index) const override { return At(state_->Find(index)); }
  std::shared_ptr<dao::Field> Item(std::string_view name) const override {
    return At(state_->Find(name));
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

  void MoveFirst() override { NotEmpty().GoTo(0); }
  void MoveLast() override { NotEmpty().GoToLast(); }
  void MoveNext() override {
    State& state = NotEmpty();
    if (state.AtEnd()) dao::Raise(DaoError::kNoCurrentRecord, kRecordset);
    state.GoOn();
  }
  void MovePrevious() override {
    State& state = NotEmpty();
    if (state.AtStart()) dao::Raise(DaoError::kNoCurrentRecord, kRecordset);
    state.GoBack();
  }

  dao::Collection<dao::Field>& Fields() override {
    Open();
    return fields_;
  }

  Variant Value(std::string_view field) override { return Open().Value(state_->Find(field)); }
  Variant Value(int field) override { return Open().Value(state_->Find(field)); }

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
    if (state.empty()) dao::Raise(DaoError::kNoCurrentRecord, kRecordset);
    return state;
  }

  std::shared_ptr<State> state_;
  RecordsetFields fields_;
};

}  // namespace

std::unique_ptr<dao::Recordset> OpenRows(Storage& storage, Lease lease,
                                         std::vector<Variant> literals, Liveness alive) {
  auto columns = lease->columns;
  const auto read = lease->row ? ReadDynaset : ReadSnapshot;
  const std::shared_ptr<Rows> rows = read(storage, std::move(lease), std::move(literals));
  auto state = std::make_shared<State>(rows, std::move(columns), std::move(alive));
  if (rows->open()) storage.Register(rows);
  return std::make_unique<EmbeddedRecordset>(std::move(state));
}

}  // namespace ambrelio::embedded
