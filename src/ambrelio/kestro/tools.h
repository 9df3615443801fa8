// The small conversions and list operations used everywhere. Stateless.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::kestro {

class Tools {
 public:
  // Decimal digits, a leading "-" for negatives, no blanks.
  static std::string IntegerText(int16_t value);
  static std::string LongText(int32_t value);

  // Readings of a field value that take Null for 0 or "".
  static Variant ValueOrZero(const Variant& value);
  static int16_t ValueAsInteger(const Variant& value);
  static std::string ValueAsText(const Variant& value);

  // 1, -1, true, verdadero, yes, si, sí and on without regard to case, and any other number than 0.
  static bool TextAsBoolean(std::string_view text);

  // Takes the text up to the next separator off the front of `held`, with the separator.
  static std::string NextToken(std::string& held, char separator);
  // Every occurrence, case-sensitive.
  static std::string Replace(std::string_view text, std::string_view what, std::string_view by);
  static std::string Join(const std::vector<std::string>& parts, std::string_view separator);
  // `folder` and `file` with exactly one separator between them; an absolute `file` stands alone.
  static std::string CombinePath(std::string_view folder, std::string_view file);

  // Appends to a list held in a Variant: Empty becomes an array of one element with index 0.
  static void Append(Variant& list, Variant value);

  // The stored form of a database password. An obfuscation that keeps the password from being read
  // over a shoulder, no protection: whoever has this library can undo it. Decode gives nothing for
  // a text that Encode did not make.
  static std::string Encode(std::string_view password);
  static std::optional<std::string> Decode(std::string_view encoded);
};

}  // namespace ambrelio::kestro
