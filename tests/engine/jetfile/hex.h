// Bytes as text: "7F 80 00", for tests that name them.
#pragma once

#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

inline std::string ToHex(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", byte);
    text += (text.empty() ? "" : " ") + std::string(digits);
  }
  return text;
}

// Blanks between the digits do not matter.
inline Bytes FromHex(std::string_view text) {
  Bytes bytes;
  std::string digits;
  for (const char c : text) {
    if (c == ' ') continue;
    digits += c;
    if (digits.size() < 2) continue;
    bytes.push_back(static_cast<uint8_t>(std::stoi(digits, nullptr, 16)));
    digits.clear();
  }
  return bytes;
}

}  // namespace ambrelio::jetfile
