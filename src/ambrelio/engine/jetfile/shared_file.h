// A Jet file on a disk, which several processes share: read as others leave it, written whole or
// not at all. Each opening belongs to one thread; a process can have several.
//
// What the pages say may change between two moments. Whoever keeps something that was read asks
// ChangedByOthers when a moment begins.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "ambrelio/engine/jetfile/disk_file.h"
#include "ambrelio/engine/jetfile/file_locks.h"
#include "ambrelio/engine/jetfile/jet_file.h"
#include "ambrelio/engine/jetfile/rollback_record.h"
#include "ambrelio/engine/jetfile/shared_pages.h"

namespace ambrelio::jetfile {

class SharedFile {
 public:
  enum class Access : uint8_t { kShared, kReadOnly, kExclusive, kExclusiveReadOnly };
  // How long a lock of somebody else is waited for.
  static constexpr std::chrono::milliseconds kWait{2000};

  // Puts right what a crash has left. A file of Jet 3, and one that may not be written, is
  // read-only. Raises 3044 and 3024 for a missing folder or file, 3051 when it may not be read,
  // 3343 for a file of another format, 3049 for a damaged one, 3031 for another password, and 3045
  // when somebody has it open exclusively, or, to have it exclusively, at all.
  static std::unique_ptr<SharedFile> Open(const std::string& path, std::string_view password,
                                          Access access, std::chrono::milliseconds wait = kWait);
  ~SharedFile();
  SharedFile(const SharedFile&) = delete;
  SharedFile& operator=(const SharedFile&) = delete;

  // Its pages as they are on the disk, with the changes made through it.
  JetFile& file() { return *file_; }
  const std::string& path() const { return path_; }
  bool read_only() const { return read_only_; }

  // As long as one lives, nobody else's commit changes the pages. Moments nest, also in the turn to
  // write. No moment outlives its file.
  class Moment {
   public:
    Moment(Moment&& other) noexcept : file_(std::exchange(other.file_, nullptr)) {}
    Moment& operator=(Moment&&) = delete;
    ~Moment() {
      if (file_ != nullptr) file_->LeaveMoment();
    }

   private:
    friend SharedFile;
    explicit Moment(SharedFile& file) : file_(&file) { file.EnterMoment(); }

    SharedFile* file_;
  };
  // Raises 3218 when a commit of another lasts too long, 3043 when what a crash has left cannot be
  // put right.
  Moment Read() { return Moment(*this); }
  // Whether anyone else has committed since the last call, or the opening. The header is read anew
  // if so.
  bool ChangedByOthers();
  // The pages that others have written, as far as ChangedByOthers has noticed, since they were
  // forgotten last; nothing when it is not known which.
  const std::optional<std::set<uint32_t>>& PagesOfOthers() const { return pages_of_others_; }
  void ForgetPagesOfOthers() { pages_of_others_.emplace(); }

  // Takes the turn to write, and with it a moment that lasts until Unlock; there must be no changes
  // yet. Not to be called within a moment when others may do so too: each would wait for the other.
  // Raises 3027 for a read-only file, 3218 when another keeps the turn, 3045 when a program of
  // another kind has the file open, 3049 when such a one has left it in the middle of a change.
  void Lock();
  // Gives the turn back; forgets uncommitted changes.
  void Unlock();
  // Puts the changes of file() on the disk: whole and durable, or not at all. The turn is kept, and
  // after a failure the changes are as well. Raises 3218 when somebody's moment does not end, 3045
  // when a program of another kind has the file open or has changed it since Lock, 3026 when the
  // disk is full, 3043 when it fails.
  void Commit();

 private:
  static constexpr size_t kEntryBytes = 2;  // of the commit table

  // What tells one commit from the next.
  struct Stamp {
    uint64_t count = 0;
    Bytes commit_table;
    friend bool operator==(const Stamp&, const Stamp&) = default;
  };

  SharedFile(const std::string& path, const Format& format);
  void OpenLocks(bool alone, std::chrono::milliseconds wait);
  void OpenData();
  void ReadHeader(std::string_view password);
  void PutRight();
  void EnterMoment();
  void LeaveMoment();
  Stamp ReadStamp() const;
  void TakeNotice();
  std::optional<std::set<uint32_t>> PagesBetween(const Stamp& before, const Stamp& after) const;
  std::map<uint32_t, Page> PagesToStore() const;
  void Overwrite(const std::map<uint32_t, Page>& pages);
  void WritePage(uint32_t number, std::span<const uint8_t> page);
  void TakeBack();
  void TryToTakeBack();
  void GiveBack();

  std::string path_;
  std::string full_path_;
  bool read_only_;
  const Format& format_;
  std::unique_ptr<DiskFile> data_;
  std::unique_ptr<FileLocks> locks_;  // none where nobody can write
  std::optional<RollbackRecord> record_;
  SharedPages* pages_ = nullptr;  // below file_
  std::optional<JetFile> file_;
  int moments_ = 0;
  std::optional<Moment> turn_;  // the moment of the turn to write
  Stamp seen_;
  bool changed_by_others_ = false;  // since that was asked for
  std::optional<std::set<uint32_t>> pages_of_others_{std::in_place};
};

}  // namespace ambrelio::jetfile
