#include "ambrelio/engine/embedded/sql/lexer.h"

#include "ambrelio/engine/embedded/sql/scanner.h"
#include "ambrelio/engine/embedded/sql/shape_rule.h"

namespace ambrelio::embedded::sql {

std::vector<Token> Tokenize(std::string_view text) {
  std::vector<Token> tokens;
  Scanner scanner(text);
  ShapeRule rule;
  int slots = 0;
  do {
    const Lexeme lexeme = scanner.Next();
    Token token;
    token.kind = lexeme.kind;
    token.offset = static_cast<int>(lexeme.offset);
    if (rule.TakesOut(lexeme)) token.slot = slots++;
    if (lexeme.kind == TokenKind::kLiteral) {
      token.value = LiteralValue(text, lexeme);
    } else if (lexeme.kind == TokenKind::kName) {
      token.text = lexeme.text.substr(1, lexeme.text.size() - 2);
    } else {
      token.text = lexeme.text;
    }
    tokens.push_back(std::move(token));
  } while (tokens.back().kind != TokenKind::kEnd);
  return tokens;
}

}  // namespace ambrelio::embedded::sql
