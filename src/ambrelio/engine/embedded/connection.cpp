#include "ambrelio/engine/embedded/connection.h"

#include <utility>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {

Connection::Connection(std::unique_ptr<Storage> storage, std::unique_ptr<CatalogueStore> catalogue,
                       std::shared_ptr<Transactions> transactions, const PlanOptions& plan)
    : transactions_(std::move(transactions)),
      storage_(std::move(storage)),
      catalogue_(std::move(catalogue)),
      executor_(std::make_unique<Executor>(*storage_, *catalogue_, plan)) {
  transactions_->Join(*storage_);
}

Connection::~Connection() { Close(); }

void Connection::Close() {
  if (!*alive_) return;
  *alive_ = false;
  transactions_->Leave(*storage_);
  executor_.reset();
  catalogue_.reset();
  storage_.reset();
}

void Connection::CheckOpen() const {
  if (!*alive_) dao::Raise(dao::DaoError::kObjectClosed, dao::source::kDatabase);
}

Storage& Connection::storage() const {
  CheckOpen();
  return *storage_;
}

CatalogueStore& Connection::catalogue() const {
  CheckOpen();
  return *catalogue_;
}

Executor& Connection::executor() const {
  CheckOpen();
  return *executor_;
}

}  // namespace ambrelio::embedded
