// A pattern of `Format` in its parts, and the printers of the three kinds of pattern.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/value/ole_date.h"

namespace ambrelio::embedded {

// One character of a pattern, or a whole quoted piece. A literal stands for itself.
struct PatternPart {
  bool literal = false;
  std::string text;

  bool Is(char character) const { return !literal && text.size() == 1 && text[0] == character; }
  bool IsOneOf(std::string_view characters) const {
    return !literal && text.size() == 1 && characters.find(text[0]) != std::string_view::npos;
  }
};
using Pattern = std::vector<PatternPart>;

// Quotes make a literal, a backslash makes one of the next character.
Pattern ReadPattern(std::string_view text);
// The sections between `;`, at least one.
std::vector<Pattern> Sections(const Pattern& pattern);
// The text of a pattern that is all literals.
std::string Literal(const Pattern& pattern);

std::string FormatNumber(double value, const std::vector<Pattern>& sections);
std::string FormatDate(OleDate date, const Pattern& pattern);
std::string FormatText(std::string_view text, const std::vector<Pattern>& sections);

}  // namespace ambrelio::embedded
