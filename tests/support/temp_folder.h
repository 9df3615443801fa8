// A folder of its own for one test, removed with everything in it at the end.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace ambrelio::test {

class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("ambrelio-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string path() const { return path_.string(); }
  // The path of a file in it.
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  // Makes a folder in it and gives its path.
  std::string Folder(const std::string& name) const {
    std::filesystem::create_directories(path_ / name);
    return (path_ / name).string();
  }

 private:
  std::filesystem::path path_;
};

}  // namespace ambrelio::test
