#include "ambrelio/engine/jetfile/row_pages.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"

namespace ambrelio::jetfile {
namespace {

// A page with less is not listed as one with room.
constexpr size_t kLittleRoom = 256;
// Listed pages that a row is offered before it gets a new one.
constexpr size_t kMostTries = 16;

bool IsRoomy(const DataPageEditor& page) {
  return page.HasFreeSlot() && page.room() >= kLittleRoom;
}

}  // namespace

DataPageEditor RowPages::Edit(uint32_t page) const {
  DataPageEditor editor(file_, page);
  if (editor.owner() == owner_) return editor;
  throw Damage({page, DataPageLayout::kOwnerAt}, "the page belongs to something else");
}

void RowPages::Save(DataPageEditor& page) {
  page.Save(file_);
  if (!page.HasRows()) {
    Release(page.number());
  } else if (IsRoomy(page)) {
    SetRoomy(page.number(), true);
  }
}

RowPointer RowPages::Add(std::span<const uint8_t> row, DataPageEditor::Mark mark) {
  DataPageEditor page = PageWithRoom(row.size());
  const RowPointer added{page.number(), page.Append(row, mark)};
  page.Save(file_);
  last_page_ = page.number();
  return added;
}

RowPointer RowPages::AddOnNewPage(std::span<const uint8_t> row) {
  DataPageEditor page = NewPage();
  const RowPointer added{page.number(), page.Append(row)};
  Save(page);
  return added;
}

void RowPages::Delete(RowPointer row) {
  DataPageEditor page = Edit(row.page);
  page.SlotAt(row.row);
  page.Delete(row.row);
  Save(page);
}

DataPageEditor RowPages::PageWithRoom(size_t size) {
  if (last_page_ != 0) {
    if (auto page = TryPage(last_page_, size)) return *std::move(page);
  }
  Roomy();
  for (size_t tries = 0; tries < kMostTries && !untried_.empty(); ++tries) {
    const uint32_t number = *untried_.rbegin();
    if (auto page = TryPage(number, size)) return *std::move(page);
    untried_.erase(number);
  }
  DataPageEditor page = NewPage();
  SetRoomy(page.number(), true);
  return page;
}

// A page that a row does not fit any more is tried no more, or not listed when it has little room.
std::optional<DataPageEditor> RowPages::TryPage(uint32_t number, size_t size) {
  DataPageEditor page = Edit(number);
  if (page.CanAppend(size)) return page;
  if (!IsRoomy(page)) SetRoomy(number, false);
  return std::nullopt;
}

DataPageEditor RowPages::NewPage() {
  const uint32_t number = AllocatePage(file_);
  if (!owned_.none()) AddToMap(file_, owned_, number);
  return {number, owner_};
}

std::set<uint32_t>& RowPages::Roomy() {
  if (!roomy_) {
    const std::vector<uint32_t> pages = ReadUsageMap(file_, free_space_).pages;
    roomy_.emplace(pages.begin(), pages.end());
    untried_ = *roomy_;
  }
  return *roomy_;
}

void RowPages::SetRoomy(uint32_t page, bool roomy) {
  if (free_space_.none()) return;
  if (roomy) {
    if (Roomy().insert(page).second) AddToMap(file_, free_space_, page);
    untried_.insert(page);
  } else if (Roomy().erase(page) > 0) {
    RemoveFromMap(file_, free_space_, page);
    untried_.erase(page);
  }
}

void RowPages::Release(uint32_t page) {
  SetRoomy(page, false);
  if (!owned_.none()) RemoveFromMap(file_, owned_, page);
  FreePage(file_, page);
  if (last_page_ == page) last_page_ = 0;
}

}  // namespace ambrelio::jetfile
