// A folder with a place for one file to be written.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "ambrelio/platform/atomic_file.h"
#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::test {

class AtomicFileTest : public testing::Test {
 protected:
  static void Put(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  size_t FilesInFolder() const {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder_.path()),
                                             std::filesystem::directory_iterator()));
  }

  test::TempFolder folder_;
  std::string file_ = folder_.File("a.ini");
};

}  // namespace ambrelio::test
