// The settings of a mill, from two files of any content: the first byte of the input says how much
// of it is CLIEN.INI; the rest is Vardex.ini.
#include "ambrelio/frame/settings.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "ambrelio/value/automation_error.h"
#include "fuzz.h"

namespace {

// One folder for the whole run, in memory where the system has such a place.
class Folder {
 public:
  Folder() {
    const std::filesystem::path memory = "/dev/shm";
    const auto base = is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    path_ = base / ("ambrelio-fuzz-" + std::to_string(getpid()));
    create_directories(path_);
  }
  ~Folder() { remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string path() const { return path_.string(); }
  void Put(const char* name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using ambrelio::fuzz::Require;
  if (size == 0) return 0;
  static const Folder folder;
  const std::string_view files = ambrelio::fuzz::TextOf(data + 1, size - 1);
  const size_t client_size = std::min<size_t>(data[0], files.size());
  folder.Put("CLIEN.INI", files.substr(0, client_size));
  folder.Put("Vardex.ini", files.substr(client_size));

  ambrelio::Session session;
  try {
    const auto settings = ambrelio::frame::LoadGeneralSettings(session, folder.path());
    Require(!settings.path.empty(), "the database has a path");
    Require(session.tank_count != 0, "a mill has a tank at least");
  } catch (const ambrelio::AutomationError& error) {
    Require(error.number() == static_cast<int>(ambrelio::RuntimeError::kOverflow),
            "settings fail by a count above 32767 only");
  }
  return 0;
}
