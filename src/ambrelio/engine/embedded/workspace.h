// The default workspace: opens and makes databases, and holds their transactions together.
#pragma once

#include <memory>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/planner/planner.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/embedded/storage/transactions.h"

namespace ambrelio::embedded {

class Workspace final : public dao::Workspace {
 public:
  explicit Workspace(const PlanOptions& plan) : plan_(plan) {}

  std::shared_ptr<dao::Database> OpenDatabase(const std::string& path, bool exclusive,
                                              bool read_only, const std::string& connect) override;
  std::shared_ptr<dao::Database> CreateDatabase(const std::string& path,
                                                const std::string& connect) override;

  void BeginTrans() override { transactions_->Begin(); }
  void CommitTrans() override { transactions_->Commit(); }
  void Rollback() override { transactions_->Rollback(); }

 private:
  PlanOptions plan_;
  // Shared with the databases, which may outlive the workspace.
  std::shared_ptr<Transactions> transactions_ = std::make_shared<Transactions>();
};

}  // namespace ambrelio::embedded
