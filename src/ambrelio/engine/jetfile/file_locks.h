// Who has a shared file open, who reads it and who writes it: locks on two files beside it.
//
// `<name>-lock` tells who is there. Everyone holds it kShared, who has the file alone kExclusive,
// and whose turn it is to write kReserved. `<name>-rollback` tells what is done with the pages:
// kShared for a moment in which they stay as they are, kExclusive for a commit. Its first 8 bytes
// count the commits that were begun; the rollback record follows.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "ambrelio/engine/jetfile/disk_file.h"

namespace ambrelio::jetfile {

class FileLocks {
 public:
  static constexpr int64_t kRecordAt = 8;
  static std::string RollbackPath(const std::string& path) { return path + "-rollback"; }

  // Nothing where the files do not exist and cannot be made. Waiting ends after `wait`, here and
  // in what follows. Raises 3045 when someone has the file alone, or, for `alone`, at all; 3051
  // when the files cannot be opened.
  static std::unique_ptr<FileLocks> Open(const std::string& path, bool alone,
                                         std::chrono::milliseconds wait);
  // The last one removes the files, but for a rollback record that is still needed.
  ~FileLocks();
  FileLocks(const FileLocks&) = delete;
  FileLocks& operator=(const FileLocks&) = delete;

  // The file that holds the rollback record.
  DiskFile& rollback() { return *rollback_; }
  bool writable() const { return presence_->writable() && rollback_->writable(); }

  // The beginning and the end of a moment. Raises 3218.
  void Enter();
  void Leave();

  // The turn to write, which one has at a time. Raises 3218.
  void TakeTurn();
  void GiveTurn();
  bool has_turn() const { return has_turn_; }

  // For who has the turn and is within a moment: keeps everyone else from reading, and counts.
  // Raises 3218.
  void BeginOverwriting();
  // Back to the moment.
  void EndOverwriting();
  bool overwriting() const { return overwriting_; }

  uint64_t Count() const;

 private:
  FileLocks(std::string path, bool alone, std::chrono::milliseconds wait)
      : path_(std::move(path)), alone_(alone), wait_(wait) {}

  std::string PresencePath() const { return path_ + "-lock"; }
  bool TryJoin();
  void Remove();

  std::string path_;
  bool alone_;
  std::chrono::milliseconds wait_;
  std::unique_ptr<DiskFile> presence_;
  std::unique_ptr<DiskFile> rollback_;
  bool has_turn_ = false;
  bool overwriting_ = false;
};

}  // namespace ambrelio::jetfile
