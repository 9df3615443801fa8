#include "ambrelio/engine/embedded/storage/open_reads.h"

#include <utility>

namespace ambrelio::embedded {

void OpenReads::Add(const std::shared_ptr<OpenRead>& read) {
  std::erase_if(reads_, [](const std::weak_ptr<OpenRead>& known) { return known.expired(); });
  reads_.push_back(read);
}

void OpenReads::Settle() noexcept {
  for (const std::weak_ptr<OpenRead>& known : reads_) {
    if (const auto read = known.lock()) read->Settle();
  }
  reads_.clear();
}

void OpenReads::Abandon() noexcept {
  for (const std::weak_ptr<OpenRead>& known : reads_) {
    if (const auto read = known.lock()) read->Abandon();
  }
  reads_.clear();
}

}  // namespace ambrelio::embedded
