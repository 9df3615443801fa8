#include "ambrelio/engine/jetfile/shared_pages.h"

#include <algorithm>

namespace ambrelio::jetfile {

void SharedPages::Look() {
  const int64_t pages = file_.Size() / static_cast<int64_t>(page_size_);
  page_count_ = static_cast<uint32_t>(std::min<int64_t>(pages, UINT32_MAX));
}

Page SharedPages::Read(uint32_t number) const {
  RequirePage(number, page_count_);
  auto bytes = std::make_shared<Bytes>(page_size_);
  file_.Read(static_cast<int64_t>(number) * static_cast<int64_t>(page_size_), *bytes);
  return bytes;
}

}  // namespace ambrelio::jetfile
