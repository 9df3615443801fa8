// How often the disk is waited for, in SQLite's files while it lives; see WatchedFiles.
#pragma once

#include <utility>

#include "support/watched_files.h"

namespace ambrelio::test {

class CountedFiles {
 public:
  // How often the disk has been waited for since the last call.
  int Waits() { return std::exchange(waits_, 0); }

 private:
  int Count(const FileRequest& request) {
    if (request.kind == FileRequest::kSync || request.waits) ++waits_;
    return SQLITE_OK;
  }

  int waits_ = 0;
  WatchedFiles files_{[this](const FileRequest& request) { return Count(request); }};
};

}  // namespace ambrelio::test
