#include "sql_cases.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace ambrelio::test {

namespace {

bool TakePrefix(std::string& line, const std::string& prefix) {
  if (line.compare(0, prefix.size(), prefix) != 0) return false;
  line.erase(0, prefix.size());
  return true;
}

class CaseReader {
 public:
  explicit CaseReader(const std::filesystem::path& path) : file_(path.stem().string()) {
    std::ifstream input(path);
    for (std::string line; std::getline(input, line);) Read(line);
    if (cases_.empty()) throw std::runtime_error(path.string() + " holds no case");
  }

  std::vector<SqlCase> Take() { return std::move(cases_); }

 private:
  void Read(std::string line) {
    ++number_;
    if (line.empty() || line[0] == '#') {
      open_ = false;
    } else if (TakePrefix(line, "== ")) {
      open_ = false;
      cases_.push_back({file_, line, preamble_});
    } else if (TakePrefix(line, "!> ")) {
      Begin(SqlStep::Kind::kStrictStatement, line);
    } else if (TakePrefix(line, "> ")) {
      Begin(SqlStep::Kind::kStatement, line);
    } else if (TakePrefix(line, "@ ")) {
      Begin(SqlStep::Kind::kDirective, line);
    } else if (!open_) {
      throw std::runtime_error(file_ + ":" + std::to_string(number_) + " belongs to no statement");
    } else if (line[0] == ' ' && Steps().back().expected.empty()) {
      Steps().back().text += "\n" + line;
    } else {
      Steps().back().expected.push_back(line);
    }
  }

  void Begin(SqlStep::Kind kind, const std::string& text) {
    Steps().push_back({number_, kind, text, {}});
    open_ = true;
  }

  std::vector<SqlStep>& Steps() { return cases_.empty() ? preamble_ : cases_.back().steps; }

  std::string file_;
  int number_ = 0;
  bool open_ = false;
  std::vector<SqlStep> preamble_;
  std::vector<SqlCase> cases_;
};

}  // namespace

std::vector<SqlCase> LoadSqlCases(const std::string& folder) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".txt") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<SqlCase> cases;
  for (const auto& path : paths) {
    for (SqlCase& one : CaseReader(path).Take()) cases.push_back(std::move(one));
  }
  return cases;
}

}  // namespace ambrelio::test
