// Comma-separated values as RFC 4180 has them: fields in double quotes may hold commas, line breaks
// and doubled quotes. UTF-8, with or without its mark; LF or CRLF.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ambrelio::host {

struct CsvRow {
  int line = 0;  // where it starts, from 1
  std::vector<std::string> fields;
};

// The rows of a text; empty lines are passed over. Raises 5 naming `name` (the file) and the line
// for a quote that is not closed, text behind a closing quote, or text that is not UTF-8.
std::vector<CsvRow> ParseCsv(std::string_view text, const std::string& name);

}  // namespace ambrelio::host
