// A settings file: sections in brackets, key=value lines. Names compare without regard to case.
//
// Every read opens the file anew; nothing is cached. Files are Windows-1252 unless they start with
// a UTF-8 or UTF-16 mark or are valid UTF-8. A write changes its own line only and keeps every
// other byte, the encoding and the line ends; it is atomic (a reader sees the old file or the new
// one) and makes the file when it is missing.
#pragma once

#include <string>
#include <string_view>

namespace ambrelio::kestro {

class IniFile {
 public:
  IniFile() = default;
  IniFile(std::string path, std::string section)
      : path_(std::move(path)), section_(std::move(section)) {}

  void SetFile(std::string path) { path_ = std::move(path); }
  void SetSection(std::string section) { section_ = std::move(section); }

  // The value without outer blanks and then without one pair of outer quotation marks, "" when the
  // file, the section or the key is missing. The first of several equal keys counts.
  std::string Read(std::string_view key) const;
  // Read gives exactly `value` afterwards, so one that begins or ends with blanks is put in
  // quotation marks. 5 (invalid call) when a name or the value does not fit in a line of the file
  // or in its encoding; 75 (path/file access error) when the file cannot be read or written. The
  // old file is then untouched.
  void Write(std::string_view key, std::string_view value) const;

 private:
  std::string path_;
  std::string section_;
};

}  // namespace ambrelio::kestro
