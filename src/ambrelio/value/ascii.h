// What the readers of text share: the characters that numbers, dates and names are made of.
// Independent of the C locale; bytes beyond ASCII belong to no class.
#pragma once

#include <algorithm>
#include <string_view>

namespace ambrelio {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }
// Blanks, and what ends a line or a page.
constexpr bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

constexpr bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

// Without characters of a kind at both ends.
template <class IsOfKind>
constexpr std::string_view Trim(std::string_view text, IsOfKind is_of_kind) {
  while (!text.empty() && is_of_kind(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_of_kind(text.back())) text.remove_suffix(1);
  return text;
}
constexpr std::string_view TrimBlanks(std::string_view text) { return Trim(text, IsBlank); }
constexpr std::string_view TrimWhiteSpace(std::string_view text) {
  return Trim(text, IsWhiteSpace);
}

}  // namespace ambrelio
