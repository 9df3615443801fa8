// A file that appears under its name only once it is complete.
#pragma once

#include <string>
#include <system_error>
#include <vector>

namespace ambrelio {

// The file is made under a name of its own beside its place, with the same extension. What is left
// under that name at the end goes, and so do its companions, which have the same name with a suffix
// behind it.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(std::string place, std::vector<std::string> companions = {});
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  // Where to make the file.
  const std::string& path() const { return path_; }
  // Puts the file in its place, for good where its bytes are. file_exists when that is taken, also
  // by a link that leads nowhere: nothing is ever replaced.
  std::error_code TakePlace() const;

 private:
  std::string place_;
  std::string path_;
  std::vector<std::string> companions_;
};

}  // namespace ambrelio
