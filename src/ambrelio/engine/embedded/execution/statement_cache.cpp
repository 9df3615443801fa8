#include "ambrelio/engine/embedded/execution/statement_cache.h"

namespace ambrelio::embedded {

void StatementCache::KeepVersion(int64_t version) {
  if (version == version_) return;
  places_.clear();
  entries_.clear();
  version_ = version;
}

std::unique_ptr<Prepared> StatementCache::Take(const std::string& key, bool& by_text) {
  by_text = false;
  const auto place = places_.find(key);
  if (place == places_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, place->second);
  by_text = place->second->by_text;
  return std::move(place->second->idle);
}

StatementCache::Entry& StatementCache::At(const std::string& key) {
  if (const auto place = places_.find(key); place != places_.end()) return *place->second;
  if (entries_.size() == kCapacity) {
    places_.erase(entries_.back().key);
    entries_.pop_back();
  }
  entries_.push_front({key, nullptr, false});
  places_.emplace(entries_.front().key, entries_.begin());
  return entries_.front();
}

void StatementCache::Return(std::unique_ptr<Prepared> prepared) {
  if (prepared->version != version_) return;
  Entry& entry = At(prepared->key);
  // When one statement was in use twice, one of the two is enough.
  if (!entry.idle) entry.idle = std::move(prepared);
}

void StatementCache::MarkByText(const std::string& key) { At(key).by_text = true; }

Lease::~Lease() {
  if (!prepared_) return;
  prepared_->main.Reset();
  if (prepared_->row) prepared_->row->Reset();
  if (prepared_->last) prepared_->last->Reset();
  if (prepared_->stepwise) {
    prepared_->stepwise->values.Reset();
    for (Prepared::Target& target : prepared_->stepwise->targets) target.write.Reset();
  }
  if (const auto cache = cache_.lock()) cache->Return(std::move(prepared_));
}

}  // namespace ambrelio::embedded
