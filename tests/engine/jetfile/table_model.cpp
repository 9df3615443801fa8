#include "engine/jetfile/table_model.h"

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/rc4.h"
#include "ambrelio/engine/jetfile/table_reader.h"

namespace ambrelio::jetfile {

TableRowValues ReadRows(const JetFile& file, uint32_t definition_page) {
  const TableDefinition definition = ReadDefinition(file, definition_page);
  TableRowValues rows;
  TableReader reader(file, definition);
  while (reader.Next()) {
    auto& values = rows[reader.identity()];
    for (const ColumnDefinition& column : definition.columns) {
      values.push_back(reader.Value(column));
    }
  }
  return rows;
}

uint32_t PageOfTable(const JetFile& file, const std::string& name) {
  const Catalogue catalogue = ReadCatalogue(file);
  return catalogue.Find(ObjectType::kTable, name)->definition_page();
}

std::map<std::string, uint32_t> UserTables(const JetFile& file) {
  std::map<std::string, uint32_t> tables;
  const Catalogue catalogue = ReadCatalogue(file);
  for (const CatalogueObject* object : catalogue.UserObjects(ObjectType::kTable)) {
    tables[object->name] = object->definition_page();
  }
  return tables;
}

std::string CheckText(const JetFile& file) {
  std::string text;
  for (const Finding& finding : Check(file)) {
    text += PlaceText(finding.place) + ": " + finding.text + '\n';
  }
  return text;
}

Bytes StoredBytes(const JetFile& file) {
  Bytes bytes;
  const auto changes = file.StoredChanges();
  for (uint32_t number = 0; number < file.page_count(); ++number) {
    const auto change = changes.find(number);
    Bytes page = change != changes.end() ? *change->second : *file.Read(number);
    const bool in_clear = change == changes.end() && file.header().key != 0 && number != 0;
    if (in_clear) Rc4(file.header().key ^ number, page);
    Append(bytes, page);
  }
  return bytes;
}

std::vector<Variant> RandomValues::Row(const TableDefinition& definition) {
  std::vector<Variant> values;
  for (const ColumnDefinition& column : definition.columns) values.push_back(Value(column));
  return values;
}

Variant RandomValues::Value(const ColumnDefinition& column) {
  const auto number = static_cast<int32_t>(Below(200000)) - 100000;
  if (column.type == ColumnType::kBoolean) return OneIn(2);
  if (!column.autonumber() && OneIn(6)) return Variant::Null();
  switch (column.type) {
    case ColumnType::kByte:
      return static_cast<uint8_t>(number);
    case ColumnType::kInteger:
      return static_cast<int16_t>(number / 8);
    case ColumnType::kLong:
      return number;
    case ColumnType::kMoney:
      return Currency{int64_t{number} * 1234567};
    case ColumnType::kSingle:
      return static_cast<float>(number) / 7;
    case ColumnType::kDouble:
      return static_cast<double>(number) / 7;
    case ColumnType::kDate:
      return OleDate::FromDays(static_cast<double>(number) / 8);
    case ColumnType::kText:
      return column.fixed() ? Text(column.length / 2) : Text(Below(column.length / 2U + 1));
    case ColumnType::kBinary:
    case ColumnType::kLongBinary:
      return std::string(column.fixed() ? column.length : Below(column.length + 1U), 'b');
    case ColumnType::kMemo:
      return Text(LongLength() / 2);
    case ColumnType::kOle:
      return std::string(LongLength(), static_cast<char>(Below(256)));
    case ColumnType::kGuid: {
      char text[48];
      std::snprintf(text, sizeof text, "{%08X-0000-4000-8000-00000000ABCD}",
                    static_cast<uint32_t>(number));
      return std::string(text);
    }
    case ColumnType::kNumeric: {
      std::string text = std::to_string(number % 100);
      if (column.scale() > 0) text += '.' + std::string(column.scale(), '5');
      return text;
    }
    default:
      return Variant::Null();
  }
}

// Half of them of a few characters, so that keys meet.
std::string RandomValues::Text(size_t characters) {
  const std::string letters = "ABCDEFGHIJ KLMNOPQRSTabcdefghij-'0123456789";
  std::string text;
  const size_t kinds = OneIn(2) ? 3 : letters.size();
  for (size_t i = 0; i < characters; ++i) text += letters[Below(kinds)];
  return text;
}

size_t RandomValues::LongLength() {
  const size_t lengths[] = {0, 40, 64, 66, 1000, 3816, 3818, 9000};
  return OneIn(2) ? lengths[Below(std::size(lengths))] : Below(300);
}

}  // namespace ambrelio::jetfile
