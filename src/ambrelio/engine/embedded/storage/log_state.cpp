#include "ambrelio/engine/embedded/storage/log_state.h"

#include <atomic>

namespace ambrelio::embedded {
namespace {

const volatile uint32_t* FindHeader(sqlite3* db) {
  // The index is shared memory in regions of this size, and begins with the header ("The WAL-Index
  // File Format" of SQLite's documents).
  constexpr int kRegionSize = 32768;
  sqlite3_file* file = nullptr;
  const int code =
      sqlite3_file_control(db, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
  if (code != SQLITE_OK || file == nullptr || file->pMethods == nullptr ||
      file->pMethods->iVersion < 2) {
    return nullptr;
  }
  volatile void* region = nullptr;
  file->pMethods->xShmMap(file, 0, kRegionSize, 0, &region);
  return static_cast<const volatile uint32_t*>(region);
}

}  // namespace

std::optional<LogState> LogWatch::Read() {
  if (header_ == nullptr) header_ = FindHeader(db_);
  if (header_ == nullptr) return std::nullopt;
  std::atomic_thread_fence(std::memory_order_acquire);
  LogState state;
  for (size_t i = 0; i < state.size(); ++i) state[i] = header_[i];
  return state;
}

}  // namespace ambrelio::embedded
