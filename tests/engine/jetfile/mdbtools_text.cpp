#include "engine/jetfile/mdbtools_text.h"

#include <algorithm>
#include <cstdio>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/table_reader.h"

namespace ambrelio::jetfile {
namespace {

std::string TypeText(const ColumnDefinition& column, bool jet4) {
  switch (column.type) {
    case ColumnType::kBoolean:
      return "Boolean";
    case ColumnType::kByte:
      return "Byte";
    case ColumnType::kInteger:
      return "Integer";
    case ColumnType::kLong:
      return "Long Integer";
    case ColumnType::kMoney:
      return "Currency";
    case ColumnType::kSingle:
      return "Single";
    case ColumnType::kDouble:
      return "Double";
    case ColumnType::kDate:
      return "DateTime";
    case ColumnType::kText:
      return "Text (" + std::to_string(jet4 ? column.length / 2 : column.length) + ")";
    case ColumnType::kOle:
      return "OLE (255)";
    case ColumnType::kMemo:
      return "Memo/Hyperlink (255)";
    case ColumnType::kGuid:
      return "Replication ID";
    case ColumnType::kNumeric:
      return "Numeric (" + std::to_string(column.precision()) + ", " +
             std::to_string(column.scale()) + ")";
    default:
      return "?";
  }
}

std::string Printed(const char* format, double number) {
  char text[64];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + '"';
}

// Bytes that their code page has no character for are question marks there.
std::string KnownCharacters(std::string text) {
  constexpr std::string_view kUnknown = "\uFFFD";
  for (size_t at = 0; (at = text.find(kUnknown, at)) != std::string::npos;) {
    text.replace(at, kUnknown.size(), "?");
  }
  return text;
}

std::string Hex(const std::string& bytes) {
  std::string text;
  for (const char c : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(c));
    text += digits;
  }
  return text;
}

// As a GUID is written there, which is then taken for bytes.
std::string WithoutLastHyphen(std::string guid) { return guid.erase(guid.rfind('-'), 1); }

std::string ValueText(const ColumnDefinition& column, const Variant& value) {
  switch (value.type()) {
    case VariantType::kNull:
      return "";
    case VariantType::kBoolean:
      return value.as<bool>() ? "1" : "0";
    case VariantType::kByte:
      return std::to_string(value.as<uint8_t>());
    case VariantType::kInteger:
      return std::to_string(value.as<int16_t>());
    case VariantType::kLong:
      return std::to_string(value.as<int32_t>());
    case VariantType::kSingle:
      return Printed("%.8g", value.as<float>());
    case VariantType::kDouble:
      return Printed("%.16g", value.as<double>());
    case VariantType::kCurrency:
      return Printed("%.4f", static_cast<double>(value.as<Currency>().ten_thousandths) / 10000);
    case VariantType::kDate:
      // It has no moments before its zero date.
      if (value.as<OleDate>().days() < 0) return "\"1900-01-00 00:00:00\"";
      return Quoted(value.as<OleDate>().Iso());
    default:
      break;
  }
  const auto& text = value.as<std::string>();
  if (column.type == ColumnType::kNumeric) return text;
  if (column.type == ColumnType::kOle) return Quoted(Hex(text));
  if (column.type == ColumnType::kGuid) return Quoted(Hex(WithoutLastHyphen(text)));
  return Quoted(KnownCharacters(text));
}

std::string SchemaText(const std::string& name, const TableDefinition& definition, bool jet4) {
  std::string text = "CREATE TABLE [" + name + "]\n (\n";
  for (size_t i = 0; i < definition.columns.size(); ++i) {
    const ColumnDefinition& column = definition.columns[i];
    text += "\t[" + column.name + "]\t\t\t" + TypeText(column, jet4);
    text += i + 1 < definition.columns.size() ? ", \n" : "\n";
  }
  return text + ");\n";
}

}  // namespace

std::string MdbtoolsText(const JetFile& file) {
  std::string text;
  const Catalogue catalogue = ReadCatalogue(file);
  std::vector<const CatalogueObject*> tables = catalogue.UserObjects(ObjectType::kTable);
  std::sort(tables.begin(), tables.end(),
            [](const auto* a, const auto* b) { return a->name < b->name; });
  for (const CatalogueObject* object : tables) {
    const TableDefinition definition = ReadDefinition(file, object->definition_page());
    text += SchemaText(object->name, definition, file.format().jet4);
    std::string line;
    for (const ColumnDefinition& column : definition.columns) {
      line += (line.empty() ? "" : ",") + column.name;
    }
    text += line + '\n';
    TableReader reader(file, definition);
    while (reader.Next()) {
      std::string row;
      for (size_t i = 0; i < definition.columns.size(); ++i) {
        row += (i > 0 ? "," : "") +
               ValueText(definition.columns[i], reader.Value(definition.columns[i]));
      }
      text += row + '\n';
    }
  }
  return text;
}

}  // namespace ambrelio::jetfile
