// A file as a row of pages. Whoever reads structures knows nothing of files, keys or caches; what
// writes, locks or rolls back later stands behind the same interface.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

// A page's bytes, which stay as they are while someone holds them.
using Page = std::shared_ptr<const Bytes>;

inline ByteView ViewOf(const Page& page, uint32_t number) { return {*page, {number, 0}}; }

class PageFile {
 public:
  virtual ~PageFile() = default;

  virtual size_t page_size() const = 0;
  // Whole pages; a piece of one at the end does not count.
  virtual uint32_t page_count() const = 0;
  // Raises Damage for a page that the file does not have, 3043 when it cannot be read.
  virtual Page Read(uint32_t number) const = 0;
};

// Raises Damage unless a file of `count` pages has page `number`.
void RequirePage(uint32_t number, uint32_t count);

// A file held in memory.
class MemoryPages : public PageFile {
 public:
  MemoryPages(std::span<const uint8_t> file, size_t page_size);

  size_t page_size() const override { return page_size_; }
  uint32_t page_count() const override { return static_cast<uint32_t>(pages_.size()); }
  Page Read(uint32_t number) const override;

 private:
  size_t page_size_;
  std::vector<Page> pages_;
};

// An encrypted file in clear: every page but page 0 is enciphered as a whole.
class DecipheredPages : public PageFile {
 public:
  DecipheredPages(std::unique_ptr<PageFile> pages, uint32_t key)
      : pages_(std::move(pages)), key_(key) {}

  size_t page_size() const override { return pages_->page_size(); }
  uint32_t page_count() const override { return pages_->page_count(); }
  Page Read(uint32_t number) const override;

 private:
  std::unique_ptr<PageFile> pages_;
  uint32_t key_;
};

// A file with changes that are not in it yet: pages that are read as they were written here, and
// the file below, which stays as it is.
class ChangedPages : public PageFile {
 public:
  explicit ChangedPages(std::unique_ptr<PageFile> below) : below_(std::move(below)) {}

  size_t page_size() const override { return below_->page_size(); }
  uint32_t page_count() const override;
  Page Read(uint32_t number) const override;
  // `bytes` is a whole page. A number of page_count() appends it.
  void Write(uint32_t number, Bytes bytes);

  const std::map<uint32_t, Page>& changes() const { return changes_; }
  void SetChanges(std::map<uint32_t, Page> changes) { changes_ = std::move(changes); }
  void Forget() { changes_.clear(); }

 private:
  std::unique_ptr<PageFile> below_;
  std::map<uint32_t, Page> changes_;
};

}  // namespace ambrelio::jetfile
