// What a command answers, in the form its reader wants: a table in Spanish for people, JSON or
// comma-separated values for programs.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "ambrelio/value/variant.h"
#include "table.h"

namespace ambrelio::cli {

enum class OutputForm : uint8_t { kTable, kJson, kCsv };

// Declares --json and --csv, of which one may be given.
void AddOutputOptions(CLI::App& command, OutputForm& form);

// How the values of a column print in a table.
enum class CellForm : uint8_t { kPlain, kTwoDecimals, kMovement };
Table::Cell CellOf(const Variant& value, CellForm form);

struct ReportColumn {
  std::string key;      // for programs, as "litros"
  std::string heading;  // for people, as "Litros"
  CellForm form = CellForm::kPlain;
};

struct Report {
  std::vector<ReportColumn> columns;
  std::vector<std::vector<Variant>> rows;  // each with a value for each column
  // The state of one thing, in one row: people read it from top to bottom, JSON is one object
  // instead of a list of them.
  bool single = false;
};

// Whole lines. In a table what is not there is a dash. JSON is one line: a list of objects by key.
// CSV has a line of keys first, lines end with CR LF as RFC 4180 has them.
std::string Render(const Report& report, OutputForm form);

// One line of comma-separated values: Null and Empty are nothing, text is quoted when it needs it,
// and "" is a text without characters.
std::string CsvLine(const std::vector<Variant>& values);

}  // namespace ambrelio::cli
