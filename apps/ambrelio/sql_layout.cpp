#include "sql_layout.h"

#include <algorithm>
#include <array>
#include <vector>

namespace ambrelio::cli {
namespace {

// What starts a line. The engine writes keywords in capitals with one blank between them, and sets
// names in quotes.
constexpr std::array<std::string_view, 12> kClauses = {
    "SELECT ", "FROM ",  "LEFT JOIN ", "JOIN ", "WHERE ",    "GROUP BY ",
    "HAVING ", "UNION ", "VALUES ",    "SET ",  "ORDER BY ", "LIMIT "};

class SqlLayout {
 public:
  explicit SqlLayout(std::string_view sql) : rest_(sql) {}

  std::string Make() {
    while (!rest_.empty()) Go();
    return text_ + '\n';
  }

 private:
  void Go() {
    const char next = rest_.front();
    if (next == '"' || next == '\'') return Quoted(next);
    if (next == '(') return Open();
    if (next == ')') return Close();
    if (next == ' ' && (brackets_.empty() || brackets_.back())) return Part();
    Take(1);
  }

  void Take(size_t count) {
    text_ += rest_.substr(0, count);
    rest_.remove_prefix(std::min(count, rest_.size()));
  }

  // A doubled quote ends one text and begins another, which comes to the same here.
  void Quoted(char quote) {
    const size_t end = rest_.find(quote, 1);
    Take(end == std::string_view::npos ? rest_.size() : end + 1);
  }

  void Open() {
    Take(1);
    brackets_.push_back(rest_.starts_with("SELECT "));
    if (!brackets_.back()) return;
    ++depth_;
    Break();
  }

  void Close() {
    if (brackets_.empty()) return Take(1);
    if (brackets_.back()) {
      --depth_;
      Break();
    }
    brackets_.pop_back();
    Take(1);
  }

  // A blank at a place where a clause may follow.
  void Part() {
    rest_.remove_prefix(1);
    const bool starts = std::any_of(kClauses.begin(), kClauses.end(),
                                    [this](auto clause) { return rest_.starts_with(clause); });
    if (!starts || text_.ends_with("DELETE")) {
      text_ += ' ';
    } else {
      Break();
      if (rest_.starts_with("LEFT ")) Take(5);  // or JOIN would start another
    }
  }

  void Break() {
    text_ += '\n';
    text_.append(2 * depth_, ' ');
  }

  std::string_view rest_;
  std::string text_;
  std::vector<bool> brackets_;  // those that are open: whether a select stands in them
  size_t depth_ = 0;
};

}  // namespace

std::string LaidOutSql(std::string_view sql) { return SqlLayout(sql).Make(); }

}  // namespace ambrelio::cli
