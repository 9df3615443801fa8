#include "ambrelio/engine/embedded/execution/rows.h"

#include <limits>
#include <utility>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {

Rows::Rows(Storage& storage, Lease lease, std::vector<Variant> literals)
    : storage_(storage), lease_(std::move(lease)), literals_(std::move(literals)) {
  (*lease_)->main.BindAll(literals_);
}

bool Rows::Has(int64_t place) {
  const auto wanted = static_cast<size_t>(place);
  while (open_ && Known() <= wanted) ReadOn();
  if (Known() > wanted) return true;
  if (error_) std::rethrow_exception(error_);
  return false;
}

int64_t Rows::Count() {
  Has(std::numeric_limits<int64_t>::max());
  return static_cast<int64_t>(Known());
}

std::optional<int64_t> Rows::FindLast() {
  if (open_ && !last_kept_ && !(*lease_)->last_sql.empty()) ReadLast();
  const bool counted = !open_ && !error_;
  if (last_kept_ && !counted) return std::nullopt;
  return Count() - 1;
}

void Rows::Settle() noexcept {
  while (open_) ReadOn();
}

void Rows::Abandon() noexcept {
  open_ = false;
  lease_.reset();
}

void Rows::ReadOn() noexcept {
  try {
    StorageStatement& statement = (*lease_)->main;
    if (statement.Step()) return Append(statement);
  } catch (...) {
    error_ = std::current_exception();
  }
  Finish();
}

// The open statement holds the moment of the file: this one sees the same rows.
void Rows::ReadLast() {
  Prepared& prepared = **lease_;
  if (!prepared.last) prepared.last.emplace(storage_.raw(), prepared.last_sql);
  prepared.last->BindAll(literals_);
  if (prepared.last->Step()) {
    KeepLast(*prepared.last);
    last_kept_ = true;
  }
  prepared.last->Reset();
}

void Rows::Finish() noexcept {
  open_ = false;
  if ((*lease_)->row) {
    (*lease_)->main.Reset();
  } else {
    lease_.reset();
  }
}

namespace {

class SnapshotRows final : public Rows {
 public:
  SnapshotRows(Storage& storage, Lease lease, std::vector<Variant> literals)
      : Rows(storage, std::move(lease), std::move(literals)),
        rows_((*lease_)->columns),
        last_((*lease_)->columns) {}

  void MakeCurrent(std::optional<int64_t> place) override { current_ = place; }
  Variant Value(size_t column) const override {
    if (!current_) return last_.Value(0, column);
    return rows_.Value(static_cast<size_t>(*current_), column);
  }

 private:
  size_t Known() const override { return rows_.Count(); }
  void Append(const StorageStatement& statement) override { rows_.Append(statement); }
  void KeepLast(const StorageStatement& statement) override { last_.Append(statement); }

  RowBuffer rows_;
  RowBuffer last_;
  std::optional<int64_t> current_;
};

class DynasetRows final : public Rows {
 public:
  DynasetRows(Storage& storage, Lease lease, std::vector<Variant> literals)
      : Rows(storage, std::move(lease), std::move(literals)), current_((*lease_)->columns) {}

  void MakeCurrent(std::optional<int64_t> place) override {
    storage_.CatchUp();
    current_.Clear();
    if (place && StandsAt(*place)) {
      current_.Append((*lease_)->main, 1);
    } else {
      Read(place ? row_ids_[static_cast<size_t>(*place)] : last_);
    }
  }
  Variant Value(size_t column) const override {
    if (current_.Count() == 0) dao::Raise(dao::DaoError::kRecordDeleted, dao::source::kRecordset);
    return current_.Value(0, column);
  }

 private:
  size_t Known() const override { return row_ids_.size(); }
  void Append(const StorageStatement& statement) override {
    row_ids_.push_back(statement.Integer(0));
  }
  void KeepLast(const StorageStatement& statement) override { last_ = statement.Integer(0); }

  // Whether the open statement holds the values of that row as they are now: nobody has written
  // since it stepped there, or it would not be open.
  bool StandsAt(int64_t place) const {
    return open() && (*lease_)->values_follow && static_cast<size_t>(place) + 1 == row_ids_.size();
  }

  void Read(int64_t id) {
    StorageStatement& statement = *(*lease_)->row;
    statement.Bind((*lease_)->row_parameter, id);
    if (statement.Step()) current_.Append(statement);
    statement.Reset();
  }

  std::vector<int64_t> row_ids_;
  int64_t last_ = 0;
  RowBuffer current_;
};

}  // namespace

std::shared_ptr<Rows> ReadSnapshot(Storage& storage, Lease lease, std::vector<Variant> literals) {
  return std::make_shared<SnapshotRows>(storage, std::move(lease), std::move(literals));
}

std::shared_ptr<Rows> ReadDynaset(Storage& storage, Lease lease, std::vector<Variant> literals) {
  lease->row->BindAll(literals);
  return std::make_shared<DynasetRows>(storage, std::move(lease), std::move(literals));
}

}  // namespace ambrelio::embedded
