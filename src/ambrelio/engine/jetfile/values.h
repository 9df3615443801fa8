// Stored values as Variants, exactly as they are stored.
//
//   Boolean, Byte, Integer, Long, Single, Double   as they are
//   Money                                          Currency
//   Date                                           OleDate
//   Text, Memo                                     text, UTF-8
//   GUID                                           text: {00112233-4455-6677-8899-AABBCCDDEEFF}
//   Numeric                                        text: all its digits, with as many decimals as
//                                                  the column has: -12.5000
//   Binary, OLE                                    text that is the bytes themselves, no UTF-8
//
// A Variant has no alternative of its own for the last three; their column tells what they are.
#pragma once

#include "ambrelio/engine/jetfile/table_definition.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::jetfile {

// The value of a column whose bytes lie in `bytes`: the whole of it, also of a long value. Raises
// Damage when their number does not fit the type.
Variant DecodeValue(const ColumnDefinition& column, ByteView bytes, bool jet4);

// What DecodeValue reads, as Jet 4 stores it. The Variant has the alternative of the column's type.
// Raises 13 (type mismatch) otherwise, and 6 (overflow) for a Numeric that does not fit.
Bytes EncodeValue(const ColumnDefinition& column, const Variant& value);

std::string GuidText(ByteView bytes);
std::string NumericText(ByteView bytes, uint8_t scale);

// The sixteen bytes of a GUID in the order of its text; nothing when it is none.
std::optional<Bytes> GuidInTextOrder(std::string_view text);

// A Numeric without its point.
struct NumericDigits {
  bool negative = false;
  std::array<uint8_t, 16> magnitude{};  // the most significant byte first
};
// Nothing when the text is no decimal number of at most `scale` decimals and 128 bits.
std::optional<NumericDigits> ParseNumeric(std::string_view text, uint8_t scale);

}  // namespace ambrelio::jetfile
