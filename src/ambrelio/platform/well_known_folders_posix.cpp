#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/well_known_folders.h"
#include "ambrelio/value/ascii.h"

namespace ambrelio {
namespace {

bool IsAbsolute(std::string_view path) { return path.starts_with('/'); }

// "" when it is not set.
std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The folder that a variable names, "" when that is no absolute path.
std::string EnvironmentFolder(const char* name) {
  const std::string path = Environment(name);
  return IsAbsolute(path) ? path : "";
}

// "" without a home.
std::string BelowHome(const char* folder) {
  const std::string home = EnvironmentFolder("HOME");
  return home.empty() ? "" : home + "/" + folder;
}

std::string FirstKnown(std::initializer_list<std::string> folders) {
  for (const std::string& folder : folders) {
    if (!folder.empty()) return folder;
  }
  return "";
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

// The first absolute path of a list with colons, "" without one.
std::string FirstAbsolute(const std::string& list) {
  const std::vector<std::string> paths = Split(list, ':');
  const auto first = std::find_if(paths.begin(), paths.end(), IsAbsolute);
  return first == paths.end() ? "" : *first;
}

// Takes `prefix` off the front of the text, if it is there.
bool Take(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// The text up to the closing quote, a backslash taken from before each character that has one;
// nothing when the quote is not closed.
std::optional<std::string> Unquote(std::string_view text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') return plain;
    if (text[i] == '\\' && ++i == text.size()) break;
    plain += text[i];
  }
  return std::nullopt;
}

// The folder that a line `name="$HOME/folder"` or `name="/folder"` tells; nothing for any other
// line.
std::optional<std::string> UserFolderOfLine(std::string_view line, std::string_view name) {
  line = TrimBlanks(line);
  if (!Take(line, name)) return std::nullopt;
  line = TrimBlanks(line);
  if (!Take(line, "=")) return std::nullopt;
  line = TrimBlanks(line);
  if (!Take(line, "\"")) return std::nullopt;
  std::string home;
  if (Take(line, "$HOME")) {
    home = EnvironmentFolder("HOME");
    if (home.empty()) return std::nullopt;
    if (line.starts_with('"')) return home;  // a folder that is switched off
  }
  if (!IsAbsolute(line)) return std::nullopt;
  const auto folder = Unquote(line);
  if (!folder) return std::nullopt;
  return home + *folder;
}

// A folder of the desktop's user directories, the last line for it counting; else below the home.
std::string UserFolder(std::string_view name, const char* otherwise) {
  std::string folder = BelowHome(otherwise);
  const std::string config =
      FirstKnown({EnvironmentFolder("XDG_CONFIG_HOME"), BelowHome(".config")});
  if (config.empty()) return folder;
  const std::string text = ReadWholeFile(config + "/user-dirs.dirs").value_or("");
  for (const std::string& line : Split(text, '\n')) {
    if (auto told = UserFolderOfLine(line, name)) folder = std::move(*told);
  }
  return folder;
}

std::string TemporaryFolder() {
  std::error_code unknown;
  return std::filesystem::temp_directory_path(unknown).string();
}

std::string IfItExists(const char* folder) {
  std::error_code unknown;
  return std::filesystem::is_directory(folder, unknown) ? folder : "";
}

std::string Find(WellKnownFolder folder) {
  switch (folder) {
    case WellKnownFolder::kSharedData:
      return FirstKnown({FirstAbsolute(Environment("XDG_DATA_DIRS")), "/usr/local/share"});
    case WellKnownFolder::kUserData:
      return FirstKnown({EnvironmentFolder("XDG_DATA_HOME"), BelowHome(".local/share")});
    case WellKnownFolder::kPrograms:
      return FirstKnown({Environment("ProgramFiles"), Environment("programfiles"), "/opt"});
    case WellKnownFolder::kDocuments:
      return UserFolder("XDG_DOCUMENTS_DIR", "Documents");
    case WellKnownFolder::kDesktop:
      return UserFolder("XDG_DESKTOP_DIR", "Desktop");
    case WellKnownFolder::kSystemRoot:
      return FirstKnown({Environment("windir"), "/usr"});
    case WellKnownFolder::kSystem:
      return "/usr/lib";
    case WellKnownFolder::kSystem32Bits:
      return IfItExists("/usr/lib32");
    case WellKnownFolder::kTemporary:
      return TemporaryFolder();
    case WellKnownFolder::kDownloads:
      return UserFolder("XDG_DOWNLOAD_DIR", "Downloads");
  }
  return "";
}

}  // namespace

std::string FolderPath(WellKnownFolder folder) {
  std::string path = Find(folder);
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace ambrelio
