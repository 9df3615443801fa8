#include "ambrelio/engine/embedded/sql/token_stream.h"

#include <algorithm>
#include <array>
#include <utility>

#include "ambrelio/engine/embedded/sql/scanner.h"
#include "ambrelio/engine/embedded/sql/syntax_error.h"

namespace ambrelio::embedded::sql {

// Only the words that the grammar needs to tell clauses and operators from names; `key`, `date`,
// `text` and the like are common column names.
bool IsReserved(std::string_view word) {
  static constexpr std::array<std::string_view, 50> kReserved = {
      "all",        "alter",  "and",    "any",   "as",       "asc",         "between", "by",
      "constraint", "create", "delete", "desc",  "distinct", "distinctrow", "drop",    "eqv",
      "exists",     "false",  "from",   "group", "having",   "imp",         "in",      "inner",
      "insert",     "into",   "is",     "join",  "left",     "like",        "mod",     "not",
      "null",       "on",     "or",     "order", "primary",  "right",       "select",  "set",
      "some",       "table",  "top",    "true",  "union",    "unique",      "update",  "values",
      "where",      "xor"};
  return std::any_of(kReserved.begin(), kReserved.end(),
                     [&](std::string_view reserved) { return IsSameWord(word, reserved); });
}

TokenStream::TokenStream(std::string_view text) : text_(text), tokens_(Tokenize(text)) {
  FindBracketedQueries();
}

// `((select ...) union ...)` is a query, `((select ...) + 1)` and `((select ...) as a inner join
// ...)` are not: what follows the inner bracket decides. Goes from the end to the start, where an
// inner bracket is known before the outer one.
void TokenStream::FindBracketedQueries() {
  const size_t end = tokens_.size() - 1;
  encloses_query_.resize(tokens_.size());
  std::vector<size_t> unopened;
  size_t inner_close = end;
  for (size_t i = end; i-- > 0;) {
    if (AtSymbol(")", i)) unopened.push_back(i);
    if (!AtSymbol("(", i)) continue;
    const size_t next = inner_close + 1;
    encloses_query_[i] = AtWord("select", i + 1) ||
                         (encloses_query_[i + 1] &&
                          (AtSymbol(")", next) || AtWord("union", next) || AtWord("order", next)));
    inner_close = unopened.empty() ? end : unopened.back();
    if (!unopened.empty()) unopened.pop_back();
  }
}

const Token& TokenStream::Peek(size_t ahead) const {
  return tokens_[std::min(position_ + ahead, tokens_.size() - 1)];
}

bool TokenStream::AtWord(std::string_view word, size_t ahead) const {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kWord && IsSameWord(token.text, word);
}

bool TokenStream::AtSymbol(std::string_view symbol, size_t ahead) const {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kSymbol && token.text == symbol;
}

bool TokenStream::AtName(size_t ahead) const {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kName ||
         (token.kind == TokenKind::kWord && !IsReserved(token.text));
}

Token TokenStream::Take() {
  if (AtEnd()) return tokens_.back();
  return std::move(tokens_[position_++]);
}

bool TokenStream::TakeWord(std::string_view word) {
  if (!AtWord(word)) return false;
  ++position_;
  return true;
}

bool TokenStream::TakeSymbol(std::string_view symbol) {
  if (!AtSymbol(symbol)) return false;
  ++position_;
  return true;
}

void TokenStream::ExpectWord(std::string_view word, dao::DaoError error) {
  if (!TakeWord(word)) Fail(error);
}

void TokenStream::ExpectSymbol(std::string_view symbol, dao::DaoError error) {
  if (!TakeSymbol(symbol)) Fail(error);
}

std::string TokenStream::ExpectName(dao::DaoError error) {
  if (!AtName()) Fail(error);
  return Take().text;
}

int TokenStream::ExpectWholeNumber(dao::DaoError error) {
  if (Peek().value.type() != VariantType::kLong) Fail(error);
  return Take().value.as<int32_t>();
}

void TokenStream::Fail(dao::DaoError error) const { FailAt(error, Peek().offset); }

void TokenStream::FailAt(dao::DaoError error, int offset) const {
  RaiseNear(error, text_, static_cast<size_t>(offset));
}

void TokenStream::FailTooComplex() const {
  RaiseTooComplex(text_, static_cast<size_t>(Peek().offset));
}

}  // namespace ambrelio::embedded::sql
