// The order of text: the General order for Western European letters.
#pragma once

#include <string_view>

namespace ambrelio::embedded {

// Less than, equal to or greater than 0 as `a` stands before, with or behind `b`.
//
// Texts differ first by their letters, digits and signs, then by accents (a before á, n before ñ),
// last by the places of hyphens, apostrophes and control characters. Case and trailing blanks never
// count. A total order of any bytes; allocates nothing.
int CompareText(std::string_view a, std::string_view b);

}  // namespace ambrelio::embedded
