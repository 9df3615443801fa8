// The words of a statement, or of a stretch of it, that know how they are written in its text.
//
// What stands in brackets belongs to the brackets: looking for words and splitting see only what
// stands outside all brackets of the stretch.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/engine/embedded/sql/scanner.h"

namespace ambrelio::embedded::jet {

class Words {
 public:
  Words() = default;
  // `text` must outlive the words. Raises 3075 for what is no text of words, and for brackets that
  // do not fit.
  explicit Words(std::string_view text);

  size_t size() const { return end_ - begin_; }
  bool empty() const { return begin_ == end_; }
  const sql::Lexeme& operator[](size_t i) const { return (*all_)[begin_ + i].lexeme; }
  bool IsWord(size_t i, std::string_view word) const {
    return i < size() && (*this)[i].IsWord(word);
  }
  bool IsSymbol(size_t i, char symbol) const { return i < size() && (*this)[i].IsSymbol(symbol); }

  // As the author wrote them.
  std::string Text() const;
  // The name that this one word is, without its brackets; nothing when these words are no name.
  std::optional<std::string> Name() const;

  Words Part(size_t begin, size_t end) const;
  Words From(size_t begin) const { return Part(begin, size()); }
  // Without brackets around the whole, however many.
  Words Unwrapped() const;

  // Whether a word stands outside all brackets.
  bool IsOutside(size_t i) const { return (*all_)[begin_ + i].depth == (*all_)[begin_].depth; }
  // Where `word` stands first, from a place on; size() when it does not.
  size_t Find(std::string_view word, size_t from = 0) const;
  size_t FindLast(std::string_view word) const;
  // The word that closes the bracket at `i`.
  size_t Closing(size_t i) const;
  // What stands between the symbols; of no words, nothing.
  std::vector<Words> Split(char symbol) const;
  std::vector<Words> SplitAtWord(std::string_view word) const;

 private:
  struct Word {
    sql::Lexeme lexeme;
    size_t depth;  // of a bracket, that of what it stands in
  };

  template <class IsSeparator>
  std::vector<Words> SplitAt(IsSeparator is_separator) const;

  std::string_view text_;
  std::shared_ptr<const std::vector<Word>> all_;
  size_t begin_ = 0;
  size_t end_ = 0;
};

}  // namespace ambrelio::embedded::jet
