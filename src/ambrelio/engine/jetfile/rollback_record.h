// What a commit overwrites, kept in a file beside the data until the commit is on the disk.
//
// The record is valid when it is complete, and void when its first bytes were overwritten. It holds
// the old bytes of every page that the commit overwrites and a check value of the new ones, so that
// whoever finds it knows whether the commit is there as a whole, and else can take it back. Each
// record stands in the place of the one before: when a new one is on the disk, the older cannot
// come back, and no page is touched before that.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <vector>

#include "ambrelio/engine/jetfile/disk_file.h"
#include "ambrelio/engine/jetfile/page_file.h"

namespace ambrelio::jetfile {

class RollbackRecord {
 public:
  // Of the Jet 4 file `data`, in `file` from `place` on. Both must outlive it.
  RollbackRecord(DiskFile& file, int64_t place, DiskFile& data)
      : file_(file), place_(place), data_(data) {}

  // Whether there is the beginning of one that was not made void.
  static bool Begins(const DiskFile& file, int64_t place);

  // Keeps what the data has in the places of `pages`, page 0 among them, durably.
  void Write(const std::map<uint32_t, Page>& pages);
  // Makes the data what it was before the commit that was written last, durably, and the record
  // void.
  void TakeBack();
  // The same for a commit that was found: one that is there as a whole stays, and so does a file
  // that another program has changed since. Synchronises what stays as well, for whoever wrote it
  // may have died before that.
  void Settle();
  void MakeVoid();
  // The pages of the record that was written last, void or not; nothing unless it is complete.
  std::optional<std::set<uint32_t>> LastPages() const;

 private:
  struct Entry {
    uint32_t page;
    uint64_t new_check;
    int64_t old_at;  // where its old bytes stand in the file; 0 for a page that was appended
  };
  struct Contents {
    uint32_t page_count;  // of the data before the commit
    std::vector<Entry> entries;
  };

  // Of a record that is valid but for its first bytes, whatever they are.
  std::optional<Contents> Load() const;
  bool IsCommitted(const Contents& contents) const;
  bool IsOfThisData(const Contents& contents) const;
  void Restore(const Contents& contents);
  Bytes DataPage(uint32_t number) const;

  DiskFile& file_;
  int64_t place_;
  DiskFile& data_;
  bool name_is_durable_ = false;
  bool is_durable_ = false;  // what was written last
};

// The value that follows `entry` as a user's entry of the commit table.
uint16_t NextCommit(uint16_t entry);

}  // namespace ambrelio::jetfile
