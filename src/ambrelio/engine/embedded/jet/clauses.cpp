#include "ambrelio/engine/embedded/jet/clauses.h"

#include <algorithm>
#include <array>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded::jet {
namespace {

// The words of all clauses, in the order in which they can follow each other.
constexpr auto kClauses =
    std::to_array<std::string_view>({"transform", "update", "delete", "select", "into", "set",
                                     "from", "where", "group", "having", "order", "pivot"});

// The place of a word among those of clauses; behind the last for any other.
size_t RankOf(const sql::Lexeme& word) {
  const auto found = std::find_if(kClauses.begin(), kClauses.end(),
                                  [&word](std::string_view clause) { return word.IsWord(clause); });
  return static_cast<size_t>(found - kClauses.begin());
}

// Only a crosstab has it, and elsewhere it is a name.
bool IsName(std::string_view clause, const Words& statement) {
  return clause == "pivot" && !statement.IsWord(0, "transform");
}

}  // namespace

void FailToTakeApart(const Words& words) {
  dao::Raise(dao::DaoError::kInvalidArgument, dao::source::kDatabase,
             "a stored query cannot be made of '" + words.Text() + "'.");
}

std::string NameOf(const Words& words) {
  const auto name = words.Name();
  if (!name) FailToTakeApart(words);
  return *name;
}

Clauses::Clauses(const Words& statement) {
  if (statement.empty() || RankOf(statement[0]) == kClauses.size()) FailToTakeApart(statement);
  size_t rank = RankOf(statement[0]);
  size_t start = 0;
  for (size_t i = 1; i < statement.size(); ++i) {
    const size_t next = statement.IsOutside(i) ? RankOf(statement[i]) : kClauses.size();
    if (next == kClauses.size() || IsName(kClauses[next], statement)) continue;
    if (next <= rank) FailToTakeApart(statement.From(i));
    clauses_.emplace(kClauses[rank], statement.Part(start + 1, i));
    rank = next;
    start = i;
  }
  clauses_.emplace(kClauses[rank], statement.From(start + 1));
}

Words Clauses::Take(std::string_view word) {
  const auto found = clauses_.find(word);
  if (found == clauses_.end()) return {};
  Words words = std::move(found->second);
  clauses_.erase(found);
  return words;
}

Words Clauses::TakeBy(std::string_view word) {
  const Words words = Take(word);
  if (words.empty()) return words;
  if (words.size() == 1 || !words.IsWord(0, "by")) FailToTakeApart(words);
  return words.From(1);
}

void Clauses::ExpectAllTaken() const {
  if (!clauses_.empty()) FailToTakeApart(clauses_.begin()->second);
}

}  // namespace ambrelio::embedded::jet
