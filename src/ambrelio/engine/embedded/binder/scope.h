// The names that are visible at a place of a statement.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/embedded/binder/bound_tree.h"

namespace ambrelio::embedded {

// One source of rows, as the expressions of a select see it: a table, or a query of which only the
// output columns exist.
class Relation {
 public:
  Relation(std::string name, int source, const TableInfo& table);
  Relation(std::string name, int source, const bound::Query& query);
  // A query whose own sources stand in the statement itself, in an update: its columns are what it
  // computes.
  static Relation Inlined(std::string name, const bound::Query& query);

  const std::string& name() const { return name_; }
  int source() const { return source_; }
  int ColumnCount() const;
  const std::string& ColumnName(int column) const;
  bound::Column Describe(int column) const;
  std::optional<int> Find(std::string_view column) const;
  // A reference to the column.
  bound::ExprPtr Refer(int column) const;

  // How many queries stand between the statement and this source: 0 unless those were inlined.
  int depth = 0;

 private:
  std::string name_;
  int source_ = 0;
  const TableInfo* table_ = nullptr;
  const bound::Query* query_ = nullptr;
  bool inlined_ = false;
};

struct Scope {
  const Scope* outer = nullptr;
  std::vector<Relation> relations;
  // What identifies a row of the relations together, and gives it its place.
  std::vector<bound::ExprPtr> row_keys;

  bool Has(int source) const;

  // The column of that name in this scope alone; null when there is none. 3079 when there are
  // several. What is less deep hides what is deeper.
  bound::ExprPtr Find(std::string_view qualifier, std::string_view name) const;
};

// The keys of one source's rows: the primary key or the row's identity; of a query, its own keys.
void AppendKeys(const bound::Source& leaf, std::vector<bound::ExprPtr>& keys);

}  // namespace ambrelio::embedded
