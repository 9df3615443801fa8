#include "ambrelio/engine/embedded/jet/query_sources.h"

#include <algorithm>
#include <utility>

#include "ambrelio/engine/embedded/jet/clauses.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::embedded::jet {
namespace {

using jetfile::QueryJoin;
using jetfile::QueryPart;
using jetfile::QueryRow;
using sql::TokenKind;

using Names = std::vector<std::string>;

// column = column, each perhaps with the name of its table.
bool IsPlainEquality(const Words& words) {
  const auto is_column = [](const Words& side) {
    if (side.size() == 1) return side.Name().has_value();
    return side.size() == 3 && side.Part(0, 1).Name() && side.IsSymbol(1, '.') &&
           side.From(2).Name();
  };
  const std::vector<Words> sides = words.Split('=');
  return sides.size() == 2 && is_column(sides[0]) && is_column(sides[1]);
}

// The conditions that all must hold, out of their brackets. `a between 1 and 2` falls apart too,
// but not into equalities.
void SplitConditions(const Words& words, std::vector<Words>& conditions) {
  const Words inner = words.Unwrapped();
  const std::vector<Words> parts = inner.SplitAtWord("and");
  if (parts.size() == 1) {
    conditions.push_back(inner);
    return;
  }
  for (const Words& part : parts) SplitConditions(part, conditions);
}

// Which of the tables the words name before a dot. Where they name none, the first must do: which
// table of a side a condition is about does not change what is joined.
std::string TableNamedIn(const Words& words, const Names& tables) {
  for (size_t i = 0; i + 1 < words.size(); ++i) {
    const auto name = words.Part(i, i + 1).Name();
    if (!name || !words.IsSymbol(i + 1, '.')) continue;
    const auto found = std::find_if(tables.begin(), tables.end(),
                                    [&name](const auto& table) { return SameText(table, *name); });
    if (found != tables.end()) return *found;
  }
  return tables.front();
}

class SourceTaker {
 public:
  explicit SourceTaker(std::vector<QueryRow>& rows) : rows_(rows) {}

  // One source with all that is joined to it.
  Names Take(const Words& words) {
    const size_t join = words.Find("join");
    if (join < words.size()) return TakeJoin(words, join);
    if (words.IsSymbol(0, '(') && !IsQuery(words.Part(0, words.Closing(0) + 1))) {
      if (words.Closing(0) + 1 != words.size()) FailToTakeApart(words);
      return Take(words.Part(1, words.size() - 1));
    }
    return TakeTable(words);
  }

 private:
  Names TakeTable(const Words& words) {
    if (words.empty()) FailToTakeApart(words);
    QueryRow row;
    row.part = QueryPart::kInput;
    size_t end = 1;
    if (words.IsSymbol(0, '(')) {
      end = words.Closing(0) + 1;
      row.expression = words.Part(1, end - 1).Text();
    } else {
      row.name1 = NameOf(words.Part(0, 1));
    }
    if (words.IsWord(end, "as")) {
      row.name2 = NameOf(words.From(end + 1));
    } else if (end < words.size()) {
      row.name2 = NameOf(words.From(end));
    }
    rows_.push_back(row);
    return {row.name2.empty() ? row.name1 : row.name2};
  }

  Names TakeJoin(const Words& words, size_t join) {
    const size_t on = words.Find("on", join);
    size_t kind_at = join - std::min<size_t>(join, 1);
    if (words.IsWord(kind_at, "outer") && kind_at > 0) --kind_at;
    const QueryJoin kind = KindOf(words.Part(kind_at, join), words);
    if (on == words.size() || words.Find("join", on) < words.size()) FailToTakeApart(words);

    Names left = Take(words.Part(0, kind_at));
    const Names right = Take(words.Part(join + 1, on));
    AddConditions(kind, left, right, words.From(on + 1));
    left.insert(left.end(), right.begin(), right.end());
    return left;
  }

  static QueryJoin KindOf(const Words& kind, const Words& words) {
    if (kind.IsWord(0, "left")) return QueryJoin::kLeft;
    if (kind.IsWord(0, "right")) return QueryJoin::kRight;
    if (kind.IsWord(0, "inner") && kind.size() == 1) return QueryJoin::kInner;
    FailToTakeApart(words);
  }

  // Equalities have a row each; those of one pair of tables stand together, the last before the
  // first. Any other condition is one row as a whole.
  void AddConditions(QueryJoin kind, const Names& left, const Names& right, const Words& on) {
    if (on.empty()) FailToTakeApart(on);
    std::vector<Words> conditions;
    SplitConditions(on, conditions);
    if (!std::all_of(conditions.begin(), conditions.end(), IsPlainEquality)) conditions = {on};
    std::vector<std::pair<std::string, std::string>> pairs;
    std::vector<std::vector<QueryRow>> groups;
    for (const Words& condition : conditions) {
      const std::pair pair{TableNamedIn(condition, left), TableNamedIn(condition, right)};
      if (pair.first.empty() || pair.second.empty()) FailToTakeApart(on);
      const auto known = std::find(pairs.begin(), pairs.end(), pair) - pairs.begin();
      if (static_cast<size_t>(known) == pairs.size()) {
        pairs.push_back(pair);
        groups.emplace_back();
      }
      QueryRow row;
      row.part = QueryPart::kJoin;
      row.flag = static_cast<int16_t>(kind);
      row.name1 = pair.first;
      row.name2 = pair.second;
      row.expression = condition.Text();
      groups[static_cast<size_t>(known)].push_back(std::move(row));
    }
    for (const auto& group : groups) rows_.insert(rows_.end(), group.rbegin(), group.rend());
  }

  std::vector<QueryRow>& rows_;
};

// The end of a from clause: another database, and how to connect to it.
size_t TakeDatabase(const Words& from, std::vector<QueryRow>& rows) {
  const size_t in = from.FindLast("in");
  if (in == from.size() || in + 1 == from.size()) return from.size();
  const sql::Lexeme& path = from[in + 1];
  if (path.kind != TokenKind::kLiteral || path.text.size() < 2) return from.size();
  QueryRow row;
  row.part = QueryPart::kSource;
  row.name1 = path.text.substr(1, path.text.size() - 2);
  if (in + 2 < from.size()) row.expression = NameOf(from.From(in + 2));
  rows.push_back(std::move(row));
  return in;
}

}  // namespace

bool IsQuery(const Words& words) {
  const Words inner = words.Unwrapped();
  return inner.IsWord(0, "select") || inner.Find("union") < inner.size();
}

Names TakeSources(const Words& from, std::vector<QueryRow>& rows) {
  Names tables;
  const size_t end = TakeDatabase(from, rows);
  for (const Words& source : from.Part(0, end).Split(',')) {
    const Names more = SourceTaker(rows).Take(source);
    tables.insert(tables.end(), more.begin(), more.end());
  }
  std::vector<std::string> upper;
  for (const std::string& table : tables) upper.push_back(UpperCase(table));
  std::sort(upper.begin(), upper.end());
  if (std::adjacent_find(upper.begin(), upper.end()) != upper.end()) FailToTakeApart(from);
  return tables;
}

}  // namespace ambrelio::embedded::jet
