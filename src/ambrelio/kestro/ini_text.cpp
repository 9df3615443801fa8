#include "ambrelio/kestro/ini_text.h"

#include "ambrelio/platform/characters.h"
#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/ascii.h"

namespace ambrelio::kestro {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";

bool IsQuoted(std::string_view value) {
  return value.size() >= 2 && value.front() == value.back() &&
         (value.front() == '"' || value.front() == '\'');
}

// The value as a line holds it: in quotation marks when reading would take something off it.
std::string Stored(std::string_view value) {
  if (!IsQuoted(value) && TrimBlanks(value).size() == value.size()) return std::string(value);
  std::string quoted(1, '"');
  return quoted.append(value).append(1, '"');
}

// The name of a section from its line; nothing for other lines.
std::optional<std::string_view> SectionName(std::string_view line) {
  if (line.empty() || line.front() != '[') return std::nullopt;
  size_t close = line.find(']');
  if (close == std::string_view::npos) return std::nullopt;
  return TrimBlanks(line.substr(1, close - 1));
}

// The key from its line; nothing for comments and lines that are no setting.
std::optional<std::string_view> KeyName(std::string_view line) {
  size_t equals = line.find('=');
  if (equals == std::string_view::npos || line.front() == ';') return std::nullopt;
  return TrimBlanks(line.substr(0, equals));
}

}  // namespace

IniText::IniText(std::string bytes) : bytes_(std::move(bytes)), end_(bytes_.size()) {
  std::string_view view = bytes_;
  if (view.starts_with(kUtf16LittleMark) || view.starts_with(kUtf16BigMark)) {
    encoding_ = view.starts_with(kUtf16BigMark) ? Encoding::kUtf16Big : Encoding::kUtf16Little;
    begin_ = kUtf16LittleMark.size();
    end_ -= end_ % 2;
  } else if (view.starts_with(kUtf8Mark)) {
    begin_ = kUtf8Mark.size();
  } else if (!IsValidUtf8(view)) {
    encoding_ = Encoding::kWindows1252;
  }
}

char16_t IniText::UnitAt(size_t offset) const {
  auto byte = [this](size_t at) { return static_cast<unsigned char>(bytes_[at]); };
  if (!is_utf16()) return byte(offset);
  size_t low = encoding_ == Encoding::kUtf16Little ? offset : offset + 1;
  size_t high = encoding_ == Encoding::kUtf16Little ? offset + 1 : offset;
  return static_cast<char16_t>(byte(high) << 8 | byte(low));
}

IniText::Line IniText::LineAt(size_t begin) const {
  size_t end = begin;
  while (end < end_ && UnitAt(end) != '\r' && UnitAt(end) != '\n') end += unit();
  if (end == end_) return {begin, end, end};
  size_t next = end + unit();
  if (UnitAt(end) == '\r' && next < end_ && UnitAt(next) == '\n') next += unit();
  return {begin, end, next};
}

size_t IniText::ValueBegin(const Line& line) const {
  size_t offset = line.begin;
  while (offset < line.end && UnitAt(offset) != '=') offset += unit();
  do {
    offset += unit();
  } while (offset < line.end && (UnitAt(offset) == ' ' || UnitAt(offset) == '\t'));
  return offset;
}

std::string IniText::LineEnd() const {
  Line first = LineAt(begin_);
  return first.next == first.end ? "\r\n" : Decode(first.end, first.next);
}

std::string IniText::Decode(size_t begin, size_t end) const {
  std::string_view bytes = std::string_view(bytes_).substr(begin, end - begin);
  if (encoding_ == Encoding::kWindows1252) return Windows1252ToUtf8(bytes);
  if (encoding_ == Encoding::kUtf8) return Utf16ToUtf8(Utf8ToUtf16(bytes));
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t offset = begin; offset < end; offset += unit()) units += UnitAt(offset);
  return Utf16ToUtf8(units);
}

std::string IniText::Encode(std::string_view text) const {
  if (encoding_ == Encoding::kWindows1252) return Utf8ToWindows1252(text);
  if (encoding_ == Encoding::kUtf8) return std::string(text);
  std::string bytes;
  for (char16_t character : Utf8ToUtf16(text)) {
    auto high = static_cast<char>(character >> 8);
    auto low = static_cast<char>(character & 0xFF);
    bytes += encoding_ == Encoding::kUtf16Little ? low : high;
    bytes += encoding_ == Encoding::kUtf16Little ? high : low;
  }
  return bytes;
}

IniText::Place IniText::Locate(std::string_view section, std::string_view key) const {
  std::string wanted_section = LowerCase(section);
  std::string wanted_key = LowerCase(key);
  Place place;
  // Lines before the first section belong to the one without a name.
  bool inside = section.empty();
  bool first_time = inside;
  if (inside) place.section_end = begin_;
  for (size_t offset = begin_; offset < end_;) {
    Line line = LineAt(offset);
    offset = line.next;
    std::string decoded = Decode(line.begin, line.end);
    std::string_view text = TrimBlanks(decoded);
    if (text.empty()) continue;
    if (auto name = SectionName(text)) {
      inside = LowerCase(*name) == wanted_section;
      first_time = inside && !place.section_end;
    } else if (auto name_of_key = KeyName(text); inside && name_of_key) {
      if (LowerCase(*name_of_key) == wanted_key) {
        place.line = line;
        return place;
      }
    }
    if (first_time) place.section_end = line.next;
  }
  return place;
}

std::string IniText::Find(std::string_view section, std::string_view key) const {
  Place place = Locate(section, key);
  if (!place.line) return "";
  std::string decoded = Decode(ValueBegin(*place.line), place.line->end);
  std::string_view value = TrimBlanks(decoded);
  return std::string(IsQuoted(value) ? value.substr(1, value.size() - 2) : value);
}

void IniText::Set(std::string_view section, std::string_view key, std::string_view value) {
  Place place = Locate(section, key);
  if (place.line) {
    size_t begin = ValueBegin(*place.line);
    std::string encoded = Encode(Stored(value));
    bytes_.replace(begin, place.line->end - begin, encoded);
    end_ += encoded.size() - (place.line->end - begin);
    return;
  }
  std::string line_end = LineEnd();
  std::string lines;
  if (!place.section_end) {
    if (end_ > begin_) lines += line_end;
    lines.append(1, '[').append(section).append(1, ']').append(line_end);
  }
  lines.append(key).append(1, '=').append(Stored(value)).append(line_end);
  InsertLines(place.section_end.value_or(end_), std::move(lines));
}

void IniText::InsertLines(size_t offset, std::string lines) {
  if (offset > begin_ && UnitAt(offset - unit()) != '\r' && UnitAt(offset - unit()) != '\n') {
    lines.insert(0, LineEnd());
  }
  std::string encoded = Encode(lines);
  bytes_.insert(offset, encoded);
  end_ += encoded.size();
}

}  // namespace ambrelio::kestro
