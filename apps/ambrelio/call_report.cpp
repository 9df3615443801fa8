#include "call_report.h"

#include <utility>
#include <vector>

#include "layouts.h"
#include "report.h"
#include "table.h"

namespace ambrelio::cli {
namespace {

// Engineers call members: unlike in other reports, Empty and Null are told apart.
std::string ListText(const Report& report) {
  std::vector<std::string> headings;
  for (const ReportColumn& column : report.columns) headings.push_back(column.heading);
  Table table(headings);
  for (const std::vector<Variant>& row : report.rows) {
    std::vector<Table::Cell> cells;
    for (size_t i = 0; i < row.size(); ++i) {
      cells.push_back(CellOf(row[i], report.columns[i].form));
    }
    table.AddRow(std::move(cells));
  }
  return table.Text();
}

struct ChangedArgument {
  const char* name;
  Variant value;
};
std::vector<ChangedArgument> ChangedArguments(const automation::Member& member,
                                              const automation::CallResult& result) {
  std::vector<ChangedArgument> changed;
  for (size_t i = 0; i < result.changed.size(); ++i) {
    if (!result.changed[i]) continue;
    changed.push_back({member.arguments[i].name, result.arguments[i].value_or(Variant())});
  }
  return changed;
}

std::string ChangedText(const std::vector<ChangedArgument>& changed) {
  Table table({"Argumento", "Valor"});
  for (const ChangedArgument& argument : changed) {
    table.AddRow({{argument.name}, CellOf(argument.value)});
  }
  return table.Text();
}

// An Empty result of a member that gives lists is a list without rows.
bool GivesList(const std::string& class_name, const automation::Member& member,
               const Variant& result) {
  return result.is_array() || (result.is_empty() && !ColumnsOf(class_name, member.name).empty());
}

}  // namespace

std::string CallReport(const std::string& class_name, const automation::Member& member,
                       const automation::CallResult& result) {
  std::string text;
  if (result.result.is_array()) {
    text = ListText(ListReport(class_name, member.name, result.result));
  } else if (member.result != automation::ValueType::kNone) {
    text = CellOf(result.result).text + '\n';
  }
  const auto changed = ChangedArguments(member, result);
  if (!changed.empty()) text += (text.empty() ? "" : "\n") + ChangedText(changed);
  return text;
}

std::string CallCsv(const std::string& class_name, const automation::Member& member,
                    const automation::CallResult& result) {
  if (GivesList(class_name, member, result.result)) {
    return Render(ListReport(class_name, member.name, result.result), OutputForm::kCsv);
  }
  Report report{{}, {{}}};
  if (member.result != automation::ValueType::kNone) {
    report.columns.push_back({"resultado", "Resultado"});
    report.rows[0].push_back(result.result);
  }
  for (const ChangedArgument& argument : ChangedArguments(member, result)) {
    report.columns.push_back({argument.name, argument.name});
    report.rows[0].push_back(argument.value);
  }
  return report.columns.empty() ? "" : Render(report, OutputForm::kCsv);
}

}  // namespace ambrelio::cli
