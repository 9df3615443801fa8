#include "ambrelio/engine/embedded/jet/statement_words.h"

#include <algorithm>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/sql/syntax_error.h"
#include "ambrelio/engine/embedded/sql/token_stream.h"

namespace ambrelio::embedded::jet {

using sql::Lexeme;
using sql::TokenKind;

Words::Words(std::string_view text) : text_(text) {
  auto words = std::make_shared<std::vector<Word>>();
  sql::Scanner scanner(text);
  std::vector<size_t> open;
  for (Lexeme lexeme = scanner.Next(); lexeme.kind != TokenKind::kEnd; lexeme = scanner.Next()) {
    if (lexeme.IsSymbol(')')) {
      if (open.empty()) sql::RaiseNear(dao::DaoError::kExpressionSyntax, text, lexeme.offset);
      open.pop_back();
    }
    words->push_back({lexeme, open.size()});
    if (lexeme.IsSymbol('(')) open.push_back(lexeme.offset);
  }
  if (!open.empty()) sql::RaiseNear(dao::DaoError::kExpressionSyntax, text, open.back());
  end_ = words->size();
  all_ = std::move(words);
}

std::string Words::Text() const {
  if (empty()) return "";
  const Lexeme& last = (*this)[size() - 1];
  const size_t begin = (*this)[0].offset;
  return std::string(text_.substr(begin, last.offset + last.text.size() - begin));
}

std::optional<std::string> Words::Name() const {
  if (size() != 1) return std::nullopt;
  const Lexeme& word = (*this)[0];
  if (word.kind == TokenKind::kName) {
    return std::string(word.text.substr(1, word.text.size() - 2));
  }
  if (word.kind != TokenKind::kWord || sql::IsReserved(word.text)) return std::nullopt;
  return std::string(word.text);
}

Words Words::Part(size_t begin, size_t end) const {
  Words part = *this;
  part.begin_ = begin_ + std::min(begin, size());
  part.end_ = std::max(part.begin_, begin_ + std::min(end, size()));
  return part;
}

Words Words::Unwrapped() const {
  Words words = *this;
  while (words.IsSymbol(0, '(') && words.Closing(0) + 1 == words.size()) {
    words = words.Part(1, words.size() - 1);
  }
  return words;
}

size_t Words::Find(std::string_view word, size_t from) const {
  for (size_t i = from; i < size(); ++i) {
    if (IsOutside(i) && IsWord(i, word)) return i;
  }
  return size();
}

size_t Words::FindLast(std::string_view word) const {
  for (size_t i = size(); i-- > 0;) {
    if (IsOutside(i) && IsWord(i, word)) return i;
  }
  return size();
}

size_t Words::Closing(size_t i) const {
  const size_t depth = (*all_)[begin_ + i].depth;
  do {
    ++i;
  } while ((*all_)[begin_ + i].depth != depth);
  return i;
}

template <class IsSeparator>
std::vector<Words> Words::SplitAt(IsSeparator is_separator) const {
  std::vector<Words> parts;
  if (empty()) return parts;
  size_t start = 0;
  for (size_t i = 0; i < size(); ++i) {
    if (!IsOutside(i) || !is_separator(i)) continue;
    parts.push_back(Part(start, i));
    start = i + 1;
  }
  parts.push_back(From(start));
  return parts;
}

std::vector<Words> Words::Split(char symbol) const {
  return SplitAt([&](size_t i) { return IsSymbol(i, symbol); });
}

std::vector<Words> Words::SplitAtWord(std::string_view word) const {
  return SplitAt([&](size_t i) { return IsWord(i, word); });
}

}  // namespace ambrelio::embedded::jet
