// A statement taken apart at the words that begin its clauses.
#pragma once

#include <map>
#include <string_view>

#include "ambrelio/engine/embedded/jet/statement_words.h"

namespace ambrelio::embedded::jet {

// Raises 3001: these words cannot be kept as a stored query.
[[noreturn]] void FailToTakeApart(const Words& words);
// The same unless the words are a name.
std::string NameOf(const Words& words);

class Clauses {
 public:
  // Raises 3001 unless the words begin with that of a clause, and every clause comes once and in
  // its order.
  explicit Clauses(const Words& statement);

  bool Has(std::string_view word) const { return clauses_.contains(word); }
  // What stands behind the word of a clause; no words when there is no such clause.
  Words Take(std::string_view word);
  // The same of a word that goes together with `by`.
  Words TakeBy(std::string_view word);
  // Raises 3001 when a clause was not taken.
  void ExpectAllTaken() const;

 private:
  std::map<std::string_view, Words> clauses_;
};

}  // namespace ambrelio::embedded::jet
