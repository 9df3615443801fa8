// The key of a text in the General order of Jet 4, and in its Spanish variants.
#pragma once

#include <optional>
#include <string_view>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

enum class TextOrder : uint8_t {
  kGeneral,
  kModernSpanish,       // the letter between n and o
  kTraditionalSpanish,  // and ch, ll as letters of their own
};

// What stands behind the flag of a key, up to and with the zero byte at its end. Nothing when a
// character has no known place in the order. Case and trailing blanks leave no mark in a key; only
// the first 255 characters of a text count.
std::optional<Bytes> GeneralOrderKey(std::string_view utf8, TextOrder order);

}  // namespace ambrelio::jetfile
