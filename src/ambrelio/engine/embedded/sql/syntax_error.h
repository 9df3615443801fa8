// How this room reports a fault in a statement's text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded::sql {

// The text from `offset` on, cut after some forty bytes at the end of a character; the end of the
// text when nothing follows.
std::string TextNear(std::string_view text, size_t offset);

// Throws `error` with the text near the fault.
[[noreturn]] void RaiseNear(dao::DaoError error, std::string_view text, size_t offset);

// Throws 3075 for a statement beyond the limits of length or nesting.
[[noreturn]] void RaiseTooComplex(std::string_view text, size_t offset);

}  // namespace ambrelio::embedded::sql
