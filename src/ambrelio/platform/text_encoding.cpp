#include "ambrelio/platform/text_encoding.h"

#include <algorithm>
#include <array>

#include "ambrelio/platform/characters.h"

namespace ambrelio {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// What the bytes 0x80 to 0x9F mean in Windows-1252; all others mean the character of their number.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

char Windows1252Byte(char32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
    return static_cast<char>(character);
  }
  const auto* found = std::find(kWindows1252.begin(), kWindows1252.end(), character);
  if (found == kWindows1252.end() || character == kReplacement) return '?';
  return static_cast<char>(0x80 + (found - kWindows1252.begin()));
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    if (NextCharacter(text, at) >= kStrayByte) return false;
  }
  return true;
}

std::string Windows1252ToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (char c : bytes) {
    auto byte = static_cast<unsigned char>(c);
    AppendCharacter(text, byte >= 0x80 && byte < 0xA0 ? kWindows1252.at(byte - 0x80U) : byte);
  }
  return text;
}

std::string Utf8ToWindows1252(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (size_t at = 0; at < text.size();) bytes += Windows1252Byte(NextCharacter(text, at));
  return bytes;
}

std::string Utf16ToUtf8(std::u16string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t unit = text[i];
    bool high = unit >= 0xD800 && unit < 0xDC00;
    if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      unit = 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00U);
    } else if (unit >= 0xD800 && unit < 0xE000) {
      unit = kReplacement;
    }
    AppendCharacter(utf8, unit);
  }
  return utf8;
}

std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    char32_t character = NextCharacter(text, at);
    if (character >= kStrayByte) character = kReplacement;
    if (character >= 0x10000) {
      units += static_cast<char16_t>(0xD7C0 + (character >> 10));
      units += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
      units += static_cast<char16_t>(character);
    }
  }
  return units;
}

size_t Utf8Length(std::string_view text) {
  size_t length = 0;
  for (size_t at = 0; at < text.size(); ++length) NextCharacter(text, at);
  return length;
}

std::string_view Utf8Prefix(std::string_view text, size_t count) {
  size_t at = 0;
  for (; count > 0 && at < text.size(); --count) NextCharacter(text, at);
  return text.substr(0, at);
}

}  // namespace ambrelio
