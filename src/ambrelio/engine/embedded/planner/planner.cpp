#include "ambrelio/engine/embedded/planner/planner.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>
#include <variant>

#include "ambrelio/engine/embedded/planner/rewrites.h"
#include "ambrelio/engine/embedded/planner/tree_walk.h"

namespace ambrelio::embedded {

using bound::ExprPtr;
using bound::Query;
using bound::Source;

namespace {

// Each split can double what is written.
constexpr int kMostSplits = 2;

// The highest number of a source in the query.
int LastSource(Query& query) {
  int last = 0;
  if (query.select) {
    for (const Source& source : query.select->from) {
      bound::ForEachLeaf(source, [&](const Source& leaf) { last = std::max(last, leaf.id); });
    }
  }
  planner::ForEachQueryBelow(query,
                             [&](Query& below) { last = std::max(last, LastSource(below)); });
  return last;
}

class Planner {
 public:
  Planner(const PlanOptions& options, int next_source)
      : options_(options), next_source_(next_source) {}

  void Run(Query& query, int splits) {
    if (query.select) {
      MakeJoinsInner(query.select->from, query.select->where);
      if (options_.merged_queries) {
        made_.merged_queries += planner::MergeQueries(query, next_source_);
      }
      // What has come up may decide about more joins.
      MakeJoinsInner(query.select->from, query.select->where);
      if (options_.shorter_keys) made_.shorter_keys += planner::ShortenKeys(query);
      while (options_.split_joins && splits > 0 && planner::SplitJoin(query, next_source_)) {
        --splits;
        ++made_.split_joins;
      }
      planner::DropConstantKeys(query);
    }
    planner::ForEachQueryBelow(query, [&](Query& below) { Run(below, splits); });
  }

  void MakeJoinsInner(std::vector<Source>& from, const ExprPtr& where) {
    if (options_.inner_joins) made_.inner_joins += planner::MakeJoinsInner(from, where);
  }

  const RewritesMade& made() const { return made_; }

 private:
  const PlanOptions& options_;
  int next_source_;
  RewritesMade made_;
};

// The queries that stand in what a statement computes, beside those of its sources.
using VisitQuery = std::function<void(Query&)>;

struct ForEachQuery {
  const VisitQuery& visit;

  void operator()(std::unique_ptr<Query>& query) const { visit(*query); }
  void operator()(bound::Insert& insert) const {
    if (insert.query) visit(*insert.query);
    for (bound::FieldValue& value : insert.values) planner::ForEachQueryIn(*value.value, visit);
  }
  void operator()(bound::Update& update) const {
    if (update.where) planner::ForEachQueryIn(*update.where, visit);
    for (bound::UpdateTarget& target : update.targets) {
      for (bound::FieldValue& value : target.values) planner::ForEachQueryIn(*value.value, visit);
    }
  }
  void operator()(bound::Delete& statement) const {
    if (statement.where) planner::ForEachQueryIn(*statement.where, visit);
  }
};

// The rows that an update or delete goes through; nothing for other statements.
struct Walked {
  std::vector<Source>* from = nullptr;
  const ExprPtr* where = nullptr;
};

Walked WalkedBy(bound::Statement& statement) {
  if (auto* update = std::get_if<bound::Update>(&statement)) return {&update->from, &update->where};
  if (auto* removal = std::get_if<bound::Delete>(&statement)) {
    return {&removal->from, &removal->where};
  }
  return {};
}

}  // namespace

RewritesMade Plan(Query& query, const PlanOptions& options) {
  Planner planner(options, LastSource(query) + 1);
  planner.Run(query, kMostSplits);
  return planner.made();
}

RewritesMade Plan(bound::Statement& statement, const PlanOptions& options) {
  int last = 0;
  const Walked walked = WalkedBy(statement);
  if (walked.from != nullptr) {
    for (const Source& source : *walked.from) {
      bound::ForEachLeaf(source, [&](const Source& leaf) { last = std::max(last, leaf.id); });
    }
  }
  const VisitQuery look = [&](Query& query) { last = std::max(last, LastSource(query)); };
  std::visit(ForEachQuery{look}, statement);
  Planner planner(options, last + 1);
  if (walked.from != nullptr) planner.MakeJoinsInner(*walked.from, *walked.where);
  const VisitQuery plan = [&](Query& query) { planner.Run(query, kMostSplits); };
  std::visit(ForEachQuery{plan}, statement);
  return planner.made();
}

PlanOptions PlanOptions::Without(std::string_view names) {
  PlanOptions options;
  const auto named = [names](std::string_view name) {
    for (size_t at = 0; at <= names.size();) {
      const size_t end = std::min(names.find(',', at), names.size());
      const std::string_view one = names.substr(at, end - at);
      if (one == name || one == "all") return true;
      at = end + 1;
    }
    return false;
  };
  options.inner_joins = !named(kInnerJoins);
  options.merged_queries = !named(kMergedQueries);
  options.split_joins = !named(kSplitJoins);
  options.shorter_keys = !named(kShorterKeys);
  return options;
}

PlanOptions PlanOptions::FromEnvironment() {
  const char* names = std::getenv("AMBRELIO_WITHOUT_REWRITES");
  return Without(names == nullptr ? "" : names);
}

}  // namespace ambrelio::embedded
