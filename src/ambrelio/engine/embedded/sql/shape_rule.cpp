#include "ambrelio/engine/embedded/sql/shape_rule.h"

namespace ambrelio::embedded::sql {
namespace {

bool IsWholeNumber(const Lexeme& lexeme) {
  return lexeme.text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

bool ShapeRule::TakesOut(const Lexeme& lexeme) {
  bool takes_out = false;
  switch (lexeme.kind) {
    case TokenKind::kWord:
      SeeWord(lexeme);
      break;
    case TokenKind::kSymbol:
      SeeSymbol(lexeme);
      break;
    case TokenKind::kLiteral:
      takes_out = !is_definition_ && !(keeps_number_ && IsWholeNumber(lexeme));
      [[fallthrough]];
    default:
      keeps_number_ = false;
      after_order_ = false;
  }
  at_start_ = false;
  return takes_out;
}

void ShapeRule::SeeWord(const Lexeme& word) {
  if (at_start_) {
    is_definition_ = word.IsWord("create") || word.IsWord("alter") || word.IsWord("drop");
  }
  const bool begins_list = after_order_ && word.IsWord("by");
  if (begins_list) in_order_list_.back() = '\1';
  keeps_number_ = begins_list || word.IsWord("top");
  after_order_ = word.IsWord("order");
}

void ShapeRule::SeeSymbol(const Lexeme& symbol) {
  after_order_ = false;
  if (symbol.IsSymbol('(')) {
    in_order_list_.push_back('\0');  // (1) is as good as 1
  } else if (symbol.IsSymbol(',')) {
    keeps_number_ = in_order_list_.back() != '\0';
  } else {
    keeps_number_ = false;
    if (symbol.IsSymbol(')') && in_order_list_.size() > 1) in_order_list_.pop_back();
  }
}

}  // namespace ambrelio::embedded::sql
