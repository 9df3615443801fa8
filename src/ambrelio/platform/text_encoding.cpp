#include "ambrelio/platform/text_encoding.h"

#include <algorithm>
#include <array>

namespace ambrelio {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kMalformed = 0xFFFFFFFF;

// What the bytes 0x80 to 0x9F mean in Windows-1252; all others mean the character of their number.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// How many continuation bytes follow this first byte; 4 when it is none.
size_t ContinuationsAfter(unsigned char first) {
  if (first < 0x80) return 0;
  if (first >= 0xC2 && first < 0xE0) return 1;
  if (first >= 0xE0 && first < 0xF0) return 2;
  if (first >= 0xF0 && first < 0xF5) return 3;
  return 4;
}

// Takes one character off the front of non-empty UTF-8 text; kMalformed, and one byte taken, when
// none is there. Overlong forms and surrogates are malformed.
char32_t TakeUtf8(std::string_view& text) {
  auto first = static_cast<unsigned char>(text.front());
  size_t count = ContinuationsAfter(first);
  if (count == 0) {
    text.remove_prefix(1);
    return first;
  }
  constexpr std::array<char32_t, 4> kLowest = {0, 0x80, 0x800, 0x10000};
  bool whole = count < 4 && text.size() > count &&
               std::all_of(text.begin() + 1, text.begin() + 1 + count, IsContinuation);
  if (whole) {
    char32_t character = first & (0x3FU >> count);
    for (size_t i = 1; i <= count; ++i) {
      character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    }
    bool surrogate = character >= 0xD800 && character < 0xE000;
    if (character >= kLowest.at(count) && character <= 0x10FFFF && !surrogate) {
      text.remove_prefix(count + 1);
      return character;
    }
  }
  text.remove_prefix(1);
  return kMalformed;
}

void AppendUtf8(std::string& text, char32_t character) {
  auto add = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    add(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    add(0xE0 | character >> 12);
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  } else {
    add(0xF0 | character >> 18);
    add(0x80 | (character >> 12 & 0x3F));
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  }
}

char Windows1252Byte(char32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
    return static_cast<char>(character);
  }
  const auto* found = std::find(kWindows1252.begin(), kWindows1252.end(), character);
  if (found == kWindows1252.end() || character == kReplacement) return '?';
  return static_cast<char>(0x80 + (found - kWindows1252.begin()));
}

char32_t LowerCase(char32_t character) {
  if (character >= 'A' && character <= 'Z') return character + 32;
  if (character >= 0xC0 && character <= 0xDE && character != 0xD7) return character + 32;
  if (character == 0x0152 || character == 0x0160 || character == 0x017D) return character + 1;
  return character == 0x0178 ? 0xFF : character;
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
  while (!text.empty()) {
    if (TakeUtf8(text) == kMalformed) return false;
  }
  return true;
}

std::string Windows1252ToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (char c : bytes) {
    auto byte = static_cast<unsigned char>(c);
    AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kWindows1252.at(byte - 0x80U) : byte);
  }
  return text;
}

std::string Utf8ToWindows1252(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) bytes += Windows1252Byte(TakeUtf8(text));
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
    AppendUtf8(utf8, unit);
  }
  return utf8;
}

std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    char32_t character = TakeUtf8(text);
    if (character == kMalformed) character = kReplacement;
    if (character >= 0x10000) {
      units += static_cast<char16_t>(0xD7C0 + (character >> 10));
      units += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
      units += static_cast<char16_t>(character);
    }
  }
  return units;
}

std::string LowerCase(std::string_view text) {
  std::string lower;
  lower.reserve(text.size());
  while (!text.empty()) {
    char first = text.front();
    char32_t character = TakeUtf8(text);
    if (character == kMalformed) {
      lower += first;
    } else {
      AppendUtf8(lower, LowerCase(character));
    }
  }
  return lower;
}

size_t Utf8Length(std::string_view text) {
  size_t length = 0;
  for (; !text.empty(); ++length) TakeUtf8(text);
  return length;
}

std::string_view Utf8Prefix(std::string_view text, size_t count) {
  std::string_view rest = text;
  for (; count > 0 && !rest.empty(); --count) TakeUtf8(rest);
  return text.substr(0, text.size() - rest.size());
}

}  // namespace ambrelio
