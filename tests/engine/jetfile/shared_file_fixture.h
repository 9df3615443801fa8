// A copy of a sample that is written, and what it has to be after each commit.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/shared_file.h"
#include "engine/jetfile/samples.h"
#include "support/temp_folder.h"

namespace ambrelio::jetfile {

inline Bytes FileBytes(const std::string& path) {
  std::ifstream file(FilePath(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void PutFile(const std::string& path, const Bytes& bytes) {
  std::ofstream file(FilePath(path), std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

// The changes of the `number`th commit: some pages behind the first ones, which an opening reads,
// get other bytes, and now and then the file grows.
inline void MakeChanges(JetFile& file, uint32_t number) {
  constexpr uint32_t kFirstPage = kObjectsPage + 1;
  std::mt19937 engine(number);
  const auto random = [&] { return static_cast<uint32_t>(engine()); };
  const auto write = [&](uint32_t page) {
    Bytes bytes(kJet4.page_size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<uint8_t>(random()); });
    file.Write(page, bytes);
  };
  for (uint32_t left = 1 + random() % 4; left > 0; --left) {
    write(kFirstPage + random() % (file.page_count() - kFirstPage));
  }
  if (random() % 2 == 0) {
    for (uint32_t left = 1 + random() % 3; left > 0; --left) write(file.page_count());
  }
}

inline void CommitChanges(SharedFile& shared, uint32_t number) {
  shared.Lock();
  MakeChanges(shared.file(), number);
  shared.Commit();
  shared.Unlock();
}

// The bytes of a file before the first commit and after each, made without a disk.
inline std::vector<Bytes> StatesOf(const Bytes& file, uint32_t commits) {
  std::vector<Bytes> states{file};
  for (uint32_t number = 1; number <= commits; ++number) {
    Bytes bytes = states.back();
    JetFile memory = JetFile::FromBytes(bytes, "");
    MakeChanges(memory, number);
    bytes.resize(memory.page_count() * kJet4.page_size);
    for (const auto& [page, content] : memory.StoredChanges()) {
      std::copy(content->begin(), content->end(),
                bytes.begin() + static_cast<ptrdiff_t>(page * kJet4.page_size));
    }
    Put(bytes, kJet4.commit_table_at, memory.header().commits[0] + 1U, 2);
    states.push_back(bytes);
  }
  return states;
}

class SharedFileTest : public ::testing::Test {
 protected:
  using Access = SharedFile::Access;
  static constexpr std::chrono::milliseconds kShortly{20};

  std::string Path() const { return folder_.File("mill.mdb"); }

  std::unique_ptr<SharedFile> Open(Access access = Access::kShared,
                                   std::chrono::milliseconds wait = kShortly) const {
    return SharedFile::Open(Path(), "", access, wait);
  }

  std::vector<std::string> FilesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(FilePath(folder_.path()))) {
      names.push_back(Utf8Path(entry.path().filename()));
    }
    return names;
  }

  test::TempFolder folder_;
};

}  // namespace ambrelio::jetfile
