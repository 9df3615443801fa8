// How the binder goes into a stored query.
#pragma once

#include <algorithm>

#include "ambrelio/engine/embedded/binder/binding.h"
#include "ambrelio/engine/embedded/sql/parser.h"

namespace ambrelio::embedded {

template <class Use>
void Binding::WithStoredQuery(const QueryInfo& stored, const Use& use) {
  const bool inside_itself =
      std::any_of(open_queries_.begin(), open_queries_.end(),
                  [&](const std::string& name) { return SameName(name, stored.name); });
  if (inside_itself) Fail(dao::DaoError::kCircularQuery, stored.name);
  open_queries_.push_back(stored.name);
  const Scope* outside = scope_;
  scope_ = nullptr;
  use(*sql::ParseQuery(stored.sql));
  scope_ = outside;
  open_queries_.pop_back();
}

}  // namespace ambrelio::embedded
