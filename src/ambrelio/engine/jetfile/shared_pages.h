// The pages of a file that others may write, but not in a moment: those that are read in one stay
// in memory to its end.
#pragma once

#include <unordered_map>

#include "ambrelio/engine/jetfile/disk_file.h"
#include "ambrelio/engine/jetfile/page_file.h"

namespace ambrelio::jetfile {

class SharedPages : public PageFile {
 public:
  // `file` must outlive it.
  SharedPages(const DiskFile& file, size_t page_size) : file_(file), page_size_(page_size) {
    Look();
  }

  // Takes notice of what the file is at present.
  void Look();
  // From now on nobody else writes the pages; from now on others may.
  void BeginMoment();
  void EndMoment();

  size_t page_size() const override { return page_size_; }
  uint32_t page_count() const override { return page_count_; }
  Page Read(uint32_t number) const override;

 private:
  const DiskFile& file_;
  size_t page_size_;
  uint32_t page_count_ = 0;
  bool in_moment_ = false;
  mutable std::unordered_map<uint32_t, Page> kept_;
};

}  // namespace ambrelio::jetfile
