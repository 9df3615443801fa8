#include "ambrelio/engine/jetfile/definition_writer.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/page_allocator.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint16_t kDefinitionPage = static_cast<uint16_t>(PageType::kDefinition);

// What a page counts as holding. The first holds eight bytes more, as the string has a page header
// of its own; they are never counted on, so that a page behind it may come to stand empty.
constexpr size_t kPageRoom = kJet4.page_size - DefinitionLayout::kPageHeaderBytes;

void TakePages(JetFile& file, TableDefinition& definition, size_t length) {
  const size_t needed = (length + kPageRoom - 1) / kPageRoom;
  while (definition.pages.size() > needed) {
    FreePage(file, definition.pages.back());
    definition.pages.pop_back();
  }
  while (definition.pages.size() < needed) definition.pages.push_back(AllocatePage(file));
}

}  // namespace

void WriteDefinition(JetFile& file, TableDefinition& definition) {
  const size_t length = SerialiseDefinition(file, definition).size();
  TakePages(file, definition, length);
  const std::vector<uint32_t>& pages = definition.pages;
  const size_t room = pages.size() * kPageRoom - length;
  definition.page_type = kDefinitionPage;
  definition.length = static_cast<uint32_t>(length);
  definition.next_page = pages.size() > 1 ? pages[1] : 0;
  definition.free_bytes = static_cast<uint16_t>(pages.size() > 1 ? 0 : room);

  const Bytes string = SerialiseDefinition(file, definition);
  Bytes page(string.begin(),
             string.begin() + static_cast<std::ptrdiff_t>(std::min(length, kJet4.page_size)));
  size_t taken = page.size();
  for (size_t i = 0; i < pages.size(); ++i) {
    const bool last = i + 1 == pages.size();
    if (i > 0) {
      const size_t size = std::min(length - taken, kPageRoom);
      page.clear();
      Append(page, kDefinitionPage, DefinitionLayout::kFreeBytesAt);
      Append(page, last ? room : 0, 2);
      Append(page, last ? 0 : pages[i + 1], 4);
      Append(page, std::span(string).subspan(taken, size));
      taken += size;
    }
    page.resize(kJet4.page_size);
    file.Write(pages[i], page);
  }
}

}  // namespace ambrelio::jetfile
