// The characters of UTF-8 text, one at a time, and their case.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ambrelio {

// What a byte that is no UTF-8 reads as: a character of its own beyond Unicode, so that any bytes
// can be walked and different ones stay different.
inline constexpr char32_t kStrayByte = 0x110000;

// The character beyond ASCII at `at`, which moves behind it.
char32_t NextWideCharacter(std::string_view text, size_t& at);

// The character at `at`, which moves behind it; `at` must lie within the text.
inline char32_t NextCharacter(std::string_view text, size_t& at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte >= 0x80) return NextWideCharacter(text, at);
  ++at;
  return byte;
}

// Whether a byte continues a character rather than starting one.
constexpr bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Appends a character as UTF-8; a stray byte as itself.
void AppendCharacter(std::string& text, char32_t character);

// Capitals from `first` to `last`, every `step`th one, with their small letters `distance` higher.
struct CaseRange {
  char32_t first;
  char32_t last;
  int32_t distance;
  uint32_t step;
};

// Latin, Greek and Cyrillic. The letters with no partner of one character (as the sharp s) stay.
inline constexpr auto kCaseRanges = std::to_array<CaseRange>({
    {U'A', U'Z', 32, 1},
    {0xC0, 0xD6, 32, 1},
    {0xD8, 0xDE, 32, 1},
    {0x100, 0x12E, 1, 2},
    {0x132, 0x136, 1, 2},
    {0x139, 0x147, 1, 2},
    {0x14A, 0x176, 1, 2},
    {0x178, 0x178, -121, 1},
    {0x179, 0x17D, 1, 2},
    {0x386, 0x386, 38, 1},
    {0x388, 0x38A, 37, 1},
    {0x38C, 0x38C, 64, 1},
    {0x38E, 0x38F, 63, 1},
    {0x391, 0x3A1, 32, 1},
    {0x3A3, 0x3AB, 32, 1},
    {0x400, 0x40F, 80, 1},
    {0x410, 0x42F, 32, 1},
});

constexpr char32_t ToLower(char32_t character) {
  for (const CaseRange& range : kCaseRanges) {
    if (character < range.first || character > range.last) continue;
    if ((character - range.first) % range.step != 0) continue;
    return static_cast<char32_t>(static_cast<int32_t>(character) + range.distance);
  }
  return character;
}

constexpr char32_t ToUpper(char32_t character) {
  for (const CaseRange& range : kCaseRanges) {
    const auto capital = static_cast<char32_t>(static_cast<int32_t>(character) - range.distance);
    if (capital < range.first || capital > range.last) continue;
    if ((capital - range.first) % range.step == 0) return capital;
  }
  return character;
}

// Every letter in the other case; what is no UTF-8 stays.
std::string LowerCase(std::string_view text);
std::string UpperCase(std::string_view text);
// Whether two texts differ in case at most.
bool SameText(std::string_view a, std::string_view b);

}  // namespace ambrelio
