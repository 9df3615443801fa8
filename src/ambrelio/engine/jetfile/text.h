// Text as Jet 4 keeps it: UTF-16, or compressed to a byte a character.
#pragma once

#include <string>
#include <string_view>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

// Both directions of text that is never compressed. An odd byte at the end is not read.
std::string WideText(ByteView bytes);
Bytes WideBytes(std::string_view utf8);

// The text of a column's value, compressed or not. Raises Damage when it ends inside a character.
std::string ColumnText(ByteView bytes);

// The shortest form that the original engine writes: compressed when `compress` is set, it saves
// bytes and every character is one of U+0001 to U+00FF. Nothing may begin with U+FEFF, which would
// read as the mark of compression: such a character is dropped.
Bytes ColumnBytes(std::string_view utf8, bool compress);

}  // namespace ambrelio::jetfile
