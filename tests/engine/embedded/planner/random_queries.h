// Random statements of the dialect over given tables and stored queries: any nesting of joins,
// derived tables, choices, null-tests and subqueries, of which each plan has to make the same.
//
// What the dialect leaves open is not asked for, since two plans may well answer it differently:
// which spelling of equal texts min, max and a `union all` without an order of its own show first,
// and errors that depend on which rows a condition is tried on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chance.h"

namespace ambrelio::test {

enum class Kind : uint8_t { kNumber, kText, kTruth };

// A column as a statement writes it.
struct NamedColumn {
  std::string name;
  Kind kind = Kind::kNumber;
};

// A table or stored query.
struct NamedSource {
  std::string name;
  std::vector<NamedColumn> columns;
};

class RandomQueries {
 public:
  RandomQueries(Chance& chance, const std::vector<NamedSource>& sources)
      : chance_(chance), sources_(sources) {}

  // A select or union, with its order.
  std::string Statement();
  // A stored query of that name: its text, and what it delivers in `stored`.
  std::string Stored(const std::string& name, NamedSource& stored);
  // An insert from a select, an update of a table or a bracketed join, or a delete, on `tables`.
  std::string Action(const std::vector<NamedSource>& tables);

 private:
  using Columns = std::vector<NamedColumn>;
  using Kinds = std::vector<Kind>;

  // Where a query stands: as the statement, as a source of rows, or where only its rows count.
  enum class Use : uint8_t { kStatement, kSource, kTest };

  struct Query {
    std::string text;
    Columns columns;
  };

  Query MakeQuery(int depth, Use use);
  Query MakeUnion(int depth, Use use);
  Query MakeSelect(int depth, Use use, const Kinds& kinds);
  // The select list of a grouped select, its groups in `tail`.
  std::vector<std::string> GroupedItems(const Kinds& kinds, std::string& tail,
                                        std::vector<std::string>& groups);
  std::string Order(const std::vector<std::string>& keys);
  Kinds SomeKinds(bool text);
  std::string From(int depth, Columns& columns);
  std::string Join(int depth, Columns& columns);
  std::string Source(int depth, Columns& columns);
  std::string On(const Columns& left, const Columns& right);
  std::string OnTerm(const Columns& left, const Columns& right);

  std::string Expr(Kind kind, int depth);
  std::string Number(int depth);
  std::string Text(int depth);
  std::string Condition(int depth);
  std::string NullTest(int depth);
  std::string Subcondition();
  std::string Scalar();
  std::string Aggregated();
  std::string Literal(Kind kind);
  // A visible column of the kind; a literal when there is none.
  std::string Column(Kind kind);
  const NamedColumn* Find(const Columns& columns, Kind kind);
  Kind AnyKind();
  std::string NewName(const char* stem) { return stem + std::to_string(++names_); }

  Chance& chance_;
  const std::vector<NamedSource>& sources_;
  std::vector<Columns> scopes_;  // of the selects around, the innermost last
  int names_ = 0;
  int leaves_ = 0;  // sources named so far: joins of many take long
  // Whether expressions may hold queries, and name columns from outside of their select. In groups
  // they do neither: what is not grouped would be read from any row.
  bool reaches_out_ = true;
};

}  // namespace ambrelio::test
