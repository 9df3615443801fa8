#include "ambrelio/engine/embedded/storage/storage_file.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "ambrelio/dao/errors.h"
#include "ambrelio/platform/file_in_use.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/platform/unfinished_file.h"

namespace ambrelio::embedded {
namespace {

namespace fs = std::filesystem;
using dao::DaoError;

constexpr const char* kLog = "-wal";

// The places of SQLite's header that matter here.
constexpr size_t kHeaderSize = 100;
constexpr size_t kVersionAt = 60;
constexpr size_t kApplicationAt = 68;
constexpr std::string_view kSqliteMark("SQLite format 3\0", 16);
// Where a Jet file names its format.
constexpr size_t kJetMarkAt = 4;

void CheckFolder(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) {
    dao::Raise(DaoError::kInvalidDatabaseName, dao::source::kWorkspace, path);
  }
  const fs::path folder = FilePath(path).parent_path();
  std::error_code error;
  if (!folder.empty() && !fs::is_directory(folder, error)) {
    dao::Raise(DaoError::kInvalidPath, dao::source::kWorkspace, path);
  }
}

// Nothing when the file cannot be read.
std::optional<std::string> ReadHeader(const std::string& path) {
  std::ifstream file(FilePath(path), std::ios::binary);
  if (!file) return std::nullopt;
  std::string header(kHeaderSize, '\0');
  file.read(header.data(), static_cast<std::streamsize>(header.size()));
  header.resize(static_cast<size_t>(file.gcount()));
  return header;
}

// The format that a file of Jet names in its header; "" for any other file.
std::string_view JetFormat(std::string_view header) {
  for (const std::string_view format : {"Standard Jet DB", "Standard ACE DB"}) {
    if (header.size() > kJetMarkAt && header.substr(kJetMarkAt).starts_with(format)) return format;
  }
  return {};
}

int32_t NumberAt(std::string_view header, size_t place) {
  uint32_t number = 0;
  for (const char byte : header.substr(place, 4)) {
    number = number << 8 | static_cast<unsigned char>(byte);
  }
  return static_cast<int32_t>(number);
}

void CheckHeader(std::string_view header, const std::string& path) {
  if (!header.starts_with(kSqliteMark)) {
    dao::Raise(DaoError::kUnrecognisedFormat, dao::source::kWorkspace, path);
  }
  if (header.size() < kHeaderSize) {
    dao::Raise(DaoError::kNotADatabaseOrDamaged, dao::source::kWorkspace, path);
  }
  if (NumberAt(header, kApplicationAt) != kApplicationId ||
      NumberAt(header, kVersionAt) > kFormatVersion) {
    dao::Raise(DaoError::kUnrecognisedFormat, dao::source::kWorkspace, path);
  }
}

}  // namespace

void CheckDatabaseFile(const std::string& path) {
  CheckFolder(path);
  std::error_code error;
  const fs::file_status status = fs::status(FilePath(path), error);
  if (status.type() == fs::file_type::not_found) {
    dao::Raise(DaoError::kFileNotFound, dao::source::kWorkspace, path);
  }
  if (status.type() != fs::file_type::regular) {
    dao::Raise(DaoError::kAccessDenied, dao::source::kWorkspace, path);
  }
  const std::optional<std::string> header = ReadHeader(path);
  if (!header) {
    dao::Raise(IsHeldByAnother(path) ? DaoError::kFileInUse : DaoError::kAccessDenied,
               dao::source::kWorkspace, path);
  }
  CheckHeader(*header, path);
}

bool IsJetFile(const std::string& path) {
  const std::optional<std::string> header = ReadHeader(path);
  return header && !JetFormat(*header).empty();
}

bool CompanionExists(const std::string& path, const char* suffix) {
  std::error_code error;
  return fs::exists(FilePath(path + suffix), error);
}

void CreateWhole(const std::string& path, const std::function<void(const std::string&)>& write) {
  CheckFolder(path);
  for (const char* const suffix : {"", kLog}) {
    if (CompanionExists(path, suffix)) {
      dao::Raise(DaoError::kDatabaseExists, dao::source::kWorkspace, path + suffix);
    }
  }
  const UnfinishedFile file(path, {kLog, "-shm", "-journal"});
  write(file.path());
  const std::error_code error = file.TakePlace();
  if (error == std::errc::file_exists) {
    dao::Raise(DaoError::kDatabaseExists, dao::source::kWorkspace, path);
  }
  if (error) dao::Raise(DaoError::kAccessDenied, dao::source::kWorkspace, path);
}

std::string ImmutableUri(const std::string& path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uri = "file:";
  if (path.size() > 1 && path[1] == ':') uri += '/';  // before a drive
  for (const char c : path) {
    if (c == '%' || c == '?' || c == '#') {
      uri += '%';
      uri += kDigits[static_cast<unsigned char>(c) >> 4];
      uri += kDigits[static_cast<unsigned char>(c) & 15];
    } else {
      uri += c == '\\' && path[1] == ':' ? '/' : c;
    }
  }
  return uri + "?immutable=1";
}

}  // namespace ambrelio::embedded
