// The DAO object behind each object of the adapter.
#pragma once

#include <utility>

#include "ambrelio/com/late_bound.h"

namespace ambrelio::dao_com {

class DaoObject {
 public:
  explicit DaoObject(com::LateBound object) : dao_(std::move(object)) {}
  const com::LateBound& dao() const { return dao_; }

 private:
  com::LateBound dao_;
};

}  // namespace ambrelio::dao_com
