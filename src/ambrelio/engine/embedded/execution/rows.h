// The rows of a recordset, read from an open statement as far as they are looked at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "ambrelio/engine/embedded/execution/row_buffer.h"
#include "ambrelio/engine/embedded/execution/statement_cache.h"
#include "ambrelio/engine/embedded/storage/open_reads.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// Which rows there are is certain from the opening on, however late they are read: the statement
// keeps its moment of the file, and whoever would disturb it settles it first.
//
// An error in reading on belongs to the row that it befell, and is raised whenever that row, or one
// behind it, is asked for.
class Rows : public OpenRead {
 public:
  // Whether there is a row at the place, counted from 0.
  bool Has(int64_t place);
  int64_t Count();
  // The last row of a set that is not empty: its place, or nothing when it was found without
  // counting.
  std::optional<int64_t> FindLast();

  // One that Has or FindLast has found.
  virtual void MakeCurrent(std::optional<int64_t> place) = 0;
  // Of the current row.
  virtual Variant Value(size_t column) const = 0;

  // Whether more may come.
  bool open() const { return open_; }
  void Settle() noexcept override;
  void Abandon() noexcept override;

 protected:
  // The storage is asked nothing once the rows are abandoned.
  Rows(Storage& storage, Lease lease, std::vector<Variant> literals);

  virtual size_t Known() const = 0;
  virtual void Append(const StorageStatement& statement) = 0;
  virtual void KeepLast(const StorageStatement& statement) = 0;

  Storage& storage_;
  std::optional<Lease> lease_;  // as long as it is of use

 private:
  void ReadOn() noexcept;
  void ReadLast();
  void Finish() noexcept;

  std::vector<Variant> literals_;
  bool open_ = true;
  bool last_kept_ = false;
  std::exception_ptr error_;
};

// Rows that stay as they were at the opening.
std::shared_ptr<Rows> ReadSnapshot(Storage& storage, Lease lease, std::vector<Variant> literals);
// Rows known by their ids, whose values are read when they become current; 3167 for the values of
// one that is gone by then.
std::shared_ptr<Rows> ReadDynaset(Storage& storage, Lease lease, std::vector<Variant> literals);

}  // namespace ambrelio::embedded
