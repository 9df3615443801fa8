// The file of another format behind a storage that is kept in memory: its tables are copied into
// the storage when statements first need them, and what a transaction changes goes back into the
// file when it commits.
#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace ambrelio::embedded {

// The tables that a statement reads, those that it writes included.
struct TablesTouched {
  std::set<std::string> read;
  std::set<std::string> written;
};

class Backing {
 public:
  virtual ~Backing() = default;
  Backing(const Backing&) = delete;
  Backing& operator=(const Backing&) = delete;

  // Another number once somebody else has committed to the file.
  virtual uint32_t StateOfFile() = 0;
  // Brings the storage to the state of the file. Not while a transaction is open in the storage.
  virtual void Refresh() = 0;
  // Copies the tables that are not there yet, and raises an error for one that cannot be written
  // but shall be.
  virtual void Need(const TablesTouched& tables) = 0;

  // Takes the turn to write, for a transaction of the storage that is about to begin, and
  // refreshes. 3218 when another process keeps it for longer than two seconds.
  virtual void Lock() = 0;
  // Puts everything that the transaction has changed into the file, at one stroke and to stay.
  virtual void Save() = 0;
  // From now on Save may leave waiting for the disk to SaveAll, which the end of a stretch calls.
  // Until then nobody else sees what was saved. SaveAll raises what the disk does (3026, 3043),
  // with nothing of the stretch in the file.
  virtual void PutOffSaving() = 0;
  virtual void SaveAll() = 0;
  // The storage has rolled back, all of the transaction or a level of it.
  virtual void RolledBack() = 0;
  // The transaction is over, whichever way.
  virtual void Unlock() noexcept = 0;

 protected:
  Backing() = default;
};

}  // namespace ambrelio::embedded
