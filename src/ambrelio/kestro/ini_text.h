// The bytes of a settings file, with its values found and changed in place.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ambrelio::kestro {

class IniText {
 public:
  explicit IniText(std::string bytes);

  // The value without outer blanks and one pair of quotation marks, as UTF-8; "" when there is
  // none.
  std::string Find(std::string_view section, std::string_view key) const;
  // Puts the value in the key's line, else in a new line at the end of the section, else in a new
  // section at the end. What the encoding cannot hold does not read back as it was given.
  void Set(std::string_view section, std::string_view key, std::string_view value);

  const std::string& bytes() const { return bytes_; }

 private:
  enum class Encoding { kWindows1252, kUtf8, kUtf16Little, kUtf16Big };

  // Offsets in bytes_: the text lies in [begin, end), the next line starts at `next`.
  struct Line {
    size_t begin;
    size_t end;
    size_t next;
  };
  struct Place {
    std::optional<Line> line;           // of the key
    std::optional<size_t> section_end;  // behind the section's last line that is not blank
  };

  bool is_utf16() const {
    return encoding_ == Encoding::kUtf16Little || encoding_ == Encoding::kUtf16Big;
  }
  size_t unit() const { return is_utf16() ? 2 : 1; }
  char16_t UnitAt(size_t offset) const;
  Line LineAt(size_t begin) const;
  size_t ValueBegin(const Line& line) const;
  // The line end that the file uses, as text.
  std::string LineEnd() const;
  std::string Decode(size_t begin, size_t end) const;
  std::string Encode(std::string_view text) const;
  Place Locate(std::string_view section, std::string_view key) const;
  // Inserts whole lines, after ending a last line that has no line end.
  void InsertLines(size_t offset, std::string lines);

  std::string bytes_;
  Encoding encoding_ = Encoding::kUtf8;
  size_t begin_ = 0;  // behind the byte order mark
  size_t end_ = 0;    // before half a character, if the file ends with one
};

}  // namespace ambrelio::kestro
