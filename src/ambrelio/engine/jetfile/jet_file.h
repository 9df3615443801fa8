// An open database file: its pages in clear, and what page 0 says of them.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "ambrelio/engine/jetfile/header.h"
#include "ambrelio/engine/jetfile/page_file.h"

namespace ambrelio::jetfile {

class JetFile {
 public:
  // Opens for reading. Raises 3024 for a missing file, 3051 when it may not be read, 3343 for a
  // file of another format or with an unknown encryption, 3049 for a damaged one, and 3031 when
  // `password` is not exactly the file's.
  static JetFile Open(const std::string& path, std::string_view password);
  // The same of a file in memory, which is copied.
  static JetFile FromBytes(std::span<const uint8_t> file, std::string_view password);

  const Header& header() const { return header_; }
  const Format& format() const { return *header_.format; }
  uint32_t page_count() const { return pages_->page_count(); }
  Page Read(uint32_t number) const { return pages_->Read(number); }
  // Bytes of the file beyond its last whole page.
  size_t torn_bytes() const { return torn_bytes_; }

  // Text that is never compressed: names, and what stands in properties. Jet 3 keeps it in its code
  // page, of which Windows-1252 is the one known here.
  std::string PlainText(ByteView bytes) const;
  Bytes PlainBytes(std::string_view text) const;

 private:
  JetFile(std::unique_ptr<PageFile> pages, size_t torn_bytes, std::string_view password);

  std::unique_ptr<PageFile> pages_;
  Header header_;
  size_t torn_bytes_;
};

}  // namespace ambrelio::jetfile
