#include "ambrelio/engine/embedded/functions/format_pattern.h"

#include <algorithm>

#include "ambrelio/platform/characters.h"

namespace ambrelio::embedded {

namespace {

constexpr std::string_view kPlaces = "@&";

// The characters of a text, stray bytes too.
std::vector<std::string_view> CharactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  for (size_t at = 0; at < text.size();) {
    const size_t start = at;
    NextCharacter(text, at);
    characters.push_back(text.substr(start, at - start));
  }
  return characters;
}

bool Has(const Pattern& pattern, char character) {
  return std::ranges::any_of(pattern,
                             [character](const PatternPart& part) { return part.Is(character); });
}

// The characters of a text laid into the places of a pattern. Filled from the right unless the
// pattern says otherwise, so that places left over come first; what has no place goes to the first
// one, or to the end when filled from the left.
std::string Fill(const std::vector<std::string_view>& characters, const Pattern& pattern,
                 bool from_left) {
  const auto places = static_cast<size_t>(std::ranges::count_if(
      pattern, [](const PatternPart& part) { return part.IsOneOf(kPlaces); }));
  const size_t surplus = characters.size() > places ? characters.size() - places : 0;
  const size_t missing = places > characters.size() ? places - characters.size() : 0;
  std::string filled;
  size_t place = 0;
  size_t next = 0;
  const auto take = [&](size_t count) {
    for (; count > 0; --count) filled += characters[next++];
  };
  for (const PatternPart& part : pattern) {
    if (part.IsOneOf("<>!")) continue;
    if (!part.IsOneOf(kPlaces)) {
      filled += part.text;
      continue;
    }
    const bool empty = from_left ? place >= characters.size() : place < missing;
    if (empty) {
      if (part.Is('@')) filled += ' ';
    } else {
      take(place == 0 && !from_left ? surplus + 1 : 1);
    }
    ++place;
  }
  take(characters.size() - next);
  return filled;
}

}  // namespace

Pattern ReadPattern(std::string_view text) {
  Pattern pattern;
  const std::vector<std::string_view> characters = CharactersOf(text);
  for (size_t i = 0; i < characters.size(); ++i) {
    if (characters[i] == "\\" && i + 1 < characters.size()) {
      pattern.push_back({true, std::string(characters[++i])});
    } else if (characters[i] == "\"") {
      PatternPart quoted{true, {}};
      while (++i < characters.size() && characters[i] != "\"") quoted.text += characters[i];
      pattern.push_back(quoted);
    } else {
      pattern.push_back({false, std::string(characters[i])});
    }
  }
  return pattern;
}

std::vector<Pattern> Sections(const Pattern& pattern) {
  std::vector<Pattern> sections(1);
  for (const PatternPart& part : pattern) {
    if (part.Is(';')) {
      sections.emplace_back();
    } else {
      sections.back().push_back(part);
    }
  }
  return sections;
}

std::string Literal(const Pattern& pattern) {
  std::string text;
  for (const PatternPart& part : pattern) text += part.text;
  return text;
}

std::string FormatText(std::string_view text, const std::vector<Pattern>& sections) {
  const Pattern& pattern = text.empty() && sections.size() > 1 ? sections[1] : sections[0];
  std::string changed(text);
  if (Has(pattern, '<')) changed = LowerCase(text);
  if (Has(pattern, '>')) changed = UpperCase(text);
  return Fill(CharactersOf(changed), pattern, Has(pattern, '!'));
}

}  // namespace ambrelio::embedded
