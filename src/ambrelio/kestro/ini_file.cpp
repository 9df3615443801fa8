#include "ambrelio/kestro/ini_file.h"

#include "ambrelio/kestro/ini_text.h"
#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::kestro {
namespace {

constexpr std::string_view kNoPartOfALine("\r\n\0", 3);

bool IsOneLine(std::string_view text) {
  return text.find_first_of(kNoPartOfALine) == std::string_view::npos;
}

bool IsSectionName(std::string_view name) {
  return IsOneLine(name) && name.find(']') == std::string_view::npos &&
         TrimBlanks(name).size() == name.size();
}

bool IsKeyName(std::string_view name) {
  return !name.empty() && IsOneLine(name) && name.find('=') == std::string_view::npos &&
         name.front() != '[' && name.front() != ';' && TrimBlanks(name).size() == name.size();
}

}  // namespace

std::string IniFile::Read(std::string_view key) const {
  auto bytes = ReadWholeFile(path_);
  return bytes ? IniText(std::move(*bytes)).Find(section_, key) : "";
}

void IniFile::Write(std::string_view key, std::string_view value) const {
  std::string where = path_ + " [" + section_ + "] " + std::string(key);
  if (!IsSectionName(section_) || !IsKeyName(key) || !IsOneLine(value)) {
    Raise(RuntimeError::kInvalidCall, where + ": not the text of one line of a settings file");
  }
  auto bytes = ReadWholeFile(path_);
  std::error_code ignored;
  if (!bytes && std::filesystem::exists(FilePath(path_), ignored)) {
    Raise(RuntimeError::kPathFileAccess, where + ": the file cannot be read");
  }
  IniText text(std::move(bytes).value_or(""));
  text.Set(section_, key, value);
  if (IniText(text.bytes()).Find(section_, key) != value) {
    Raise(RuntimeError::kInvalidCall, where + ": the file's encoding does not hold this value");
  }
  WriteFileAtomically(path_, text.bytes());
}

}  // namespace ambrelio::kestro
