// How values become literals in the SQL that the library sends, and the fragments that several
// statements share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ambrelio/value/ole_date.h"

namespace ambrelio::data {

// "#month/day/year hour:minute:second#", no zero padding, whatever the locale.
std::string SqlDate(OleDate moment);
// Eight (two) decimals with a point; exactly 0 is "0".
std::string SqlNum8(double value);
std::string SqlNum2(double value);
// In apostrophes, outer blanks trimmed, apostrophes inside replaced by "´"; "Null" for "".
std::string SqlText(std::string_view text);
// An apostrophe never reaches the database: each becomes the acute accent "´".
std::string ReplaceApostrophes(std::string_view text);

// The key of a weighing as a piece of a select list; ends with a comma and a blank.
std::string PesadaKeyColumns();
// The weighings with their shares, as a piece of a from clause.
std::string PesadaSplitJoin();
// "(TOLVA=t) and (DESCARGA=d) ".
std::string WhereHopperDischarge(int16_t hopper, int32_t discharge);

}  // namespace ambrelio::data
