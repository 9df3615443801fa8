// A file that is dear to make: made where a program needs it first, and copied from then on.
#pragma once

#include <fstream>
#include <functional>
#include <string>

#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::test {

class MadeOnce {
 public:
  // Sees to the file at `path`; `make` makes it there, and has closed it when it returns.
  void PutAt(const std::string& path, const std::function<void()>& make) {
    if (content_.empty()) {
      make();
      content_ = ReadWholeFile(path).value_or("");
    } else {
      std::ofstream(FilePath(path), std::ios::binary) << content_;
    }
  }

 private:
  std::string content_;
};

}  // namespace ambrelio::test
