#include "ambrelio/engine/jetfile/stored_query.h"

#include <algorithm>
#include <tuple>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/query_joins.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "ambrelio/engine/jetfile/system_table.h"

namespace ambrelio::jetfile {
namespace {

constexpr const char* kLineEnd = "\r\n";

std::string ParameterWord(int16_t flag) {
  const auto found = std::find_if(kParameterTypes.begin(), kParameterTypes.end(),
                                  [flag](const ParameterType& type) { return type.flag == flag; });
  return std::string(found == kParameterTypes.end() ? kParameterTypes[0].word : found->word);
}

std::string WithoutEnd(std::string text) {
  text.erase(text.find_last_not_of(std::string_view("; \r\n\0", 5)) + 1);
  return text;
}

class Statement {
 public:
  explicit Statement(const std::vector<QueryRow>& rows) : rows_(rows) {
    if (const QueryRow* kind = First(QueryPart::kKind)) kind_ = static_cast<QueryKind>(kind->flag);
    if (const QueryRow* options = First(QueryPart::kOptions)) options_ = options->flag;
  }

  std::string Text() const {
    switch (kind_) {
      case QueryKind::kDataDefinition:
      case QueryKind::kPassThrough:
        return Stored();
      case QueryKind::kUnion:
        return Parameters() + Union() + OrderBy() + End();
      case QueryKind::kSelect:
        return Parameters() + Select() + Rest() + End();
      case QueryKind::kMakeTable:
        return Parameters() + Select() + " INTO " + SqlName(Target()) + Rest() + End();
      case QueryKind::kAppend:
        return Parameters() + Append() + Rest() + End();
      case QueryKind::kDelete:
        return Parameters() + "DELETE " + Predicate() + Outputs(kAny) + Rest() + End();
      case QueryKind::kUpdate:
        return Parameters() + Update() + Clause("WHERE ", QueryPart::kWhere) + End();
      case QueryKind::kCrosstab:
        return Parameters() + Crosstab() + End();
    }
    throw Damage({First(QueryPart::kKind)->row.page, 0},
                 "a query is of the unknown kind " + std::to_string(static_cast<int>(kind_)));
  }

 private:
  static constexpr int16_t kAny = -1;

  std::vector<const QueryRow*> All(QueryPart part) const {
    std::vector<const QueryRow*> found;
    for (const QueryRow& row : rows_) {
      if (row.part == part) found.push_back(&row);
    }
    return found;
  }
  const QueryRow* First(QueryPart part) const {
    const auto all = All(part);
    return all.empty() ? nullptr : all.front();
  }
  bool Option(int16_t option) const { return (options_ & option) != 0; }
  const std::string& Target() const { return First(QueryPart::kKind)->name1; }

  std::string Stored() const {
    std::string text = First(QueryPart::kKind)->expression;
    while (text.ends_with('\0')) text.pop_back();
    return text;
  }

  std::string Parameters() const {
    std::string text;
    for (const QueryRow* row : All(QueryPart::kParameter)) {
      text += (text.empty() ? "PARAMETERS " : ", ") + SqlName(row->name1) + ' ' +
              ParameterWord(row->flag);
    }
    return text.empty() ? text : text + ';' + kLineEnd;
  }

  std::string Predicate() const {
    std::string text;
    if (Option(QueryOption::kDistinct)) text += "DISTINCT ";
    if (Option(QueryOption::kDistinctRow)) text += "DISTINCTROW ";
    if (Option(QueryOption::kTop)) {
      text += "TOP " + First(QueryPart::kOptions)->name1 +
              (Option(QueryOption::kPercent) ? " PERCENT " : " ");
    }
    return text;
  }

  std::string Outputs(int16_t role) const {
    std::string text = Option(QueryOption::kAllColumns) ? "*" : "";
    for (const QueryRow* row : All(QueryPart::kOutput)) {
      if (role != kAny && row->flag != role) continue;
      text += (text.empty() ? "" : ", ") + row->expression;
      if (!row->name1.empty()) text += " AS " + SqlName(row->name1);
    }
    return text;
  }

  std::string Select() const { return "SELECT " + Predicate() + Outputs(kAny); }

  std::string Append() const {
    std::string columns;
    for (const QueryRow* row : All(QueryPart::kOutput)) {
      if (row->name2.empty()) continue;
      columns += (columns.empty() ? "" : ", ") + SqlName(row->name2);
    }
    if (!columns.empty()) columns = " ( " + columns + " )";
    return "INSERT INTO " + SqlName(Target()) + columns + kLineEnd + Select();
  }

  std::string Update() const {
    std::string text;
    for (const QueryRow* row : All(QueryPart::kOutput)) {
      text += (text.empty() ? "" : ", ") + SqlName(row->name2) + " = " + row->expression;
    }
    return "UPDATE " + Predicate() + FromClause(All(QueryPart::kInput), All(QueryPart::kJoin)) +
           " SET " + text;
  }

  std::string Crosstab() const {
    return "TRANSFORM " + Outputs(CrosstabRole::kValue) + kLineEnd + "SELECT " +
           Outputs(CrosstabRole::kRow) + From() + Clause("WHERE ", QueryPart::kWhere) +
           GroupBy(CrosstabRole::kRow) + Clause("HAVING ", QueryPart::kHaving) + OrderBy() +
           kLineEnd + "PIVOT " + Outputs(CrosstabRole::kHeading);
  }

  std::string Union() const {
    const std::string word = Option(QueryOption::kDistinct) ? "UNION " : "UNION ALL ";
    std::string text;
    for (const QueryRow* row : All(QueryPart::kInput)) {
      if (!text.empty()) text += kLineEnd + word;
      text += WithoutEnd(row->expression);
    }
    return text;
  }

  std::string From() const {
    const std::string tables = FromClause(All(QueryPart::kInput), All(QueryPart::kJoin));
    if (tables.empty()) return "";
    std::string text = kLineEnd + ("FROM " + tables);
    if (const QueryRow* source = First(QueryPart::kSource)) {
      text += " IN '" + source->name1 + '\'';
      if (!source->expression.empty()) text += "[" + source->expression + ']';
    }
    return text;
  }

  std::string Clause(const char* word, QueryPart part) const {
    const QueryRow* row = First(part);
    return row == nullptr ? "" : kLineEnd + (word + row->expression);
  }

  std::string GroupBy(int16_t role) const {
    std::string text;
    for (const QueryRow* row : All(QueryPart::kGroupBy)) {
      if (role != kAny && row->flag != role) continue;
      text += (text.empty() ? "" : ", ") + row->expression;
    }
    return text.empty() ? text : kLineEnd + ("GROUP BY " + text);
  }

  std::string OrderBy() const {
    std::string text;
    for (const QueryRow* row : All(QueryPart::kOrderBy)) {
      text += (text.empty() ? "" : ", ") + row->expression;
      if (row->name1 == "D") text += " DESC";
    }
    return text.empty() ? text : kLineEnd + ("ORDER BY " + text);
  }

  std::string Rest() const {
    return From() + Clause("WHERE ", QueryPart::kWhere) + GroupBy(kAny) +
           Clause("HAVING ", QueryPart::kHaving) + OrderBy();
  }

  std::string End() const {
    return std::string(Option(QueryOption::kOwnerAccess) ? "\r\nWITH OWNERACCESS OPTION" : "") +
           ';' + kLineEnd;
  }

  const std::vector<QueryRow>& rows_;
  QueryKind kind_ = QueryKind::kSelect;
  int16_t options_ = 0;
};

}  // namespace

std::vector<QueryRow> ReadQueryRows(const JetFile& file, const Catalogue& catalogue) {
  std::vector<QueryRow> rows;
  const CatalogueObject* object = catalogue.Find(ObjectType::kTable, "MSysQueries");
  if (object == nullptr) return rows;
  SystemTable table(file, object->definition_page());
  while (table.Next()) {
    rows.push_back({static_cast<uint32_t>(table.Long("ObjectId")),
                    static_cast<QueryPart>(table.Byte("Attribute")), table.Text("Order"),
                    table.Text("Name1"), table.Text("Name2"), table.Text("Expression"),
                    table.Integer("Flag"), table.identity()});
  }
  std::stable_sort(rows.begin(), rows.end(), [](const QueryRow& a, const QueryRow& b) {
    return std::tie(a.query, a.part, a.order) < std::tie(b.query, b.part, b.order);
  });
  return rows;
}

std::string QuerySql(const std::vector<QueryRow>& rows) { return Statement(rows).Text(); }

std::string ReadQuerySql(const JetFile& file, const Catalogue& catalogue,
                         const CatalogueObject& query) {
  std::vector<QueryRow> rows = ReadQueryRows(file, catalogue);
  std::erase_if(rows, [&query](const QueryRow& row) { return row.query != query.id; });
  return QuerySql(rows);
}

}  // namespace ambrelio::jetfile
