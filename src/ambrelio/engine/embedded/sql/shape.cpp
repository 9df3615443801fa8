#include "ambrelio/engine/embedded/sql/lexer.h"
#include "ambrelio/engine/embedded/sql/scanner.h"
#include "ambrelio/engine/embedded/sql/shape_rule.h"

namespace ambrelio::embedded::sql {
namespace {

// A question mark begins no word of the dialect, so a mark cannot be mistaken for text.
std::string_view Mark(const Variant& literal) {
  switch (literal.type()) {
    case VariantType::kLong:
      return "?l";
    case VariantType::kDouble:
      return "?d";
    case VariantType::kDate:
      return "?D";
    default:
      return "?t";
  }
}

// Everything but literals, which may hold text: those keep their case.
void AppendFolded(std::string_view text, std::string& key) {
  const size_t begin = key.size();
  key += text;
  char* const folded = key.data() + begin;
  for (size_t i = 0; i < text.size(); ++i) folded[i] = FoldAscii(folded[i]);
}

}  // namespace

Shape ShapeOf(std::string_view text) {
  Shape shape;
  shape.key.reserve(text.size() + text.size() / 4);
  Scanner scanner(text);
  ShapeRule rule;
  for (Lexeme lexeme = scanner.Next(); lexeme.kind != TokenKind::kEnd; lexeme = scanner.Next()) {
    if (!shape.key.empty()) shape.key += ' ';
    if (rule.TakesOut(lexeme)) {
      shape.literals.push_back(LiteralValue(text, lexeme));
      shape.key += Mark(shape.literals.back());
    } else if (lexeme.kind == TokenKind::kLiteral) {
      shape.key += lexeme.text;
    } else {
      AppendFolded(lexeme.text, shape.key);
    }
  }
  return shape;
}

}  // namespace ambrelio::embedded::sql
