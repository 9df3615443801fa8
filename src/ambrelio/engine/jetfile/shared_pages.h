// The pages of a file that others may write.
#pragma once

#include "ambrelio/engine/jetfile/disk_file.h"
#include "ambrelio/engine/jetfile/page_file.h"

namespace ambrelio::jetfile {

class SharedPages : public PageFile {
 public:
  // `file` must outlive it.
  SharedPages(const DiskFile& file, size_t page_size) : file_(file), page_size_(page_size) {
    Look();
  }

  // Takes notice of the file's present size.
  void Look();

  size_t page_size() const override { return page_size_; }
  uint32_t page_count() const override { return page_count_; }
  Page Read(uint32_t number) const override;

 private:
  const DiskFile& file_;
  size_t page_size_;
  uint32_t page_count_ = 0;
};

}  // namespace ambrelio::jetfile
