// A file that is dear to make: made where a program needs it first, and copied from then on.
#pragma once

#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "ambrelio/platform/file_path.h"

namespace ambrelio::test {

class MadeOnce {
 public:
  // Sees to the file at `path`; `make` makes it there, and has closed it when it returns.
  void PutAt(const std::string& path, const std::function<void()>& make) {
    if (content_.empty()) {
      make();
      std::ifstream made(FilePath(path), std::ios::binary);
      content_.assign(std::istreambuf_iterator<char>(made), {});
    } else {
      std::ofstream(FilePath(path), std::ios::binary) << content_;
    }
  }

 private:
  std::string content_;
};

}  // namespace ambrelio::test
