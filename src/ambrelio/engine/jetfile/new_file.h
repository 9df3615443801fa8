// A database with nothing in it.
#pragma once

#include <string_view>

#include "ambrelio/engine/jetfile/bytes.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::jetfile {

// The bytes of a new file of Jet 4, which are those that the original engine writes. `now` is what
// the catalogue gets as the date of its own objects. Raises 3031 for a password of more than twenty
// characters; an empty one is none.
Bytes NewFile(std::string_view password, OleDate now);

}  // namespace ambrelio::jetfile
