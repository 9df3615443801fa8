// The plans of docs/engine.md are those of the engine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/embedded/planner/planner.h"
#include "docs/document_test.h"
#include "engine/embedded/planner/mill_statements.h"
#include "support/environment.h"

namespace ambrelio::test {
namespace {

const Document& Engine() {
  static const Document document = ReadDocument("engine.md");
  return document;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// The SQL of the first statement in what --plan prints.
std::string FirstSql(const std::vector<std::string>& plan) {
  auto line = std::find(plan.begin(), plan.end(), "") + 2;  // the line in between says what for
  std::string text;
  for (; line != plan.end() && *line != "  plan:"; ++line) text += line->substr(2) + "\n";
  return text;
}

std::string Place(const Example& example) {
  return "docs/engine.md:" + std::to_string(example.line) + ": " + example.input;
}

class EngineExamples : public DocumentTest {
 protected:
  void SetUp() override {
    environment_.Unset("AMBRELIO_WITHOUT_REWRITES");
    MakeMill(ReadText(AMBRELIO_SOURCE_DIR "/examples/campana/Vardex.ini"));
    ASSERT_EQ(RunCli({"journal", "--app", "mill", "-"}).code, 0);  // opens it
  }

  static std::vector<std::string> Plan(const Example& example) {
    const Outcome outcome = RunCli({"sql", "--app", "mill", "--plan", example.input});
    EXPECT_EQ(outcome.code, 0) << Place(example) << "\n" << outcome.err;
    return outcome.lines();
  }

  ScopedEnvironment environment_;
};

TEST_F(EngineExamples, BecomeTheSqlThatIsShown) {
  constexpr std::string_view kWithout = "sqlite without ";
  size_t count = 0;
  for (const Example& example : Engine().examples) {
    if (!example.kind.starts_with("sqlite")) continue;
    ++count;
    const std::string without =
        example.kind.starts_with(kWithout) ? example.kind.substr(kWithout.size()) : "";
    environment_.Set("AMBRELIO_WITHOUT_REWRITES", without);
    EXPECT_EQ(FirstSql(Plan(example)), Joined(example.lines)) << Place(example);
  }
  EXPECT_GT(count, 0U);
}

// A step has other words in other versions of SQLite.
TEST_F(EngineExamples, HaveThePlansThatAreShown) {
  constexpr std::string_view kVersion = "3.40.";
  if (!std::string_view(sqlite3_libversion()).starts_with(kVersion)) {
    GTEST_SKIP() << "the plans shown are those of SQLite " << kVersion;
  }
  const std::vector<Example> examples = Engine().ExamplesOf("plan");
  EXPECT_FALSE(examples.empty());
  for (const Example& example : examples) {
    EXPECT_EQ(Joined(Plan(example)), Joined(example.lines)) << Place(example);
  }
}

TEST(EngineDocument, ShowsTextsOfTheLibrary) {
  for (const Example& example : Engine().examples) {
    EXPECT_THAT(MillStatements(), testing::Contains(example.input + " ")) << Place(example);
  }
}

TEST(EngineDocument, HasASectionForEachRewrite) {
  for (const std::string_view rewrite : {embedded::kInnerJoins, embedded::kMergedQueries,
                                         embedded::kSplitJoins, embedded::kShorterKeys}) {
    EXPECT_THAT(Engine().text, testing::Contains("### " + std::string(rewrite)));
  }
}

}  // namespace
}  // namespace ambrelio::test
