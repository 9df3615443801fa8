// A folder of its own for one test, removed with everything in it at the end. A second process of
// the test (second_process.h) takes the folder that its parent made, and leaves it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "ambrelio/platform/file_path.h"

namespace ambrelio::test {

class TempFolder {
 public:
  TempFolder() {
    if (const char* parents = std::getenv("AMBRELIO_TEST_FOLDER")) {
      path_ = FilePath(parents);
      own_ = false;
      return;
    }
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("ambrelio-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TempFolder() {
    if (!own_) return;
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string path() const { return Utf8Path(path_); }
  // The path of a file in it.
  std::string File(const std::string& name) const { return Utf8Path(path_ / FilePath(name)); }
  // Makes a folder in it and gives its path.
  std::string Folder(const std::string& name) const {
    std::filesystem::create_directories(path_ / FilePath(name));
    return File(name);
  }

 private:
  std::filesystem::path path_;
  bool own_ = true;
};

}  // namespace ambrelio::test
