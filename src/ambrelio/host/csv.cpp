#include "ambrelio/host/csv.h"

#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::host {
namespace {

class CsvReader {
 public:
  CsvReader(std::string_view text, const std::string& name) : rest_(text), name_(name) {}

  std::vector<CsvRow> Read() {
    std::vector<CsvRow> rows;
    while (!rest_.empty()) {
      CsvRow row = ReadRow();
      const bool blank = row.fields.size() == 1 && row.fields.front().empty();
      if (!blank) rows.push_back(std::move(row));
    }
    return rows;
  }

 private:
  CsvRow ReadRow() {
    CsvRow row;
    row.line = line_;
    do {
      row.fields.push_back(Take("\"") ? QuotedField() : PlainField());
    } while (Take(","));
    if (!rest_.empty() && !Take("\r\n") && !Take("\n")) {
      Fail(row.line, "unexpected text behind a closing quote");
    }
    ++line_;
    return row;
  }

  std::string PlainField() {
    size_t end = rest_.find_first_of(",\n");
    if (end == std::string_view::npos) end = rest_.size();
    if (end > 0 && end < rest_.size() && rest_[end] == '\n' && rest_[end - 1] == '\r') --end;
    std::string field(rest_.substr(0, end));
    rest_.remove_prefix(end);
    return field;
  }

  std::string QuotedField() {
    const int opened = line_;
    std::string field;
    while (!rest_.empty()) {
      if (Take("\"\"")) {
        field += '"';
      } else if (Take("\"")) {
        return field;
      } else {
        if (rest_.front() == '\n') ++line_;
        field += rest_.front();
        rest_.remove_prefix(1);
      }
    }
    Fail(opened, "a quote is not closed");
  }

  bool Take(std::string_view what) {
    if (!rest_.starts_with(what)) return false;
    rest_.remove_prefix(what.size());
    return true;
  }

  [[noreturn]] void Fail(int line, const std::string& what) {
    Raise(RuntimeError::kInvalidCall, name_ + ":" + std::to_string(line) + ": " + what);
  }

  std::string_view rest_;
  const std::string& name_;
  int line_ = 1;
};

}  // namespace

std::vector<CsvRow> ParseCsv(std::string_view text, const std::string& name) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  if (!IsValidUtf8(text)) Raise(RuntimeError::kInvalidCall, name + ": the file is not UTF-8");
  return CsvReader(text, name).Read();
}

}  // namespace ambrelio::host
