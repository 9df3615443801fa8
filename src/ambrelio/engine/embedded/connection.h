// What a database and all objects that came out of it share: the open file with its catalogue and
// its executor, until the database is closed.
#pragma once

#include <memory>

#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/embedded/storage/transactions.h"

namespace ambrelio::embedded {

class Connection {
 public:
  // The storage joins the levels that are open in the workspace; queries are planned by `plan`.
  Connection(std::unique_ptr<Storage> storage, std::unique_ptr<CatalogueStore> catalogue,
             std::shared_ptr<Transactions> transactions, const PlanOptions& plan);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Rolls back what is uncommitted. Closing again does nothing.
  void Close();

  // All raise 3420 once closed.
  void CheckOpen() const;
  Storage& storage() const;
  CatalogueStore& catalogue() const;
  Executor& executor() const;

  Liveness alive() const { return alive_; }

 private:
  std::shared_ptr<Transactions> transactions_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::unique_ptr<Storage> storage_;
  std::unique_ptr<CatalogueStore> catalogue_;
  std::unique_ptr<Executor> executor_;
};

}  // namespace ambrelio::embedded
