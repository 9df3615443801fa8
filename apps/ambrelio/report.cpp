#include "report.h"

#include <algorithm>
#include <iterator>

#include "ambrelio/value/convert.h"
#include "json_value.h"

namespace ambrelio::cli {
namespace {

bool IsAbsent(const Variant& value) { return value.is_null() || value.is_empty(); }

// What nobody knows, or nobody has written, is a dash to people.
bool ReadsAsNothing(const Variant& value) {
  return IsAbsent(value) || (value.is_text() && value.as<std::string>().empty());
}

std::string StateTable(const Report& report) {
  Table table({"", ""});
  for (const std::vector<Variant>& row : report.rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      const ReportColumn& column = report.columns[i];
      table.AddRow(
          {{column.heading}, {ReadsAsNothing(row[i]) ? "-" : CellOf(row[i], column.form).text}});
    }
  }
  return table.Text();
}

std::string ListTable(const Report& report) {
  std::vector<std::string> headings;
  std::vector<bool> numbers;  // whether a dash of that column stands among numbers
  for (size_t i = 0; i < report.columns.size(); ++i) {
    headings.push_back(report.columns[i].heading);
    numbers.push_back(std::any_of(report.rows.begin(), report.rows.end(), [&](const auto& row) {
      return CellOf(row[i], report.columns[i].form).right;
    }));
  }
  Table table(headings);
  for (const std::vector<Variant>& row : report.rows) {
    std::vector<Table::Cell> cells;
    for (size_t i = 0; i < row.size(); ++i) {
      cells.push_back(ReadsAsNothing(row[i]) ? Table::Cell{"-", numbers[i]}
                                             : CellOf(row[i], report.columns[i].form));
    }
    table.AddRow(std::move(cells));
  }
  return table.Text();
}

Json RowJson(const Report& report, const std::vector<Variant>& row) {
  Json json = Json::object();
  for (size_t i = 0; i < row.size(); ++i) {
    json[report.columns[i].key] = IsAbsent(row[i]) ? Json() : ToJson(row[i]);
  }
  return json;
}

std::string JsonText(const Report& report) {
  if (report.single) return JsonLine(RowJson(report, report.rows.front())) + '\n';
  Json json = Json::array();
  for (const std::vector<Variant>& row : report.rows) json.push_back(RowJson(report, row));
  return JsonLine(json) + '\n';
}

std::string CsvText(const Report& report) {
  std::vector<Variant> keys;
  std::transform(report.columns.begin(), report.columns.end(), std::back_inserter(keys),
                 [](const ReportColumn& column) { return Variant(column.key); });
  std::string text = CsvLine(keys);
  for (const std::vector<Variant>& row : report.rows) text += CsvLine(row);
  return text;
}

std::string CsvField(const Variant& value) {
  if (IsAbsent(value)) return "";
  std::string text = value.is_text() ? value.as<std::string>() : CellOf(value).text;
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"') quoted += c;
  }
  return quoted + '"';
}

}  // namespace

void AddOutputOptions(CLI::App& command, OutputForm& form) {
  auto* json = command.add_flag_callback(
      "--json", [&form] { form = OutputForm::kJson; }, "Print one line of JSON");
  command
      .add_flag_callback(
          "--csv", [&form] { form = OutputForm::kCsv; },
          "Print comma-separated values with a line of names")
      ->excludes(json);
}

Table::Cell CellOf(const Variant& value, CellForm form) {
  constexpr int kDecimals = 2;
  if (form == CellForm::kTwoDecimals) return CellOf(value, kDecimals);
  if (form == CellForm::kMovement && IsNumeric(value)) {
    constexpr const char* kMovements[] = {"Descarga", "Vaciado", "Nivel"};
    const int32_t kind = ToLong(value);
    if (kind >= 1 && kind <= 3) return {kMovements[kind - 1]};
  }
  return CellOf(value);
}

std::string Render(const Report& report, OutputForm form) {
  switch (form) {
    case OutputForm::kTable:
      return report.single ? StateTable(report) : ListTable(report);
    case OutputForm::kJson:
      return JsonText(report);
    case OutputForm::kCsv:
      return CsvText(report);
  }
  return {};
}

std::string CsvLine(const std::vector<Variant>& values) {
  std::string line;
  for (size_t i = 0; i < values.size(); ++i) line += (i > 0 ? "," : "") + CsvField(values[i]);
  return line + "\r\n";
}

}  // namespace ambrelio::cli
