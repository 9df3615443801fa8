// What a disk can hold when the power goes: everything that was synchronised, and of the rest any
// part.
//
//   DiskRecord record;                    // before the files are opened, and until they are closed
//   record.Follow(folder);                // from here on
//   ...                                   // work of SQLite's in the folder
//   DiskReplay disk(record);
//   disk.AdvanceTo(moment);               // the power goes behind that many requests
//   disk.WriteImage(other_folder, seed);  // one of the folders that can be found afterwards
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/platform/atomic_file.h"
#include "support/file_number.h"
#include "support/watched_files.h"

namespace ambrelio::test {

// The changes of the files of one folder, in their order.
class DiskRecord {
 public:
  using FileId = size_t;
  struct Step {
    FileRequest::Kind kind;
    std::string name;  // in the folder
    FileId file = 0;
    int64_t place = 0;
    std::string bytes{};
    bool waits = false;
    // Of an opening: SQLite did not make the name, so that what it stands for is on the disk.
    bool found = false;
  };

  // Takes the files of `folder` for durable as they are, and forgets what was recorded. The index
  // of a log is none of them: no power cut leaves it.
  void Follow(const std::string& folder) {
    folder_ = folder;
    steps_.clear();
    ids_.clear();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      if (entry.is_regular_file() && !name.ends_with("-shm")) Open(name, true);
    }
    begin_ = steps_.size();
  }

  // The moment at the beginning, and the present one.
  size_t begin() const { return begin_; }
  size_t now() const { return steps_.size(); }
  const std::vector<Step>& steps() const { return steps_; }

  // Fails each change from the `change`th on (1 is the next) with an error of SQLite's. A disk that
  // is full takes neither bytes nor names, but it synchronises and takes less.
  void FailFrom(int change, int code) {
    countdown_ = change;
    code_ = code;
  }
  // Ends the failing; whether anything has failed.
  bool Mend() {
    code_ = SQLITE_OK;
    return countdown_ <= 0;
  }

 private:
  int Take(const FileRequest& request) {
    const std::filesystem::path path(request.path);
    if (folder_.empty() || path.parent_path() != folder_) return SQLITE_OK;
    const std::string name = path.filename().string();
    if (request.kind == FileRequest::kOpen) {
      Open(name, false);
      return SQLITE_OK;
    }
    const bool grows = request.kind == FileRequest::kWrite;
    if (code_ != SQLITE_OK && (grows || code_ != SQLITE_FULL) && --countdown_ <= 0) return code_;
    const FileId file = Identify(name).first;
    steps_.push_back(
        {request.kind, name, file, request.place, std::string(request.bytes), request.waits});
    if (request.kind == FileRequest::kDelete)
      std::erase_if(ids_, [&](const auto& known) { return known.second == file; });
    return SQLITE_OK;
  }

  // An empty file that nothing is known of has just been made by SQLite, unless it was `there`.
  void Open(const std::string& name, bool there) {
    const auto [file, is_new] = Identify(name);
    const bool known = std::any_of(steps_.begin(), steps_.end(), [&, id = file](const Step& step) {
      return step.file == id && step.name == name;
    });
    if (known) return;
    std::string bytes = ReadWholeFile(Path(name)).value_or("");
    const bool found = there || !is_new || !bytes.empty();
    if (!is_new) bytes.clear();  // another name of a file whose content is known
    steps_.push_back({FileRequest::kOpen, name, file, 0, std::move(bytes), false, found});
  }

  // A file is told by what the system tells it by: it can have several names, and a name several
  // files after each other.
  std::pair<FileId, bool> Identify(const std::string& name) {
    const auto number = FileNumber(Path(name));
    if (!number) return {next_id_++, true};
    const auto [known, is_new] = ids_.try_emplace(*number, next_id_);
    if (is_new) ++next_id_;
    return {known->second, is_new};
  }
  std::string Path(const std::string& name) const {
    return (std::filesystem::path(folder_) / name).string();
  }

  std::string folder_;
  std::vector<Step> steps_;
  size_t begin_ = 0;
  std::map<uint64_t, FileId> ids_;
  FileId next_id_ = 0;
  int countdown_ = 1;
  int code_ = SQLITE_OK;
  WatchedFiles files_{[this](const FileRequest& request) { return Take(request); }};
};

// How much of what could be tried is: the variable AMBRELIO_POWER_CUTS makes it so many times as
// much, for a long run.
inline uint32_t PowerCutEffort() {
  const char* const times = std::getenv("AMBRELIO_POWER_CUTS");
  return times == nullptr ? 1 : static_cast<uint32_t>(std::max(1, std::atoi(times)));
}

// The disk of a record at one of its moments.
class DiskReplay {
 public:
  // A disk with `lies` says that it has synchronised, and has not.
  explicit DiskReplay(const DiskRecord& record, bool lies = false) : record_(record), lies_(lies) {
    AdvanceTo(record.begin());
    lies_ = lies;
  }

  // A seed for an image with everything that was written.
  static constexpr uint32_t kEverything = 0;

  // Moments only follow each other.
  void AdvanceTo(size_t moment) {
    for (; moment_ < moment; ++moment_) Take(record_.steps()[moment_]);
  }

  // Of what was not synchronised, `seed` chooses what is there: all, nothing, some requests, or
  // some of the sectors of some. A file that has grown holds anything where nothing was written.
  void WriteImage(const std::string& folder, uint32_t seed) const {
    std::mt19937 random(seed);
    const auto extent = static_cast<Extent>(seed % 4);
    auto names = names_;
    for (const NameChange& change : name_changes_) {
      if (!Survives(extent, random)) continue;
      if (change.file) {
        names[change.name] = *change.file;
      } else {
        names.erase(change.name);
      }
    }
    for (const auto& [name, file] : names) {
      const std::string bytes = Content(files_.at(file), extent, random);
      std::ofstream(std::filesystem::path(folder) / name, std::ios::binary) << bytes;
    }
  }

 private:
  using FileId = DiskRecord::FileId;
  using Step = DiskRecord::Step;
  enum class Extent : uint8_t { kAll, kNothing, kSomeRequests, kSomeSectors };

  struct File {
    std::string bytes;                 // synchronised
    std::vector<const Step*> changes;  // since then
  };
  struct NameChange {
    std::string name;
    std::optional<FileId> file;  // none for a deletion
  };

  void Take(const Step& step) {
    File& file = files_[step.file];
    switch (step.kind) {
      case FileRequest::kOpen:
        if (step.found) {
          names_[step.name] = step.file;
          if (!step.bytes.empty()) file.bytes = step.bytes;
        } else {
          name_changes_.push_back({step.name, step.file});
        }
        return;
      case FileRequest::kWrite:
      case FileRequest::kTruncate:
        file.changes.push_back(&step);
        return;
      case FileRequest::kSync:
        if (!lies_) Settle(step.file);
        return;
      case FileRequest::kDelete:
        name_changes_.push_back({step.name, std::nullopt});
        if (step.waits && !lies_) SettleNames();
        return;
    }
  }

  // SQLite synchronises the folder with the first synchronisation of a file that it has made.
  void Settle(FileId id) {
    File& file = files_[id];
    for (const Step* const change : file.changes) Apply(*change, file.bytes);
    file.changes.clear();
    const bool is_new = std::any_of(name_changes_.begin(), name_changes_.end(),
                                    [&](const NameChange& change) { return change.file == id; });
    if (is_new) SettleNames();
  }

  void SettleNames() {
    for (const NameChange& change : name_changes_) {
      if (change.file) {
        names_[change.name] = *change.file;
      } else {
        names_.erase(change.name);
      }
    }
    name_changes_.clear();
  }

  static void Apply(const Step& step, std::string& bytes) {
    const auto place = static_cast<size_t>(step.place);
    if (step.kind == FileRequest::kTruncate) return bytes.resize(place);
    if (bytes.size() < place + step.bytes.size()) bytes.resize(place + step.bytes.size());
    bytes.replace(place, step.bytes.size(), step.bytes);
  }

  static bool Survives(Extent extent, std::mt19937& random) {
    return extent == Extent::kAll || (extent != Extent::kNothing && random() % 2 == 0);
  }

  static std::string Content(const File& file, Extent extent, std::mt19937& random) {
    std::string bytes = file.bytes;
    for (const Step* const change : file.changes) {
      if (change->kind == FileRequest::kWrite && extent == Extent::kSomeSectors) {
        ApplySectors(*change, bytes, random);
      } else if (Survives(extent, random)) {
        Apply(*change, bytes);
      }
    }
    return bytes;
  }

  static void ApplySectors(const Step& step, std::string& bytes, std::mt19937& random) {
    constexpr size_t kSector = 512;
    const auto place = static_cast<size_t>(step.place);
    const size_t end = place + step.bytes.size();
    // The file can be as long as it should be before its content is there.
    if (bytes.size() < end && random() % 2 == 0) {
      const char rubbish = random() % 2 == 0 ? '\0' : static_cast<char>(random());
      bytes.resize(end, rubbish);
    }
    for (size_t from = place; from < end;) {
      const size_t to = std::min(end, (from / kSector + 1) * kSector);
      if (random() % 2 == 0) {
        if (bytes.size() < to) bytes.resize(to);
        bytes.replace(from, to - from, step.bytes, from - place, to - from);
      }
      from = to;
    }
  }

  const DiskRecord& record_;
  bool lies_;
  size_t moment_ = 0;
  std::map<FileId, File> files_;
  std::map<std::string, FileId> names_;
  std::vector<NameChange> name_changes_;
};

}  // namespace ambrelio::test
