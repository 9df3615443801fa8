#include "ambrelio/engine/jetfile/index_pages.h"

#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"

namespace ambrelio::jetfile {

const IndexPage& IndexPages::Read(uint32_t number) const {
  Page bytes = file_.Read(number);
  Kept& kept = kept_[number];
  if (kept.bytes != bytes) {
    kept.page = ReadIndexPage(file_, number);
    kept.bytes = std::move(bytes);
  }
  return kept.page;
}

void IndexPages::ForgetSome() {
  constexpr size_t kMost = 1024;
  if (kept_.size() > kMost) kept_.clear();
}

IndexPage IndexPages::Take(uint32_t number) {
  Read(number);
  return std::move(kept_.extract(number).mapped().page);
}

void IndexPages::Save(IndexPage page) {
  const uint32_t number = page.number;
  file_.Write(number, EncodeIndexPage(page));
  kept_[number] = {file_.Read(number), std::move(page)};
}

IndexPage IndexPages::NewPage(bool leaf) {
  IndexPage page;
  page.number = AllocatePage(file_);
  page.leaf = leaf;
  page.table = table_;
  AddToMap(file_, map_, page.number);
  return page;
}

IndexPage IndexPages::NewBehind(IndexPage& page) {
  IndexPage next = NewPage(page.leaf);
  next.previous = page.number;
  next.next = page.next;
  page.next = next.number;
  LinkNext(next);
  return next;
}

void IndexPages::LinkNext(const IndexPage& page) {
  if (page.next == 0) return;
  IndexPage next = Take(page.next);
  next.previous = page.number;
  Save(std::move(next));
}

void IndexPages::Free(uint32_t number) {
  const IndexPage page = Take(number);
  if (page.previous != 0) {
    IndexPage previous = Take(page.previous);
    previous.next = page.next;
    Save(std::move(previous));
  }
  if (page.next != 0) {
    IndexPage next = Take(page.next);
    next.previous = page.previous;
    Save(std::move(next));
  }
  RemoveFromMap(file_, map_, number);
  FreePage(file_, number);
}

}  // namespace ambrelio::jetfile
