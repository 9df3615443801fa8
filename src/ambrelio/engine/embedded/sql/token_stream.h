// The words of a statement, read from left to right.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/sql/lexer.h"

namespace ambrelio::embedded::sql {

// Whether the word, in whatever case, cannot be a name unless it is quoted.
bool IsReserved(std::string_view word);

class TokenStream {
 public:
  // `text` must outlive the stream.
  explicit TokenStream(std::string_view text);

  // The token `ahead` places on; the end when there are not so many.
  const Token& Peek(size_t ahead = 0) const;
  bool AtEnd() const { return Peek().kind == TokenKind::kEnd; }
  // `word` in lower case.
  bool AtWord(std::string_view word, size_t ahead = 0) const;
  bool AtSymbol(std::string_view symbol, size_t ahead = 0) const;
  // A quoted name or a word that is not reserved.
  bool AtName(size_t ahead = 0) const;
  // At an opening bracket: whether it encloses a query, itself perhaps in brackets.
  bool AtBracketedQuery() const { return encloses_query_[position_]; }

  Token Take();
  // These step over what they look for and tell whether it was there.
  bool TakeWord(std::string_view word);
  bool TakeSymbol(std::string_view symbol);
  // These raise `error` when it is not there.
  void ExpectWord(std::string_view word, dao::DaoError error);
  void ExpectSymbol(std::string_view symbol, dao::DaoError error);
  std::string ExpectName(dao::DaoError error);
  int ExpectWholeNumber(dao::DaoError error);

  // Raises `error` with the text from the current token on, or from `offset` on.
  [[noreturn]] void Fail(dao::DaoError error) const;
  [[noreturn]] void FailAt(dao::DaoError error, int offset) const;
  [[noreturn]] void FailTooComplex() const;

 private:
  void FindBracketedQueries();

  std::string_view text_;
  std::vector<Token> tokens_;
  // For each token whether it is a bracket around a query.
  std::vector<bool> encloses_query_;
  size_t position_ = 0;
};

}  // namespace ambrelio::embedded::sql
