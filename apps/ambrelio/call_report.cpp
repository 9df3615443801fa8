#include "call_report.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/value/convert.h"
#include "table.h"

namespace ambrelio::cli {
namespace {

// How the values of a column print.
enum class Form : uint8_t { kPlain, kTwoDecimals, kMovement };

struct Column {
  const char* heading;
  Form form = Form::kPlain;
};

// The columns of the rows that a member gives.
struct Layout {
  std::string_view class_name;
  std::string_view member;
  std::vector<Column> columns;
};

const std::vector<Layout>& Layouts() {
  static const std::vector<Column> litres = {
      {"Clave"}, {"Nombre"}, {"%", Form::kTwoDecimals}, {"Litros", Form::kTwoDecimals}};
  static const std::vector<Column> kilos = {
      {"Clave"}, {"Nombre"}, {"%", Form::kTwoDecimals}, {"Kilos", Form::kTwoDecimals}};
  static const std::vector<Layout> layouts = {
      {"Deposito", "Composicion", litres},
      {"Vaciado", "Composicion", litres},
      {"Tolva", "Composicion", kilos},
      {"Descarga", "Composicion", kilos},
      {"Deposito",
       "Historial",
       {{"Momento"}, {"Tipo", Form::kMovement}, {"Depósito/Tolva"}, {"Número"}}},
      {"Deposito", "Formula", {{"Nivel"}, {"A0"}, {"A1"}, {"A2"}, {"A3"}}},
  };
  return layouts;
}

Table::Cell FormatCell(const Variant& value, Form form) {
  constexpr int kDecimals = 2;
  if (form == Form::kTwoDecimals) return CellOf(value, kDecimals);
  if (form == Form::kMovement && IsNumeric(value)) {
    constexpr const char* kMovements[] = {"Descarga", "Vaciado", "Nivel"};
    const int32_t kind = ToLong(value);
    if (kind >= 1 && kind <= 3) return {kMovements[kind - 1]};
  }
  return CellOf(value);
}

// The values of a row; of a list that is no list of rows, the element itself.
Variant::Array ValuesOf(const Variant& row) {
  return row.is_array() ? row.array() : Variant::Array{row};
}

// Named columns, or numbered ones for a list without a layout. The longest row counts.
std::vector<Column> ColumnsFor(const Layout* layout, const Variant::Array& rows,
                               std::vector<std::string>& names) {
  std::vector<Column> columns = layout == nullptr ? std::vector<Column>() : layout->columns;
  for (const Column& column : columns) names.emplace_back(column.heading);
  for (const Variant& row : rows) {
    while (columns.size() < ValuesOf(row).size()) {
      columns.emplace_back();
      names.push_back(std::to_string(columns.size()));
    }
  }
  return columns;
}

std::string ListText(const Layout* layout, const Variant::Array& rows) {
  std::vector<std::string> names;
  const std::vector<Column> columns = ColumnsFor(layout, rows, names);
  Table table(names);
  for (const Variant& row : rows) {
    const Variant::Array values = ValuesOf(row);
    std::vector<Table::Cell> cells(columns.size());
    for (size_t i = 0; i < values.size(); ++i) cells[i] = FormatCell(values[i], columns[i].form);
    table.AddRow(std::move(cells));
  }
  return table.Text();
}

std::string ChangedText(const automation::Member& member, const automation::CallResult& result) {
  Table table({"Argumento", "Valor"});
  for (size_t i = 0; i < result.changed.size(); ++i) {
    if (!result.changed[i]) continue;
    table.AddRow({{member.arguments[i].name}, CellOf(result.arguments[i].value_or(Variant()))});
  }
  return table.Text();
}

}  // namespace

std::string CallReport(const std::string& class_name, const automation::Member& member,
                       const automation::CallResult& result) {
  const auto& layouts = Layouts();
  const auto found = std::find_if(layouts.begin(), layouts.end(), [&](const Layout& layout) {
    return layout.class_name == class_name && layout.member == member.name;
  });
  std::string text;
  if (result.result.is_array()) {
    text = ListText(found == layouts.end() ? nullptr : &*found, result.result.array());
  } else if (member.result != automation::ValueType::kNone) {
    text = CellOf(result.result).text + '\n';
  }
  if (result.AnyChanged()) text += (text.empty() ? "" : "\n") + ChangedText(member, result);
  return text;
}

}  // namespace ambrelio::cli
