#include "ambrelio/platform/unfinished_file.h"

#include <filesystem>
#include <random>
#include <utility>

#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio {

namespace fs = std::filesystem;

UnfinishedFile::UnfinishedFile(std::string place, std::vector<std::string> companions)
    : place_(std::move(place)), companions_(std::move(companions)) {
  std::random_device random;
  fs::path name = FilePath(place_);
  const std::string mark = "." + std::to_string(random()) + ".new";
  name.replace_extension(FilePath(mark + Utf8Path(name.extension())));
  path_ = Utf8Path(name);
}

UnfinishedFile::~UnfinishedFile() {
  std::error_code ignored;
  fs::remove(FilePath(path_), ignored);
  for (const std::string& suffix : companions_) fs::remove(FilePath(path_ + suffix), ignored);
}

std::error_code UnfinishedFile::TakePlace() const {
  std::error_code error;
  fs::create_hard_link(FilePath(path_), FilePath(place_), error);
  if (!error) SyncFolderOf(place_);
  if (!error || error == std::errc::file_exists || error == std::errc::no_such_file_or_directory) {
    return error;
  }
  // Without hard links there is only the renaming, which would overwrite.
  std::error_code ignored;
  if (fs::exists(fs::symlink_status(FilePath(place_), ignored))) {
    return std::make_error_code(std::errc::file_exists);
  }
  fs::rename(FilePath(path_), FilePath(place_), error);
  if (!error) SyncFolderOf(place_);
  return error;
}

}  // namespace ambrelio
