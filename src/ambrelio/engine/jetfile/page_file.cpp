#include "ambrelio/engine/jetfile/page_file.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/rc4.h"

namespace ambrelio::jetfile {

void RequirePage(uint32_t number, uint32_t count) {
  if (number < count) return;
  throw Damage({number, 0}, "the file has " + std::to_string(count) + " pages only");
}

MemoryPages::MemoryPages(std::span<const uint8_t> file, size_t page_size) : page_size_(page_size) {
  for (; file.size() >= page_size; file = file.subspan(page_size)) {
    pages_.push_back(
        std::make_shared<Bytes>(file.begin(), file.begin() + static_cast<ptrdiff_t>(page_size)));
  }
}

Page MemoryPages::Read(uint32_t number) const {
  RequirePage(number, page_count());
  return pages_[number];
}

Page DecipheredPages::Read(uint32_t number) const {
  Page page = pages_->Read(number);
  if (number == 0) return page;
  auto clear = std::make_shared<Bytes>(*page);
  Rc4(key_ ^ number, *clear);
  return clear;
}

uint32_t ChangedPages::page_count() const {
  const uint32_t behind_last = changes_.empty() ? 0 : changes_.rbegin()->first + 1;
  return std::max(below_->page_count(), behind_last);
}

Page ChangedPages::Read(uint32_t number) const {
  const auto change = changes_.find(number);
  return change != changes_.end() ? change->second : below_->Read(number);
}

void ChangedPages::Write(uint32_t number, Bytes bytes) {
  RequirePage(number, page_count() + 1);
  changes_[number] = std::make_shared<Bytes>(std::move(bytes));
}

}  // namespace ambrelio::jetfile
