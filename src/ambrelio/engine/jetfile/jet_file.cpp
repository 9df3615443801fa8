#include "ambrelio/engine/jetfile/jet_file.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/rc4.h"
#include "ambrelio/engine/jetfile/text.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {

JetFile JetFile::FromBytes(std::span<const uint8_t> file, std::string_view password) {
  const size_t page_size = RecogniseFormat({file, {}}).page_size;
  return {std::make_unique<MemoryPages>(file, page_size), file.size() % page_size, password};
}

JetFile::JetFile(std::unique_ptr<PageFile> pages, size_t torn_bytes, std::string_view password)
    : torn_bytes_(torn_bytes) {
  header_ = ParseHeader(ViewOf(pages->Read(0), 0));
  CheckPassword(header_, password);
  if (header_.key != 0) {
    pages = std::make_unique<DecipheredPages>(std::move(pages), header_.key);
  }
  pages_ = std::make_unique<ChangedPages>(std::move(pages));
  const Page objects = Read(kObjectsPage);
  if (ViewOf(objects, kObjectsPage).U16(0) == static_cast<uint16_t>(PageType::kDefinition)) return;
  if (header_.key != 0) {
    Refuse(dao::DaoError::kUnrecognisedFormat,
           "Unrecognised database format: the file is encrypted in a way that is not known here.");
  }
  throw Damage({kObjectsPage, 0}, "the definition of MSysObjects is expected here");
}

void JetFile::Write(uint32_t number, Bytes page) {
  pages_->Write(number, std::move(page));
  if (number == 0) header_ = ParseHeader(ViewOf(Read(0), 0));
}

std::map<uint32_t, Page> JetFile::StoredChanges() const {
  std::map<uint32_t, Page> stored = changes();
  if (header_.key == 0) return stored;
  for (auto& [number, page] : stored) {
    if (number == 0) continue;
    auto bytes = std::make_shared<Bytes>(*page);
    Rc4(header_.key ^ number, *bytes);
    page = std::move(bytes);
  }
  return stored;
}

void JetFile::SetChanges(std::map<uint32_t, Page> changes) {
  pages_->SetChanges(std::move(changes));
  header_ = ParseHeader(ViewOf(Read(0), 0));
}

std::string JetFile::PlainText(ByteView bytes) const {
  return format().jet4 ? WideText(bytes) : Windows1252ToUtf8(bytes.Text());
}

Bytes JetFile::PlainBytes(std::string_view text) const {
  if (format().jet4) return WideBytes(text);
  const std::string bytes = Utf8ToWindows1252(text);
  return {bytes.begin(), bytes.end()};
}

}  // namespace ambrelio::jetfile
