#include "ambrelio/engine/embedded/jet/query_parts.h"

#include <algorithm>

#include "ambrelio/engine/embedded/jet/clauses.h"
#include "ambrelio/engine/embedded/jet/query_sources.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::embedded::jet {
namespace {

using jetfile::CrosstabRole;
using jetfile::QueryKind;
using jetfile::QueryOption;
using jetfile::QueryPart;
using jetfile::QueryRow;
using sql::TokenKind;

// What the selects of a union are called.
constexpr const char* kUnionInput = "X7YZ_____";

class PartTaker {
 public:
  std::vector<QueryRow> Take(Words words) {
    if (words.IsWord(0, "create") || words.IsWord(0, "alter") || words.IsWord(0, "drop")) {
      // Its text ends with a zero.
      Add(QueryPart::kKind).expression = words.Text() + '\0';
      SetKind(QueryKind::kDataDefinition);
      return std::move(rows_);
    }
    Add(QueryPart::kKind);
    words = TakeParameters(words);
    if (words.IsSymbol(words.size() - 1, ';')) words = words.Part(0, words.size() - 1);
    words = TakeOwnerAccess(words).Unwrapped();
    if (words.Split(';').size() > 1) FailToTakeApart(words);
    TakeStatement(words);
    if (options_ != 0) {
      QueryRow& row = Add(QueryPart::kOptions);
      row.flag = options_;
      row.name1 = top_;
    }
    std::stable_sort(rows_.begin(), rows_.end(),
                     [](const QueryRow& a, const QueryRow& b) { return a.part < b.part; });
    return std::move(rows_);
  }

 private:
  QueryRow& Add(QueryPart part, std::string expression = {}) {
    QueryRow& row = rows_.emplace_back();
    row.part = part;
    row.expression = std::move(expression);
    return row;
  }
  void SetKind(QueryKind kind, std::string target = {}) {
    rows_.front().flag = static_cast<int16_t>(kind);
    rows_.front().name1 = std::move(target);
  }

  // parameters name type, ...;
  Words TakeParameters(const Words& words) {
    if (!words.IsWord(0, "parameters")) return words;
    size_t end = 1;
    while (end < words.size() && !words.IsSymbol(end, ';')) ++end;
    for (const Words& parameter : words.Part(1, end).Split(',')) {
      QueryRow& row = Add(QueryPart::kParameter);
      row.name1 = NameOf(parameter.Part(0, 1));
      row.flag = TypeOf(parameter.From(1));
    }
    return words.From(end + 1);
  }

  // A text's greatest length is the only one that is kept.
  static int16_t TypeOf(Words type) {
    if (type.size() == 4 && type.From(1).Text().find("255") != std::string::npos) {
      type = type.Part(0, 1);
    }
    const auto known =
        std::find_if(jetfile::kParameterTypes.begin(), jetfile::kParameterTypes.end(),
                     [&type](const auto& one) { return SameText(one.word, type.Text()); });
    if (known == jetfile::kParameterTypes.end()) FailToTakeApart(type);
    return known->flag;
  }

  Words TakeOwnerAccess(const Words& words) {
    const size_t end = words.size() - std::min<size_t>(words.size(), 3);
    if (!words.IsWord(end, "with") || !words.IsWord(end + 1, "owneraccess") ||
        !words.IsWord(end + 2, "option")) {
      return words;
    }
    options_ |= QueryOption::kOwnerAccess;
    return words.Part(0, end);
  }

  void TakeStatement(const Words& words) {
    if (words.empty()) FailToTakeApart(words);
    if (words.IsWord(0, "insert")) return TakeAppend(words);
    if (words.Find("union") < words.size()) return TakeUnion(words);
    Clauses clauses(words);
    if (clauses.Has("transform")) {
      TakeCrosstab(clauses);
    } else if (clauses.Has("update")) {
      TakeUpdate(clauses);
    } else if (clauses.Has("delete")) {
      TakeDelete(clauses);
    } else if (clauses.Has("into")) {
      SetKind(QueryKind::kMakeTable, NameOf(clauses.Take("into")));
      TakeSelect(clauses);
    } else {
      SetKind(QueryKind::kSelect);
      TakeSelect(clauses);
    }
    clauses.ExpectAllTaken();
  }

  void TakeSelect(Clauses& clauses) {
    TakeFrom(clauses);
    TakeOutputs(TakePredicate(clauses.Take("select")));
    TakeGroups(clauses);
  }

  void TakeFrom(Clauses& clauses) {
    if (clauses.Has("from")) tables_ = TakeSources(NotEmpty(clauses.Take("from")), rows_);
    if (clauses.Has("where")) Add(QueryPart::kWhere, NotEmpty(clauses.Take("where")).Text());
  }

  void TakeGroups(Clauses& clauses) {
    if (clauses.Has("group")) {
      for (const Words& group : clauses.TakeBy("group").Split(',')) {
        Add(QueryPart::kGroupBy, NotEmpty(group).Text());
      }
    }
    if (clauses.Has("having")) Add(QueryPart::kHaving, NotEmpty(clauses.Take("having")).Text());
    if (clauses.Has("order")) TakeOrder(clauses.TakeBy("order"));
  }

  void TakeOrder(const Words& list) {
    for (const Words& item : NotEmpty(list).Split(',')) {
      const size_t last = item.size() - std::min<size_t>(item.size(), 1);
      const bool descending = item.IsWord(last, "desc");
      const bool marked = descending || item.IsWord(last, "asc");
      QueryRow& row = Add(QueryPart::kOrderBy, NotEmpty(marked ? item.Part(0, last) : item).Text());
      if (descending) row.name1 = "D";
    }
  }

  // [all | distinct | distinctrow] [top n [percent]]
  Words TakePredicate(Words list) {
    if (list.IsWord(0, "all")) {
      list = list.From(1);
    } else if (list.IsWord(0, "distinct") || list.IsWord(0, "distinctrow")) {
      options_ |= list.IsWord(0, "distinct") ? QueryOption::kDistinct : QueryOption::kDistinctRow;
      list = list.From(1);
    }
    if (!list.IsWord(0, "top")) return list;
    if (list.size() < 2 || list[1].kind != TokenKind::kLiteral) FailToTakeApart(list);
    options_ |= QueryOption::kTop;
    top_ = list[1].text;
    list = list.From(2);
    // It may be a column as well, and then something other than an output follows it.
    if (!list.IsWord(0, "percent") || list.size() == 1 || list.IsSymbol(1, ',') ||
        list.IsSymbol(1, '.') || list.IsWord(1, "as")) {
      return list;
    }
    options_ |= QueryOption::kPercent;
    return list.From(1);
  }

  // All columns of all tables are an option when they stand first, and otherwise spelled out.
  void TakeOutputs(const Words& list, int16_t role = CrosstabRole::kValue) {
    const std::vector<Words> outputs = NotEmpty(list).Split(',');
    for (const Words& output : outputs) {
      if (output.size() != 1 || !output.IsSymbol(0, '*')) {
        TakeOutput(output, role);
      } else if (&output == &outputs.front()) {
        options_ |= QueryOption::kAllColumns;
      } else {
        for (const std::string& table : tables_) {
          Add(QueryPart::kOutput, '[' + table + "].*").flag = role;
        }
      }
    }
  }

  void TakeOutput(const Words& output, int16_t role) {
    const size_t as = output.FindLast("as");
    QueryRow& row = Add(QueryPart::kOutput, NotEmpty(output.Part(0, as)).Text());
    row.flag = role;
    if (as < output.size()) row.name1 = NameOf(output.From(as + 1));
  }

  // insert into table [(columns)] values (...) | select
  void TakeAppend(const Words& words) {
    if (!words.IsWord(1, "into")) FailToTakeApart(words);
    SetKind(QueryKind::kAppend, NameOf(words.Part(2, 3)));
    Words rest = words.From(3);
    std::vector<Words> columns;
    if (rest.IsSymbol(0, '(') && !IsQuery(rest.Part(0, rest.Closing(0) + 1))) {
      columns = rest.Part(1, rest.Closing(0)).Split(',');
      rest = rest.From(rest.Closing(0) + 1);
    }
    if (rest.IsWord(0, "values")) {
      if (!rest.IsSymbol(1, '(') || rest.Closing(1) + 1 != rest.size()) FailToTakeApart(rest);
      TakeOutputs(rest.Part(2, rest.size() - 1));
    } else {
      Clauses clauses(rest.Unwrapped());
      if (!clauses.Has("select")) FailToTakeApart(rest);
      TakeSelect(clauses);
      clauses.ExpectAllTaken();
    }
    if (!columns.empty()) NameTargets(columns, words);
  }

  // Each output goes to a column.
  void NameTargets(const std::vector<Words>& columns, const Words& words) {
    size_t next = 0;
    for (QueryRow& row : rows_) {
      if (row.part != QueryPart::kOutput) continue;
      if (next == columns.size()) FailToTakeApart(words);
      row.name2 = NameOf(columns[next++]);
    }
    if (next != columns.size() || (options_ & QueryOption::kAllColumns) != 0) {
      FailToTakeApart(words);
    }
  }

  void TakeUpdate(Clauses& clauses) {
    SetKind(QueryKind::kUpdate);
    tables_ = TakeSources(NotEmpty(clauses.Take("update")), rows_);
    for (const Words& assignment : NotEmpty(clauses.Take("set")).Split(',')) {
      size_t equals = 0;
      while (equals < assignment.size() && !assignment.IsSymbol(equals, '=')) ++equals;
      const Words target = assignment.Part(0, equals);
      QueryRow& row = Add(QueryPart::kOutput, NotEmpty(assignment.From(equals + 1)).Text());
      // One with its table is kept as it is written.
      row.name2 = target.size() == 3 && target.IsSymbol(1, '.') ? target.Text() : NameOf(target);
    }
    if (clauses.Has("where")) Add(QueryPart::kWhere, NotEmpty(clauses.Take("where")).Text());
  }

  void TakeDelete(Clauses& clauses) {
    SetKind(QueryKind::kDelete);
    if (!clauses.Has("from")) FailToTakeApart(clauses.Take("delete"));
    TakeFrom(clauses);
    const Words outputs = clauses.Take("delete");
    if (!outputs.empty()) TakeOutputs(TakePredicate(outputs));
  }

  // transform value select rows from ... group by rows pivot heading
  void TakeCrosstab(Clauses& clauses) {
    SetKind(QueryKind::kCrosstab);
    const Words heading = clauses.Take("pivot");
    TakeFrom(clauses);
    TakeOutputs(clauses.Take("transform"), CrosstabRole::kValue);
    TakeOutputs(clauses.Take("select"), CrosstabRole::kRow);
    TakeGroups(clauses);
    for (QueryRow& row : rows_) {
      if (row.part == QueryPart::kGroupBy) row.flag = CrosstabRole::kRow;
    }
    // The headings themselves are not kept in a way that is known.
    if (heading.Find("in") < heading.size()) FailToTakeApart(heading);
    TakeOutput(heading, CrosstabRole::kHeading);
    Add(QueryPart::kGroupBy, heading.Text()).flag = CrosstabRole::kHeading;
  }

  // The last word that unites decides; what stands before it is one input, united or not.
  void TakeUnion(const Words& words) {
    SetKind(QueryKind::kUnion);
    size_t order = words.FindLast("order");
    const size_t at = words.FindLast("union");
    if (order < at) FailToTakeApart(words);
    if (order < words.size()) {
      if (!words.IsWord(order + 1, "by")) FailToTakeApart(words.From(order));
      TakeOrder(words.From(order + 2));
    }
    const bool all = words.IsWord(at + 1, "all");
    options_ |= QueryOption::kAllColumns;
    if (!all) options_ |= QueryOption::kDistinct;
    AddUnited(words.Part(0, at), 1);
    AddUnited(words.Part(at + (all ? 2 : 1), order), 2);
  }

  void AddUnited(const Words& query, int number) {
    if (!IsQuery(query)) FailToTakeApart(query);
    Add(QueryPart::kInput, query.Text()).name2 = kUnionInput + std::to_string(number);
  }

  static Words NotEmpty(Words words) {
    if (words.empty()) FailToTakeApart(words);
    return words;
  }

  std::vector<QueryRow> rows_;
  std::vector<std::string> tables_;  // as the statement calls them
  int16_t options_ = 0;
  std::string top_;
};

}  // namespace

std::vector<QueryRow> QueryParts(std::string_view sql) { return PartTaker().Take(Words(sql)); }

}  // namespace ambrelio::embedded::jet
