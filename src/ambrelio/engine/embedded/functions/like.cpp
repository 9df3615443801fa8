#include <optional>

#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::embedded {

namespace {

std::string_view OneCharacter(std::string_view text, size_t at) {
  size_t end = at;
  NextCharacter(text, end);
  return text.substr(at, end - at);
}

bool SameCharacter(std::string_view a, std::string_view b) {
  size_t at_a = 0;
  size_t at_b = 0;
  return ToLower(NextCharacter(a, at_a)) == ToLower(NextCharacter(b, at_b));
}

// The inside of a bracket: single characters and ranges. Ranges go by the order of text, so that
// [a-z] takes in accented letters; a hyphen at either end is a hyphen.
bool InList(std::string_view character, std::string_view list) {
  for (size_t at = 0; at < list.size();) {
    const std::string_view first = OneCharacter(list, at);
    at += first.size();
    const bool range = at + 1 < list.size() && list[at] == '-';
    if (!range) {
      if (SameCharacter(character, first)) return true;
      continue;
    }
    const std::string_view last = OneCharacter(list, at + 1);
    at += 1 + last.size();
    if (CompareText(first, character) <= 0 && CompareText(character, last) <= 0) return true;
  }
  return false;
}

// One element of a pattern other than `*`.
struct Element {
  enum class Kind : char { kCharacter, kAny, kDigit, kList, kExcept } kind;
  std::string_view text;  // the character, or the inside of the bracket
  size_t end;             // where the next element starts
};

std::optional<Element> Bracket(std::string_view pattern, size_t at) {
  const size_t close = pattern.find(']', at);
  if (close == std::string_view::npos) return std::nullopt;
  const std::string_view inside = pattern.substr(at + 1, close - at - 1);
  if (inside.size() > 1 && inside.front() == '!') {
    return Element{Element::Kind::kExcept, inside.substr(1), close + 1};
  }
  return Element{Element::Kind::kList, inside, close + 1};
}

Element ElementAt(std::string_view pattern, size_t at) {
  const std::string_view one = OneCharacter(pattern, at);
  const size_t end = at + one.size();
  if (one == "?") return {Element::Kind::kAny, one, end};
  if (one == "#") return {Element::Kind::kDigit, one, end};
  if (one == "[") {
    if (const auto bracket = Bracket(pattern, at)) return *bracket;
  }
  return {Element::Kind::kCharacter, one, end};
}

bool Accepts(const Element& element, std::string_view character) {
  switch (element.kind) {
    case Element::Kind::kAny:
      return true;
    case Element::Kind::kDigit:
      return character.front() >= '0' && character.front() <= '9';
    case Element::Kind::kList:
      return InList(character, element.text);
    case Element::Kind::kExcept:
      return !InList(character, element.text);
    case Element::Kind::kCharacter:
      break;
  }
  return SameCharacter(character, element.text);
}

}  // namespace

bool MatchesLike(std::string_view text, std::string_view pattern) {
  size_t text_at = 0;
  size_t pattern_at = 0;
  // Where to go on when what follows the last star does not fit: it takes one character more.
  std::optional<size_t> after_star;
  size_t star_end = 0;
  while (true) {
    if (pattern_at < pattern.size() && pattern[pattern_at] == '*') {
      after_star = ++pattern_at;
      star_end = text_at;
      continue;
    }
    if (pattern.substr(pattern_at).starts_with("[]")) {  // stands for nothing
      pattern_at += 2;
      continue;
    }
    if (text_at == text.size() && pattern_at == pattern.size()) return true;
    if (text_at < text.size() && pattern_at < pattern.size()) {
      const Element element = ElementAt(pattern, pattern_at);
      const std::string_view character = OneCharacter(text, text_at);
      if (Accepts(element, character)) {
        pattern_at = element.end;
        text_at += character.size();
        continue;
      }
    }
    if (!after_star || star_end == text.size()) return false;
    star_end += OneCharacter(text, star_end).size();
    text_at = star_end;
    pattern_at = *after_star;
  }
}

}  // namespace ambrelio::embedded
