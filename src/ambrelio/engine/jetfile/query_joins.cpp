#include "ambrelio/engine/jetfile/query_joins.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

// The words that a plain name must not be.
constexpr auto kReserved = std::to_array<std::string_view>(
    {"ALL",        "ALTER",  "AND",    "ANY",   "AS",       "ASC",         "BETWEEN", "BY",
     "CONSTRAINT", "CREATE", "DELETE", "DESC",  "DISTINCT", "DISTINCTROW", "DROP",    "EQV",
     "EXISTS",     "FALSE",  "FROM",   "GROUP", "HAVING",   "IMP",         "IN",      "INDEX",
     "INNER",      "INSERT", "INTO",   "IS",    "JOIN",     "LEFT",        "LIKE",    "MOD",
     "NOT",        "NULL",   "ON",     "OR",    "ORDER",    "PRIMARY",     "RIGHT",   "SELECT",
     "SET",        "SOME",   "TABLE",  "TOP",   "TRUE",     "UNION",       "UNIQUE",  "UPDATE",
     "VALUES",     "WHERE",  "WITH",   "XOR"});

bool IsPlain(const std::string& name) {
  const auto is_letter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
  };
  if (name.empty() || !is_letter(name.front())) return false;
  const bool word = std::all_of(name.begin(), name.end(),
                                [&](char c) { return is_letter(c) || (c >= '0' && c <= '9'); });
  return word && std::find(kReserved.begin(), kReserved.end(), UpperCase(name)) == kReserved.end();
}

// Tables joined so far, and the text of it.
struct Joined {
  std::vector<std::string> names;  // upper-case
  std::string text;

  bool Has(const std::string& name) const {
    return std::find(names.begin(), names.end(), name) != names.end();
  }
  std::string Operand() const { return names.size() > 1 ? '(' + text + ')' : text; }
};

std::string InputText(const QueryRow& input) {
  std::string text;
  if (input.expression.empty()) {
    text = SqlName(input.name1);
  } else {
    std::string select = input.expression;
    select.erase(select.find_last_not_of(std::string_view("; \r\n\0", 5)) + 1);
    text = '(' + select + ')';
  }
  return input.name2.empty() ? text : text + " AS " + SqlName(input.name2);
}

const char* JoinWord(const QueryRow& join) {
  switch (static_cast<QueryJoin>(join.flag)) {
    case QueryJoin::kInner:
      return " INNER JOIN ";
    case QueryJoin::kLeft:
      return " LEFT JOIN ";
    case QueryJoin::kRight:
      return " RIGHT JOIN ";
  }
  throw Damage({join.row.page, 0}, "a query joins in the unknown way " + std::to_string(join.flag));
}

bool SamePair(const QueryRow& a, const QueryRow& b) {
  return a.flag == b.flag && SameText(a.name1, b.name1) && SameText(a.name2, b.name2);
}

// The rows of one pair of tables are conditions that all must hold. The last stands first, as in
// the text that the original engine makes of them.
std::string Conditions(const std::vector<const QueryRow*>& group) {
  if (group.size() == 1) return group.front()->expression;
  std::string text;
  for (auto row = group.rbegin(); row != group.rend(); ++row) {
    text += (text.empty() ? "(" : " AND (") + (*row)->expression + ')';
  }
  return text;
}

class Joiner {
 public:
  explicit Joiner(const std::vector<const QueryRow*>& inputs) {
    for (const QueryRow* input : inputs) {
      const std::string& name = input->name2.empty() ? input->name1 : input->name2;
      sets_.push_back({{UpperCase(name)}, InputText(*input)});
    }
  }

  void Join(const std::vector<const QueryRow*>& group) {
    const QueryRow& first = *group.front();
    const size_t left = SetOf(first, first.name1);
    const size_t right = SetOf(first, first.name2);
    const std::string word = JoinWord(first);
    if (left == right) {
      sets_[left].text += " AND (" + Conditions(group) + ')';
      return;
    }
    Joined& joined = sets_[left];
    joined.text = joined.Operand() + word + sets_[right].Operand() + " ON " + Conditions(group);
    joined.names.insert(joined.names.end(), sets_[right].names.begin(), sets_[right].names.end());
    sets_.erase(sets_.begin() + static_cast<std::ptrdiff_t>(right));
  }

  std::string Text() const {
    std::string text;
    for (const Joined& set : sets_) text += (text.empty() ? "" : ", ") + set.text;
    return text;
  }

 private:
  size_t SetOf(const QueryRow& join, const std::string& name) const {
    const std::string wanted = UpperCase(name);
    const auto found = std::find_if(sets_.begin(), sets_.end(),
                                    [&wanted](const Joined& set) { return set.Has(wanted); });
    if (found != sets_.end()) return static_cast<size_t>(found - sets_.begin());
    throw Damage({join.row.page, 0}, "a query joins '" + name + "', which is none of its tables");
  }

  std::vector<Joined> sets_;
};

}  // namespace

std::string SqlName(const std::string& name) {
  const bool is_sql = name.find_first_of("[.") != std::string::npos;
  return is_sql || IsPlain(name) ? name : '[' + name + ']';
}

std::string FromClause(const std::vector<const QueryRow*>& inputs,
                       const std::vector<const QueryRow*>& joins) {
  Joiner joiner(inputs);
  std::vector<const QueryRow*> left = joins;
  while (!left.empty()) {
    const auto others = std::stable_partition(left.begin(), left.end(), [&](const QueryRow* row) {
      return SamePair(*row, *left.front());
    });
    joiner.Join({left.begin(), others});
    left.erase(left.begin(), others);
  }
  return joiner.Text();
}

}  // namespace ambrelio::jetfile
