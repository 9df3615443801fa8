// The words of a statement in the Jet dialect, and its shape.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::embedded::sql {

enum class TokenKind : uint8_t {
  kWord,     // an unquoted name or keyword; letters beyond ASCII are allowed
  kName,     // [name] or `name`: never a keyword
  kLiteral,  // #date#, 'text', "text", number
  kSymbol,   // ( ) , . ; * + - / \ ^ & = < > <= >= <> !
  kEnd,
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string text;  // word, name or symbol as written, without the quotes of a name
  Variant value;     // kLiteral
  int slot = -1;     // kLiteral: its place in Shape::literals, -1 when it stays in the key
  int offset = 0;    // in bytes from the start of the statement
};

// Splits a statement. Raises 3075 for an unclosed quote, bracket or date, and for a bad date or
// number. (In `#a/b/yyyy#` a is the month; where that is impossible the two change places.)
std::vector<Token> Tokenize(std::string_view text);

// A statement's text with its literals taken out, as a key under which what was prepared for one
// text serves every other text that differs only in literals.
//
// Words are folded to lower case and blanks to one. A literal becomes a mark of its type (Long,
// Double, Text, Date); those that decide what the statement is (the number of `top`, places in
// `order by`) stay in the key.
struct Shape {
  std::string key;
  std::vector<Variant> literals;  // in the order of Expr::slot
};

Shape ShapeOf(std::string_view text);

}  // namespace ambrelio::embedded::sql
