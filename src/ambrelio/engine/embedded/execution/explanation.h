// How a statement goes through the engine, for whoever looks for a slow or a wrong one.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::embedded::sql {
struct Shape;
}

namespace ambrelio::embedded {

struct Preparation;
struct PreparationGround;

// A step of the storage engine's query plan, in its own words, with those it consists of.
struct PlanStep {
  std::string text;
  std::vector<PlanStep> below;
};

// One of the storage's statements that a statement becomes.
struct ExplainedStatement {
  // "rows" of a query, and by what a move to the "last row" finds it; the "row" of a dynaset by its
  // id. "write": all at one stroke. Of an update row by row, the "rows" that it goes through, the
  // "values" of each, and the "row write" of each table, whose parameters are those values and the
  // row's id.
  std::string use;
  std::string sql;
  std::vector<PlanStep> plan;
};

struct ExplainedRewrite {
  std::string name;
  bool on = true;
  int made = 0;  // how often
};

struct Explanation {
  // What the prepared statement is kept under: the text without its literals.
  std::string shape;
  // Whether it serves only the very text, not all texts of the shape.
  bool by_text = false;
  std::vector<Variant> literals;           // the parameters ?1, ?2, ...
  std::vector<ExplainedRewrite> rewrites;  // all that there are
  // Whether the storage engine refused what the rewrites made, so that none stands.
  bool plan_refused = false;
  std::vector<ExplainedStatement> statements;
};

// Nothing is carried out. The plans are those for the statement's own literals.
Explanation ExplanationOf(const Preparation& preparation, const PreparationGround& ground,
                          sql::Shape shape);

}  // namespace ambrelio::embedded
