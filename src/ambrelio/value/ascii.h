// What the readers of text share: the characters that numbers, dates and names are made of.
// Independent of the C locale; bytes beyond ASCII belong to no class.
#pragma once

#include <algorithm>
#include <string_view>

namespace ambrelio {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }
constexpr char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

constexpr bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

// Without blanks and tabs at both ends.
constexpr std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace ambrelio
