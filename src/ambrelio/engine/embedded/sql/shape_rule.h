// Which literals of a statement are taken out of its shape.
#pragma once

#include <string>

#include "ambrelio/engine/embedded/sql/scanner.h"

namespace ambrelio::embedded::sql {

// Sees a statement's lexemes one after the other. Whole numbers after `top` and at the start of an
// `order by` item decide what the statement is and stay; so does every literal of a definition
// (create, alter, drop).
class ShapeRule {
 public:
  // To be called for every lexeme in order: whether it is a literal that is taken out.
  bool TakesOut(const Lexeme& lexeme);

 private:
  void SeeWord(const Lexeme& word);
  void SeeSymbol(const Lexeme& symbol);

  bool at_start_ = true;
  bool is_definition_ = false;
  bool after_order_ = false;
  // A whole number that comes now stays.
  bool keeps_number_ = false;
  // For each open bracket, the statement itself first: whether its `order by` list has begun.
  std::string in_order_list_ = std::string(1, '\0');
};

}  // namespace ambrelio::embedded::sql
