#include "ambrelio/engine/jetfile/values.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <limits>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/text.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kGuidBytes = 16;
// The bytes of a stored GUID in the order of its text.
constexpr std::array<size_t, kGuidBytes> kGuidOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                       8, 9, 10, 11, 12, 13, 14, 15};
constexpr size_t kNumericWords = 4;
constexpr uint8_t kNegative = 0x80;

void RequireSize(ByteView bytes, size_t size) {
  if (bytes.size() == size) return;
  throw Damage(bytes.PlaceOf(0),
               "a value of " + std::to_string(size) + " bytes has " + std::to_string(bytes.size()));
}

template <class T>
T NumberOf(ByteView bytes) {
  RequireSize(bytes, sizeof(T));
  if constexpr (sizeof(T) == 1) {
    return bytes.U8(0);
  } else if constexpr (sizeof(T) == 2) {
    return std::bit_cast<T>(bytes.U16(0));
  } else if constexpr (sizeof(T) == 4) {
    return std::bit_cast<T>(bytes.U32(0));
  } else {
    return std::bit_cast<T>(bytes.U64(0));
  }
}

template <class T>
const T& Held(const Variant& value) {
  try {
    return value.as<T>();
  } catch (const std::bad_variant_access&) {
    Raise(RuntimeError::kTypeMismatch);
  }
}

template <class T>
Bytes BytesOf(T number) {
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  Bytes bytes;
  if constexpr (std::is_floating_point_v<T>) {
    Append(bytes, std::bit_cast<Bits>(number), sizeof(T));
  } else {
    Append(bytes, static_cast<uint64_t>(number), sizeof(T));
  }
  return bytes;
}

Bytes GuidBytes(const std::string& text) {
  const auto ordered = GuidInTextOrder(text);
  if (!ordered) Raise(RuntimeError::kTypeMismatch);
  Bytes bytes(kGuidBytes);
  for (size_t i = 0; i < kGuidBytes; ++i) bytes[kGuidOrder[i]] = (*ordered)[i];
  return bytes;
}

Bytes NumericBytes(const std::string& text, uint8_t scale) {
  const auto digits = ParseNumeric(text, scale);
  if (!digits) Raise(RuntimeError::kOverflow);
  Bytes bytes{digits->negative ? kNegative : uint8_t{0}};
  for (size_t word = 0; word < kNumericWords; ++word) {
    for (size_t i = 4; i-- > 0;) bytes.push_back(digits->magnitude[4 * word + i]);
  }
  return bytes;
}

std::string TextOf(ByteView bytes, bool jet4) {
  return jet4 ? ColumnText(bytes) : Windows1252ToUtf8(bytes.Text());
}

// A fixed-size text is as long as its column, and never compressed.
Bytes TextBytes(const ColumnDefinition& column, const std::string& text) {
  if (!column.fixed()) return ColumnBytes(text, column.compressed());
  Bytes bytes = WideBytes(text);
  while (bytes.size() + 2 <= column.length) Append(bytes, U' ', 2);
  return bytes;
}

}  // namespace

Variant DecodeValue(const ColumnDefinition& column, ByteView bytes, bool jet4) {
  switch (column.type) {
    case ColumnType::kBoolean:
      break;
    case ColumnType::kByte:
      return NumberOf<uint8_t>(bytes);
    case ColumnType::kInteger:
      return NumberOf<int16_t>(bytes);
    case ColumnType::kLong:
      return NumberOf<int32_t>(bytes);
    case ColumnType::kMoney:
      return Currency{NumberOf<int64_t>(bytes)};
    case ColumnType::kSingle:
      return NumberOf<float>(bytes);
    case ColumnType::kDouble:
      return NumberOf<double>(bytes);
    case ColumnType::kDate:
      return OleDate::FromDays(NumberOf<double>(bytes));
    case ColumnType::kText:
    case ColumnType::kMemo:
      return TextOf(bytes, jet4);
    case ColumnType::kBinary:
    case ColumnType::kOle:
    case ColumnType::kLongBinary:
      return bytes.Text();
    case ColumnType::kGuid:
      return GuidText(bytes);
    case ColumnType::kNumeric:
      return NumericText(bytes, column.scale());
  }
  throw Damage(bytes.PlaceOf(0), "the column " + column.name + " has the unknown type " +
                                     std::to_string(static_cast<int>(column.type)));
}

Bytes EncodeValue(const ColumnDefinition& column, const Variant& value) {
  switch (column.type) {
    case ColumnType::kBoolean:
      return {};
    case ColumnType::kByte:
      return BytesOf(Held<uint8_t>(value));
    case ColumnType::kInteger:
      return BytesOf(Held<int16_t>(value));
    case ColumnType::kLong:
      return BytesOf(Held<int32_t>(value));
    case ColumnType::kMoney:
      return BytesOf(Held<Currency>(value).ten_thousandths);
    case ColumnType::kSingle:
      return BytesOf(Held<float>(value));
    case ColumnType::kDouble:
      return BytesOf(Held<double>(value));
    case ColumnType::kDate:
      return BytesOf(Held<OleDate>(value).days());
    case ColumnType::kText:
    case ColumnType::kMemo:
      return TextBytes(column, Held<std::string>(value));
    case ColumnType::kBinary:
    case ColumnType::kOle:
    case ColumnType::kLongBinary: {
      const auto& text = Held<std::string>(value);
      return {text.begin(), text.end()};
    }
    case ColumnType::kGuid:
      return GuidBytes(Held<std::string>(value));
    case ColumnType::kNumeric:
      return NumericBytes(Held<std::string>(value), column.scale());
  }
  Raise(RuntimeError::kTypeMismatch);
}

std::string GuidText(ByteView bytes) {
  RequireSize(bytes, kGuidBytes);
  std::string text = "{";
  for (size_t i = 0; i < kGuidBytes; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", bytes.U8(kGuidOrder[i]));
    text += digits;
  }
  return text + '}';
}

std::optional<Bytes> GuidInTextOrder(std::string_view text) {
  constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  if (text.size() != kForm.size()) return std::nullopt;
  Bytes bytes;
  bool low = false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (kForm[i] != 'x') {
      if (text[i] != kForm[i]) return std::nullopt;
      continue;
    }
    const char c = text[i] >= 'a' ? static_cast<char>(text[i] - 'a' + 'A') : text[i];
    const size_t digit = kDigits.find(c);
    if (digit == std::string_view::npos) return std::nullopt;
    if (low) {
      bytes.back() = static_cast<uint8_t>(bytes.back() << 4 | digit);
    } else {
      bytes.push_back(static_cast<uint8_t>(digit));
    }
    low = !low;
  }
  return bytes;
}

std::string NumericText(ByteView bytes, uint8_t scale) {
  constexpr uint64_t kBase = 1'000'000'000;
  RequireSize(bytes, 1 + 4 * kNumericWords);
  std::array<uint32_t, kNumericWords> words{};
  for (size_t i = 0; i < kNumericWords; ++i) words[i] = bytes.U32(1 + 4 * i);
  std::string digits;  // from the last to the first, by nines
  while (std::any_of(words.begin(), words.end(), [](uint32_t word) { return word != 0; })) {
    uint64_t rest = 0;
    for (uint32_t& word : words) {
      const uint64_t number = rest << 32 | word;
      word = static_cast<uint32_t>(number / kBase);
      rest = number % kBase;
    }
    for (int i = 0; i < 9; ++i, rest /= 10) digits += static_cast<char>('0' + rest % 10);
  }
  while (digits.size() > scale + 1U && digits.back() == '0') digits.pop_back();
  while (digits.size() < scale + 1U) digits += '0';
  if (scale > 0) digits.insert(scale, 1, '.');
  const bool zero = digits.find_first_not_of("0.") == std::string::npos;
  if (bytes.U8(0) != 0 && !zero) digits += '-';
  std::reverse(digits.begin(), digits.end());
  return digits;
}

std::optional<NumericDigits> ParseNumeric(std::string_view text, uint8_t scale) {
  NumericDigits number;
  number.negative = text.starts_with('-');
  if (number.negative) text.remove_prefix(1);
  const size_t point = std::min(text.find('.'), text.size());
  std::string digits(text.substr(0, point));
  std::string_view decimals = text.substr(std::min(point + 1, text.size()));
  while (decimals.size() > scale && decimals.ends_with('0')) decimals.remove_suffix(1);
  if (decimals.size() > scale) return std::nullopt;
  digits += decimals;
  digits.append(scale - decimals.size(), '0');
  for (const char digit : digits) {
    if (digit < '0' || digit > '9') return std::nullopt;
    auto carry = static_cast<uint32_t>(digit - '0');
    for (auto byte = number.magnitude.rbegin(); byte != number.magnitude.rend(); ++byte) {
      carry += 10U * *byte;
      *byte = static_cast<uint8_t>(carry);
      carry >>= 8;
    }
    if (carry != 0) return std::nullopt;
  }
  if (digits.empty()) return std::nullopt;
  return number;
}

}  // namespace ambrelio::jetfile
