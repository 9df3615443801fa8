// Finds where the words of a statement begin and end, without looking into them. Tokenize and
// ShapeOf both read through it, so they can never disagree about the words of a text.
#pragma once

#include <cstddef>
#include <string_view>

#include "ambrelio/engine/embedded/sql/lexer.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded::sql {

constexpr char FoldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether `text` is the lower-case word `word` in whatever case.
inline bool IsSameWord(std::string_view text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (FoldAscii(text[i]) != word[i]) return false;
  }
  return true;
}

// A token before its value is taken: quotes and brackets are still around it.
struct Lexeme {
  TokenKind kind = TokenKind::kEnd;
  std::string_view text;
  size_t offset = 0;

  bool IsWord(std::string_view word) const {
    return kind == TokenKind::kWord && IsSameWord(text, word);
  }
  bool IsSymbol(char symbol) const {
    return kind == TokenKind::kSymbol && text.size() == 1 && text.front() == symbol;
  }
};

class Scanner {
 public:
  // `text` must outlive the scanner. Raises 3075 when it is longer than a statement may be.
  explicit Scanner(std::string_view text);

  // The next lexeme; kEnd again and again after the last. Raises 3075 for an unclosed quote,
  // bracket or date and for a character that begins nothing.
  Lexeme Next();

 private:
  char At(size_t index) const { return index < text_.size() ? text_[index] : '\0'; }
  Lexeme Make(TokenKind kind, size_t end);
  size_t EndOfWord() const;
  size_t EndOfNumber() const;
  size_t EndOfText() const;
  size_t EndOfEnclosed(char close) const;
  size_t EndOfSymbol() const;

  std::string_view text_;
  size_t position_ = 0;
};

// The value of a kLiteral lexeme of the statement `text`. Raises 3075 for a number beyond Double
// and for a date that is none.
Variant LiteralValue(std::string_view text, const Lexeme& lexeme);

}  // namespace ambrelio::embedded::sql
