// The examples of docs/sql.md are true, those in its table of functions included, and every error
// that they meet is explained.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "docs/document_test.h"
#include "json_value.h"

namespace ambrelio::test {
namespace {

const Document& Sql() {
  static const Document document = ReadDocument("sql.md");
  return document;
}

// At the moment that the document names.
std::string JournalLineOf(const std::string& statement) {
  return cli::JsonLine(cli::Json{{"m", "2025-11-03 08:00:00"}, {"sql", statement}});
}

std::string WithoutBackquotes(const std::string& cell) {
  EXPECT_TRUE(cell.size() > 2 && cell.starts_with('`') && cell.ends_with('`')) << cell;
  return cell.substr(1, cell.size() - 2);
}

// The rows of the table of functions: signature, meaning, an expression and its value.
std::vector<Example> ExamplesOfFunctions() {
  std::vector<Example> examples;
  for (const TableRow& row : Sql().rows) {
    if (row.heading != "Functions" || !row.cells[0].starts_with('`')) continue;
    if (row.cells.size() != 4) {
      ADD_FAILURE() << "docs/sql.md:" << row.line << ": four cells are expected";
      continue;
    }
    examples.push_back({row.line, row.heading, "sql", "select " + WithoutBackquotes(row.cells[2]),
                        "{\"result\":[[" + WithoutBackquotes(row.cells[3]) + "]]}"});
  }
  return examples;
}

// The numbers that the table of errors explains.
std::vector<int> ExplainedErrors() {
  std::vector<int> numbers;
  for (const TableRow& row : Sql().rows) {
    if (row.heading != "Errors") continue;
    std::istringstream cell(row.cells[0]);
    for (int number; cell >> number; cell.ignore(1)) numbers.push_back(number);
  }
  return numbers;
}

class SqlExamples : public DocumentTest {
 protected:
  void SetUp() override { MakeMill(Sql().Block("ini")); }
};

TEST_F(SqlExamples, AnswerAsWritten) { CarryOut("sql.md", Sql().ExamplesOf("sql"), JournalLineOf); }

TEST_F(SqlExamples, OfFunctionsGiveWhatTheTableSays) {
  const std::vector<Example> examples = ExamplesOfFunctions();
  EXPECT_FALSE(examples.empty());
  CarryOut("sql.md", examples, JournalLineOf);
}

TEST(SqlDocument, ShowsEachFunctionAtWork) {
  for (const TableRow& row : Sql().rows) {
    if (row.heading != "Functions" || !row.cells[0].starts_with('`')) continue;
    const std::string name = row.cells[0].substr(1, row.cells[0].find('('));
    EXPECT_THAT(row.cells[2], testing::HasSubstr(name)) << "docs/sql.md:" << row.line;
  }
}

TEST(SqlDocument, ExplainsEveryErrorThatItShows) {
  const std::vector<int> explained = ExplainedErrors();
  for (const Example& example : Sql().examples) {
    const cli::Json answer = cli::ParseJson(example.answer);
    if (!answer.contains("error")) continue;
    EXPECT_THAT(explained, testing::Contains(answer["error"].get<int>()))
        << "docs/sql.md:" << example.line;
  }
}

TEST(SqlDocument, ListsErrorsInTheOrderOfTheirNumbers) {
  std::vector<int> firsts;
  for (const TableRow& row : Sql().rows) {
    if (row.heading == "Errors" && row.cells[0] != "number") {
      firsts.push_back(std::stoi(row.cells[0]));
    }
  }
  EXPECT_TRUE(std::is_sorted(firsts.begin(), firsts.end()));
}

}  // namespace
}  // namespace ambrelio::test
