#include "ambrelio/host/csv.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/value/automation_error.h"

namespace ambrelio::host {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::string Complaint(std::string_view text) {
  try {
    ParseCsv(text, "socios.csv");
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
    return error.description();
  }
  return "none";
}

TEST(Csv, SplitsLinesIntoFields) {
  const auto rows = ParseCsv("a,b\r\n1,\n", "f");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(rows[0].fields, ElementsAre("a", "b"));
  EXPECT_THAT(rows[1].fields, ElementsAre("1", ""));
  EXPECT_EQ(rows[1].line, 2);
}

TEST(Csv, ReadsTheLastLineWithoutItsEnd) {
  EXPECT_THAT(ParseCsv("a,b", "f")[0].fields, ElementsAre("a", "b"));
}

TEST(Csv, KeepsCommasQuotesAndLineBreaksInsideQuotes) {
  const auto rows = ParseCsv("\"a,\"\"b\"\"\nc\",d\ne,f\n", "f");
  EXPECT_THAT(rows[0].fields, ElementsAre("a,\"b\"\nc", "d"));
  EXPECT_EQ(rows[1].line, 3);
}

TEST(Csv, PassesOverEmptyLinesAndTheMarkOfUtf8) {
  const auto rows = ParseCsv(
      "\xEF\xBB\xBF"
      "a\n\nb\n",
      "f");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(rows[0].fields, ElementsAre("a"));
  EXPECT_EQ(rows[1].line, 3);
}

TEST(Csv, NamesFileAndLineOfAQuoteThatIsNotClosed) {
  EXPECT_THAT(Complaint("a\nb,\"c\nd"), HasSubstr("socios.csv:2: a quote is not closed"));
}

TEST(Csv, NamesFileAndLineOfTextBehindAQuote) {
  EXPECT_THAT(Complaint("a\n\"b\"c,d\n"), HasSubstr("socios.csv:2:"));
}

TEST(Csv, RefusesTextThatIsNotUtf8) { EXPECT_THAT(Complaint("Ja\xE9n\n"), HasSubstr("not UTF-8")); }

}  // namespace
}  // namespace ambrelio::host
