// Values as text, plain and by the patterns of `Format`.
#pragma once

#include <string>
#include <string_view>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded {

// The text of a value of a column type, Null's is "": numbers in general format with a point (True
// is -1), dates as the locale prints them.
std::string TextOfType(const Variant& value, dao::FieldType type);

// `Format(value, pattern)`, for a value of a column type.
//
//   number   up to four sections by `;` (positive, negative, zero, Null) of 0 # . , % E+ E- and
//            literals; the sign before rounding chooses
//   date     d dd ddd dddd ddddd w ww m mm mmm mmmm q y yy yyyy h hh n nn s ss ttttt c AM/PM / :
//            (m after h is the minute); names in English
//   text     @ & < > !, a second section for Null and ""
//   a name   General Number, Fixed, Standard, Currency, Percent, Scientific, Yes/No, True/False,
//            On/Off, General Date, Long Date, Medium Date, Short Date, Long Time, Medium Time,
//            Short Time
//
// Numbers keep at most 15 significant digits and round half away from zero; decimal and grouping
// signs are the locale's. A text that is no number (or date) comes back as it is. An empty pattern
// gives TextOfType.
std::string FormatValue(const Variant& value, std::string_view pattern, dao::FieldType type);

}  // namespace ambrelio::embedded
