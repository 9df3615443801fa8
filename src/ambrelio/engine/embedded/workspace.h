// The default workspace: opens and makes databases, and holds their transactions together.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/planner/planner.h"
#include "ambrelio/engine/embedded/storage/kept_indexes.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/embedded/storage/transactions.h"

namespace ambrelio::embedded {

// What is made when a database is created.
enum class NewFiles : uint8_t {
  kByName,   // a Jet file where the name ends in .mdb, a file of the engine's own otherwise
  kOfEngine  // always a file of the engine's own
};

class Workspace final : public dao::Workspace {
 public:
  Workspace(const PlanOptions& plan, KeptIndexes kept, NewFiles new_files)
      : plan_(plan), kept_(std::move(kept)), new_files_(new_files) {}

  std::shared_ptr<dao::Database> OpenDatabase(const std::string& path, bool exclusive,
                                              bool read_only, const std::string& connect) override;
  std::shared_ptr<dao::Database> CreateDatabase(const std::string& path,
                                                const std::string& connect) override;

  void BeginTrans() override { transactions_->Begin(); }
  void CommitTrans() override { transactions_->Commit(); }
  void Rollback() override { transactions_->Rollback(); }
  void BeginStretch() override { transactions_->BeginStretch(); }
  void EndStretch() override { transactions_->EndStretch(); }

 private:
  std::shared_ptr<dao::Database> Connect(std::unique_ptr<Storage> storage) const;

  const PlanOptions plan_;
  const KeptIndexes kept_;
  const NewFiles new_files_;
  // Shared with the databases, which may outlive the workspace.
  std::shared_ptr<Transactions> transactions_ = std::make_shared<Transactions>();
};

}  // namespace ambrelio::embedded
