// An open database file: its pages in clear, and what page 0 says of them. What is changed in it
// stays in memory; putting it on the disk, whole or not at all, is somebody else's business.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "ambrelio/engine/jetfile/header.h"
#include "ambrelio/engine/jetfile/page_file.h"

namespace ambrelio::jetfile {

class JetFile {
 public:
  // A file in memory, which is copied. Raises 3343 for one of another format or with an unknown
  // encryption, 3049 for a damaged one, and 3031 when it has another password than this.
  static JetFile FromBytes(std::span<const uint8_t> file, std::string_view password);
  // The same of pages as they stand in a file; `torn_bytes` are those behind the last whole one.
  JetFile(std::unique_ptr<PageFile> pages, size_t torn_bytes, std::string_view password);

  const Header& header() const { return header_; }
  const Format& format() const { return *header_.format; }
  uint32_t page_count() const { return pages_->page_count(); }
  Page Read(uint32_t number) const { return pages_->Read(number); }
  // A whole page in clear, from now on read as it is here. A number of page_count() appends it.
  // For Jet 4 alone.
  void Write(uint32_t number, Bytes page);

  // What was written, by page, in clear and as it has to stand in the file.
  const std::map<uint32_t, Page>& changes() const { return pages_->changes(); }
  std::map<uint32_t, Page> StoredChanges() const;
  // The file is again what it is below the changes; or below them with those that it had once.
  void ForgetChanges() { SetChanges({}); }
  void SetChanges(std::map<uint32_t, Page> changes);

  // Bytes of the file beyond its last whole page.
  size_t torn_bytes() const { return torn_bytes_; }

  // Text that is never compressed: names, and what stands in properties. Jet 3 keeps it in its code
  // page, of which Windows-1252 is the one known here.
  std::string PlainText(ByteView bytes) const;
  Bytes PlainBytes(std::string_view text) const;

 private:
  std::unique_ptr<ChangedPages> pages_;
  Header header_;
  size_t torn_bytes_;
};

}  // namespace ambrelio::jetfile
