#include "ambrelio/engine/jetfile/shared_pages.h"

#include <algorithm>

namespace ambrelio::jetfile {
namespace {

// 16 MiB of them.
constexpr size_t kMostKept = 4096;

}  // namespace

void SharedPages::Look() {
  kept_.clear();
  const int64_t pages = file_.Size() / static_cast<int64_t>(page_size_);
  page_count_ = static_cast<uint32_t>(std::min<int64_t>(pages, UINT32_MAX));
}

void SharedPages::BeginMoment() {
  Look();
  in_moment_ = true;
}

void SharedPages::EndMoment() {
  in_moment_ = false;
  kept_.clear();
}

Page SharedPages::Read(uint32_t number) const {
  RequirePage(number, page_count_);
  if (const auto kept = kept_.find(number); kept != kept_.end()) return kept->second;
  auto bytes = std::make_shared<Bytes>(page_size_);
  file_.Read(static_cast<int64_t>(number) * static_cast<int64_t>(page_size_), *bytes);
  if (!in_moment_) return bytes;
  if (kept_.size() == kMostKept) kept_.clear();
  kept_.emplace(number, bytes);
  return bytes;
}

}  // namespace ambrelio::jetfile
