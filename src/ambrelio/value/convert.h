// The conversions of Visual Basic, between Variants, numbers, text and dates.
//
// All throw AutomationError: 6 overflow, 13 type mismatch, 94 invalid use of Null. Empty converts
// to 0, False, "" and the zero date. True is -1. Text is read and written by Locale::Current().
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ambrelio/value/variant.h"

namespace ambrelio {

bool ToBoolean(const Variant& value);
uint8_t ToByte(const Variant& value);
// To the nearest whole number, an exact half to the even neighbour.
int16_t ToInteger(const Variant& value);
int32_t ToLong(const Variant& value);
double ToDouble(const Variant& value);
OleDate ToDate(const Variant& value);
// Doubles with up to 15 significant digits, dates as the locale's short date and time.
std::string ToText(const Variant& value);

int16_t RoundToInteger(double value);
int32_t RoundToLong(double value);

// Whether ToDate makes sense of it: a date, or text that reads as one. Numbers are no dates.
bool IsDate(const Variant& value);
// Whether ToDouble accepts it: numbers, Booleans, Empty, and text that reads as a number.
bool IsNumeric(const Variant& value);

// Text that reads as a number by the locale (outer white space, sign before or after, parentheses,
// grouping signs, exponent, &H and &O); nothing when it does not.
std::optional<double> ParseNumber(std::string_view text);
// Text that reads as a date, a time or both by the locale; nothing when it does not.
std::optional<OleDate> ParseDate(std::string_view text);
// The longest number at the start of the text, blanks skipped, the point as the only decimal sign;
// 0 when there is none. (`Val`)
double LeadingNumber(std::string_view text);

// A number with up to 15 significant digits, without trailing zeros, `decimal` as decimal sign,
// scientific from 1E+15 up and for small numbers that do not fit. (`CStr`)
std::string NumberText(double value, char decimal);
// A number with exactly `decimals` decimals and a point, as Format prints it: at most 15
// significant digits of the value count, and those are rounded half away from zero.
std::string FixedText(double value, int decimals);

}  // namespace ambrelio
