// The indexes that the library's questions need, whatever indexes a host has put on the tables.
#pragma once

#include "ambrelio/engine/embedded/storage/kept_indexes.h"

namespace ambrelio::engine {

const embedded::KeptIndexes& MillIndexes();

}  // namespace ambrelio::engine
