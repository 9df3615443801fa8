#include "ambrelio/engine/jetfile/rollback_record.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/jetfile/check_value.h"
#include "ambrelio/engine/jetfile/format.h"
#include "ambrelio/platform/atomic_file.h"

namespace ambrelio::jetfile {
namespace {

// Magic, page count, number of entries; each entry with its page, its check value and, unless the
// page was appended, its old bytes; the check value of all that.
constexpr std::string_view kMagic = "JetUndo1";
constexpr size_t kHeadBytes = 16;
constexpr size_t kCountAt = 8;
constexpr size_t kEntriesAt = 12;
constexpr size_t kEntryBytes = 12;
constexpr size_t kCheckAt = 4;
constexpr size_t kCheckBytes = 8;

constexpr size_t kPageBytes = kJet4.page_size;
constexpr size_t kCommitTableAt = kJet4.commit_table_at;
constexpr size_t kCreatedBytes = 8;

int64_t PlaceOfPage(uint32_t page) {
  return static_cast<int64_t>(page) * static_cast<int64_t>(kPageBytes);
}

// Goes through a file from a place on, and sums up what it meets.
class Passage {
 public:
  Passage(DiskFile& file, int64_t place) : file_(file), place_(place) {}

  int64_t place() const { return place_; }
  uint64_t check() const { return check_.value(); }

  void Write(std::span<const uint8_t> bytes) {
    file_.Write(place_, bytes);
    Pass(bytes);
  }
  Bytes Read(size_t size) {
    Bytes bytes(size);
    file_.Read(place_, bytes);
    Pass(bytes);
    return bytes;
  }
  // As if these bytes had been met.
  void Pass(std::span<const uint8_t> bytes) {
    check_.Add(bytes);
    place_ += static_cast<int64_t>(bytes.size());
  }

 private:
  DiskFile& file_;
  int64_t place_;
  CheckValue check_;
};

}  // namespace

uint16_t NextCommit(uint16_t entry) {
  constexpr uint16_t kFirst = 0x0101;
  return std::max<uint16_t>(static_cast<uint16_t>(entry + 1), kFirst);
}

bool RollbackRecord::Begins(const DiskFile& file, int64_t place) {
  std::array<uint8_t, kMagic.size()> magic{};
  file.Read(place, magic);
  return std::equal(magic.begin(), magic.end(), kMagic.begin());
}

void RollbackRecord::Write(const std::map<uint32_t, Page>& pages) {
  is_durable_ = false;
  const auto page_count = static_cast<uint32_t>(data_.Size() / static_cast<int64_t>(kPageBytes));
  Passage record(file_, place_);
  Bytes head(kMagic.begin(), kMagic.end());
  Append(head, page_count, 4);
  Append(head, pages.size(), 4);
  record.Write(head);
  for (const auto& [number, page] : pages) {
    Bytes entry;
    Append(entry, number, 4);
    Append(entry, CheckValueOf(*page), kCheckBytes);
    record.Write(entry);
    if (number < page_count) record.Write(DataPage(number));
  }
  Bytes check;
  Append(check, record.check(), kCheckBytes);
  record.Write(check);
  file_.Sync();
  if (!name_is_durable_) SyncFolderOf(file_.path());
  name_is_durable_ = true;
  is_durable_ = true;
}

std::optional<RollbackRecord::Contents> RollbackRecord::Load() const {
  const int64_t end = file_.Size();
  Passage record(file_, place_);
  Bytes head(kHeadBytes);
  file_.Read(place_, head);
  std::copy(kMagic.begin(), kMagic.end(), head.begin());
  record.Pass(head);
  Contents contents{ByteView(head, {}).U32(kCountAt), {}};
  for (uint32_t left = ByteView(head, {}).U32(kEntriesAt); left > 0; --left) {
    if (record.place() > end) return std::nullopt;
    const Bytes bytes = record.Read(kEntryBytes);
    Entry entry{ByteView(bytes, {}).U32(0), ByteView(bytes, {}).U64(kCheckAt), 0};
    if (entry.page < contents.page_count) {
      entry.old_at = record.place();
      record.Read(kPageBytes);
    }
    contents.entries.push_back(entry);
  }
  const uint64_t check = record.check();
  if (ByteView(record.Read(kCheckBytes), {}).U64(0) != check) return std::nullopt;
  return contents;
}

Bytes RollbackRecord::DataPage(uint32_t number) const {
  Bytes bytes(kPageBytes);
  data_.Read(PlaceOfPage(number), bytes);
  return bytes;
}

bool RollbackRecord::IsCommitted(const Contents& contents) const {
  return std::all_of(contents.entries.begin(), contents.entries.end(), [&](const Entry& entry) {
    return CheckValueOf(DataPage(entry.page)) == entry.new_check;
  });
}

// A commit leaves the date of creation, and in the commit table everything but entry 0. Its two
// bytes can be the old ones, the zeros of a change under way or the new ones, and after a power cut
// some of each.
bool RollbackRecord::IsOfThisData(const Contents& contents) const {
  Bytes old_page(kPageBytes);
  file_.Read(contents.entries.front().old_at, old_page);
  const std::span<const uint8_t> old_table =
      std::span<const uint8_t>(old_page).subspan(kCommitTableAt, kCommitTableBytes);
  const Bytes page = DataPage(0);
  const std::span<const uint8_t> table =
      std::span<const uint8_t>(page).subspan(kCommitTableAt, kCommitTableBytes);
  const std::span<const uint8_t> created =
      std::span<const uint8_t>(page).subspan(kJet4.created_at, kCreatedBytes);

  const uint16_t next = NextCommit(ByteView(old_page, {}).U16(kCommitTableAt));
  for (size_t i = 0; i < sizeof next; ++i) {
    const auto new_byte = static_cast<uint8_t>(next >> (8 * i));
    if (table[i] != old_table[i] && table[i] != 0 && table[i] != new_byte) return false;
  }
  return std::equal(table.begin() + sizeof next, table.end(), old_table.begin() + sizeof next) &&
         std::equal(created.begin(), created.end(), old_page.begin() + kJet4.created_at);
}

// Page 0 comes last: until then it can say that a change is under way.
void RollbackRecord::Restore(const Contents& contents) {
  const int64_t old_size = PlaceOfPage(contents.page_count);
  if (data_.Size() > old_size) data_.Truncate(old_size);
  for (auto entry = contents.entries.rbegin(); entry != contents.entries.rend(); ++entry) {
    if (entry->old_at == 0) continue;
    Bytes bytes(kPageBytes);
    file_.Read(entry->old_at, bytes);
    data_.Write(PlaceOfPage(entry->page), bytes);
  }
}

// Before the record was durable, no page was touched.
void RollbackRecord::TakeBack() {
  if (is_durable_) {
    const std::optional<Contents> contents = Begins(file_, place_) ? Load() : std::nullopt;
    if (!contents) dao::Raise(dao::DaoError::kDiskError, dao::source::kDatabase, file_.path());
    Restore(*contents);
    data_.Sync();
  }
  MakeVoid();
}

void RollbackRecord::Settle() {
  if (!Begins(file_, place_)) return;
  const std::optional<Contents> contents = Load();
  if (contents && IsOfThisData(*contents)) {
    if (!IsCommitted(*contents)) Restore(*contents);
    data_.Sync();
  }
  MakeVoid();
}

std::optional<std::set<uint32_t>> RollbackRecord::LastPages() const {
  const std::optional<Contents> contents = Load();
  if (!contents) return std::nullopt;
  std::set<uint32_t> pages;
  for (const Entry& entry : contents->entries) pages.insert(entry.page);
  return pages;
}

void RollbackRecord::MakeVoid() { file_.Write(place_, Bytes(kMagic.size())); }

}  // namespace ambrelio::jetfile
