#include "ambrelio/engine/jetfile/index_key.h"

#include <algorithm>
#include <bit>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/general_order.h"
#include "ambrelio/engine/jetfile/values.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint8_t kNotNull = 0x7F;
constexpr uint8_t kNotNullDescending = 0x80;
constexpr uint8_t kNull = 0x00;
constexpr uint8_t kNullDescending = 0xFF;
// Bytes come in groups of eight. This stands behind each but the last, which has its size there.
constexpr size_t kGroup = 8;
constexpr uint8_t kMoreGroups = 0x09;

std::optional<TextOrder> OrderOf(uint16_t language) {
  constexpr uint16_t kGeneral = 0x0409;
  constexpr uint16_t kModernSpanish = 0x0C0A;
  constexpr uint16_t kTraditionalSpanish = 0x040A;
  switch (language) {
    case kGeneral:
      return TextOrder::kGeneral;
    case kModernSpanish:
      return TextOrder::kModernSpanish;
    case kTraditionalSpanish:
      return TextOrder::kTraditionalSpanish;
    default:
      return std::nullopt;
  }
}

std::optional<TextOrder> OrderOf(const ColumnDefinition& column) {
  if (column.sort_id != 0 || column.collation_version != 0) return std::nullopt;
  return OrderOf(column.collation);
}

Bytes BigEndian(uint64_t bits, size_t size) {
  Bytes bytes;
  for (size_t i = size; i-- > 0;) bytes.push_back(static_cast<uint8_t>(bits >> (8 * i)));
  return bytes;
}

uint64_t TopBit(size_t size) { return uint64_t{1} << (8 * size - 1); }

Bytes SignedKey(int64_t number, size_t size) {
  return BigEndian(static_cast<uint64_t>(number) ^ TopBit(size), size);
}

Bytes FloatKey(uint64_t bits, size_t size) {
  return BigEndian((bits & TopBit(size)) == 0 ? bits ^ TopBit(size) : ~bits, size);
}

void Invert(Bytes& bytes) {
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(~byte);
}

// In descending keys the marks between the groups stay, but the size of the last does not.
Bytes GroupedKey(std::span<const uint8_t> bytes, bool ascending) {
  Bytes key;
  do {
    const size_t size = std::min(bytes.size(), kGroup);
    Bytes group(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    group.resize(kGroup);
    bytes = bytes.subspan(size);
    if (bytes.empty()) group.push_back(static_cast<uint8_t>(size));
    if (!ascending) Invert(group);
    if (!bytes.empty()) group.push_back(kMoreGroups);
    Append(key, group);
  } while (!bytes.empty());
  return key;
}

// The sign's byte stays as it is in descending keys, by a whim of the format.
std::optional<Bytes> NumericKey(const std::string& text, uint8_t scale, bool ascending) {
  const auto digits = ParseNumeric(text, scale);
  if (!digits) return std::nullopt;
  Bytes magnitude(digits->magnitude.begin(), digits->magnitude.end());
  if (digits->negative == ascending) Invert(magnitude);
  Bytes key{digits->negative ? uint8_t{0x00} : uint8_t{0xFF}};
  Append(key, magnitude);
  return key;
}

std::optional<Bytes> TextKey(const ColumnDefinition& column, const std::string& text,
                             bool ascending) {
  const auto order = OrderOf(column);
  if (!order) return std::nullopt;
  auto key = GeneralOrderKey(text, *order);
  if (key && !ascending) {
    Invert(*key);
    key->push_back(0);
  }
  return key;
}

// Of the types whose descending key is the ascending one inverted; nothing for others.
std::optional<Bytes> SimpleKey(const ColumnDefinition& column, const Variant& value) {
  switch (column.type) {
    case ColumnType::kBoolean:
      return Bytes{value.as<bool>() ? uint8_t{0x00} : uint8_t{0xFF}};
    case ColumnType::kByte:
      return Bytes{value.as<uint8_t>()};
    case ColumnType::kInteger:
      return SignedKey(value.as<int16_t>(), sizeof(int16_t));
    case ColumnType::kLong:
      return SignedKey(value.as<int32_t>(), sizeof(int32_t));
    case ColumnType::kMoney:
      return SignedKey(value.as<Currency>().ten_thousandths, sizeof(int64_t));
    case ColumnType::kSingle:
      return FloatKey(std::bit_cast<uint32_t>(value.as<float>()), sizeof(float));
    case ColumnType::kDouble:
      return FloatKey(std::bit_cast<uint64_t>(value.as<double>()), sizeof(double));
    case ColumnType::kDate:
      return FloatKey(std::bit_cast<uint64_t>(value.as<OleDate>().days()), sizeof(double));
    default:
      return std::nullopt;
  }
}

std::optional<Bytes> DataKey(const ColumnDefinition& column, bool ascending, const Variant& value,
                             bool jet4) {
  if (auto key = SimpleKey(column, value)) {
    if (!ascending) Invert(*key);
    return key;
  }
  if (!value.is_text()) return std::nullopt;
  const auto& text = value.as<std::string>();
  switch (column.type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      return jet4 ? TextKey(column, text, ascending) : std::nullopt;
    case ColumnType::kBinary:
      return GroupedKey({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, ascending);
    case ColumnType::kGuid:
      if (const auto bytes = GuidInTextOrder(text)) return GroupedKey(*bytes, ascending);
      return std::nullopt;
    case ColumnType::kNumeric:
      return NumericKey(text, column.scale(), ascending);
    default:
      return std::nullopt;
  }
}

const ColumnDefinition& ColumnOf(const TableDefinition& definition, KeyColumn key) {
  const ColumnDefinition* column = definition.FindColumn(key.column);
  if (column == nullptr) {
    throw Damage({definition.page(), 0},
                 "an index is over a column of the unknown number " + std::to_string(key.column));
  }
  return *column;
}

}  // namespace

std::optional<Bytes> EncodeKeyPart(const ColumnDefinition& column, bool ascending,
                                   const Variant& value, bool jet4) {
  if (value.is_null()) return Bytes{ascending ? kNull : kNullDescending};
  auto data = DataKey(column, ascending, value, jet4);
  if (data) data->insert(data->begin(), ascending ? kNotNull : kNotNullDescending);
  return data;
}

std::optional<Bytes> EncodeKey(const TableDefinition& definition, const IndexDefinition& index,
                               const std::vector<Variant>& values, bool jet4) {
  const std::vector<KeyColumn> columns = index.Columns();
  Bytes key;
  for (size_t i = 0; i < std::min(columns.size(), values.size()); ++i) {
    const auto part =
        EncodeKeyPart(ColumnOf(definition, columns[i]), columns[i].ascending(), values[i], jet4);
    if (!part) return std::nullopt;
    Append(key, *part);
  }
  if (key.size() > kLongestKey) return std::nullopt;
  return key;
}

bool IsKnownLanguage(uint16_t language) { return OrderOf(language).has_value(); }

bool IsEncodable(const TableDefinition& definition, const IndexDefinition& index, bool jet4) {
  const auto columns = index.Columns();
  return std::all_of(columns.begin(), columns.end(), [&](KeyColumn key) {
    const ColumnDefinition& column = ColumnOf(definition, key);
    if (column.type != ColumnType::kText && column.type != ColumnType::kMemo) return true;
    return jet4 && OrderOf(column).has_value();
  });
}

}  // namespace ambrelio::jetfile
