// One database file under every choice of rewrites, and what a statement comes to under each.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::test {

class EveryPlan {
 public:
  explicit EveryPlan(std::unique_ptr<embedded::Storage> storage)
      : storage_(std::move(storage)), catalogue_(*storage_) {
    // None first: it is what the others are held against.
    for (const unsigned made : kChoices) {
      embedded::PlanOptions options;
      options.inner_joins = (made & 1U) != 0;
      options.merged_queries = (made & 2U) != 0;
      options.split_joins = (made & 4U) != 0;
      options.shorter_keys = (made & 8U) != 0;
      executors_.push_back(std::make_unique<embedded::Executor>(*storage_, catalogue_, options));
    }
  }

  embedded::Storage& storage() { return *storage_; }
  embedded::CatalogueStore& catalogue() { return catalogue_; }
  void Execute(const std::string& sql) { executors_.front()->Execute(sql, false); }

  // The columns and rows of a select under each choice, or the error.
  std::vector<std::string> Select(const std::string& sql, dao::RecordsetType type) {
    std::vector<std::string> outcomes;
    for (const auto& executor : executors_) {
      outcomes.push_back(OutcomeOf([&] { return Listed(*executor, sql, type); }));
    }
    return outcomes;
  }

  // All tables after an action query under each choice; what it did is undone.
  std::vector<std::string> Write(const std::string& sql, bool strict) {
    std::vector<std::string> outcomes;
    for (const auto& executor : executors_) {
      storage_->Begin();
      std::string outcome = OutcomeOf(
          [&] { return "affected " + std::to_string(executor->Execute(sql, strict)) + "\n"; });
      outcomes.push_back(outcome + Dump());
      storage_->Rollback();
    }
    return outcomes;
  }

  std::string Dump() {
    std::string dump;
    for (const embedded::TableInfo& table : catalogue_.Current().tables) {
      dump += table.name + "\n" +
              Listed(*executors_.front(), "select * from [" + table.name + "]",
                     dao::RecordsetType::kSnapshot);
    }
    return dump;
  }

  // The rewrites that belong to an outcome of the lists above.
  static std::string Name(size_t place) {
    const unsigned made = kChoices.at(place);
    std::string name = "with";
    if ((made & 1U) != 0) name += " inner_joins";
    if ((made & 2U) != 0) name += " merged_queries";
    if ((made & 4U) != 0) name += " split_joins";
    if ((made & 8U) != 0) name += " shorter_keys";
    return place == 0 ? "without rewrites" : name;
  }

 private:
  // Every choice of those that move rows; the keys of `first` and `last` alone and with all others.
  static constexpr std::array<unsigned, 10> kChoices = {0, 1, 2, 3, 4, 5, 6, 7, 8, 15};

  template <class Action>
  static std::string OutcomeOf(Action action) {
    try {
      return action();
    } catch (const AutomationError& error) {
      return "error " + std::to_string(error.number()) + " " + error.description() + "\n";
    }
  }

  static std::string Shown(const Variant& value) {
    if (value.is_null()) return "Null";
    return std::string(TypeName(value)) + " '" +
           (value.is_date() ? value.as<OleDate>().Iso() : ToText(value)) + "'";
  }

  std::string Listed(embedded::Executor& executor, const std::string& sql,
                     dao::RecordsetType type) const {
    const auto rows = executor.Open(sql, type, alive_);
    std::string list;
    const int columns = rows->Fields().Count();
    for (int i = 0; i < columns; ++i) {
      const auto field = rows->Fields().Item(i);
      list += field->Name() + ":" + std::to_string(static_cast<int>(field->Type())) + ":" +
              std::to_string(field->Size()) + " | ";
    }
    list += "\n";
    const bool any = !rows->AtEnd();
    for (; !rows->AtEnd(); rows->MoveNext()) list += Row(*rows);
    if (any) {
      // The way to the last row need not be that of the rows before it.
      const auto last = executor.Open(sql, type, alive_);
      last->MoveLast();
      list += "last " + Row(*last);
    }
    return list;
  }

  static std::string Row(dao::Recordset& rows) {
    std::string row;
    for (int i = 0; i < rows.Fields().Count(); ++i) row += Shown(rows.Value(i)) + " | ";
    return row + "\n";
  }

  std::unique_ptr<embedded::Storage> storage_;
  embedded::CatalogueStore catalogue_;
  std::vector<std::unique_ptr<embedded::Executor>> executors_;
  embedded::Liveness alive_ = std::make_shared<const bool>(true);
};

}  // namespace ambrelio::test
