#include "ambrelio/engine/embedded/sql/scanner.h"

#include <algorithm>
#include <array>

#include "ambrelio/engine/embedded/sql/syntax_error.h"

namespace ambrelio::embedded::sql {
namespace {

// The longest statement, in characters.
constexpr size_t kMaxLength = size_t{64} * 1024;

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool StartsWord(char c) {
  const char folded = FoldAscii(c);
  return (folded >= 'a' && folded <= 'z') || c == '_' || (static_cast<unsigned char>(c) & 0x80);
}

// Every text is scanned, also that of a statement which is prepared already: a table is quickest.
constexpr std::array<bool, 256> kGoesOnWord = [] {
  std::array<bool, 256> goes_on{};
  for (size_t i = 0; i < goes_on.size(); ++i) {
    const char c = static_cast<char>(i);
    goes_on[i] = StartsWord(c) || (c >= '0' && c <= '9');
  }
  return goes_on;
}();

bool IsTooLong(std::string_view text) {
  if (text.size() <= kMaxLength) return false;
  const auto continued = std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
  });
  return text.size() - static_cast<size_t>(continued) > kMaxLength;
}

}  // namespace

Scanner::Scanner(std::string_view text) : text_(text) {
  if (IsTooLong(text)) RaiseTooComplex(text, 0);
}

Lexeme Scanner::Next() {
  while (position_ < text_.size() && IsBlank(text_[position_])) ++position_;
  if (position_ == text_.size()) return Make(TokenKind::kEnd, position_);
  const char first = text_[position_];
  if (StartsWord(first)) return Make(TokenKind::kWord, EndOfWord());
  if (IsDigit(first) || (first == '.' && IsDigit(At(position_ + 1)))) {
    return Make(TokenKind::kLiteral, EndOfNumber());
  }
  switch (first) {
    case '\'':
    case '"':
      return Make(TokenKind::kLiteral, EndOfText());
    case '#':
      return Make(TokenKind::kLiteral, EndOfEnclosed('#'));
    case '[':
      return Make(TokenKind::kName, EndOfEnclosed(']'));
    case '`':
      return Make(TokenKind::kName, EndOfEnclosed('`'));
    default:
      return Make(TokenKind::kSymbol, EndOfSymbol());
  }
}

Lexeme Scanner::Make(TokenKind kind, size_t end) {
  const Lexeme lexeme{kind, text_.substr(position_, end - position_), position_};
  position_ = end;
  return lexeme;
}

size_t Scanner::EndOfWord() const {
  size_t end = position_ + 1;
  while (end < text_.size() && kGoesOnWord[static_cast<unsigned char>(text_[end])]) ++end;
  return end;
}

size_t Scanner::EndOfNumber() const {
  size_t end = position_;
  while (IsDigit(At(end))) ++end;
  if (At(end) == '.') {
    ++end;
    while (IsDigit(At(end))) ++end;
  }
  if (FoldAscii(At(end)) != 'e') return end;
  size_t exponent = end + 1;
  if (At(exponent) == '+' || At(exponent) == '-') ++exponent;
  if (!IsDigit(At(exponent))) return end;
  while (IsDigit(At(exponent))) ++exponent;
  return exponent;
}

// The closing quote ends the text, unless it is doubled.
size_t Scanner::EndOfText() const {
  const char quote = text_[position_];
  for (size_t end = position_ + 1; end < text_.size(); ++end) {
    if (text_[end] != quote) continue;
    if (At(end + 1) != quote) return end + 1;
    ++end;
  }
  RaiseNear(dao::DaoError::kExpressionSyntax, text_, position_);
}

size_t Scanner::EndOfEnclosed(char close) const {
  const size_t end = text_.find(close, position_ + 1);
  if (end == std::string_view::npos || end == position_ + 1) {
    RaiseNear(dao::DaoError::kExpressionSyntax, text_, position_);
  }
  return end + 1;
}

size_t Scanner::EndOfSymbol() const {
  const char first = text_[position_];
  const char second = At(position_ + 1);
  if (second == '=' && (first == '<' || first == '>')) return position_ + 2;
  if (second == '>' && first == '<') return position_ + 2;
  constexpr std::string_view kSymbols = "(),.;*+-/\\^&=<>!";
  if (kSymbols.find(first) == std::string_view::npos) {
    RaiseNear(dao::DaoError::kExpressionSyntax, text_, position_);
  }
  return position_ + 1;
}

}  // namespace ambrelio::embedded::sql
