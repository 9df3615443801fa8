// A mill made in a folder of its own, which is the current one while the test runs, so that a
// document can name it as a reader would.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "ambrelio/value/locale.h"
#include "apps/ambrelio/cli_test.h"
#include "docs/document.h"
#include "support/temp_folder.h"

namespace ambrelio::test {

class DocumentTest : public ::testing::Test {
 protected:
  DocumentTest() { std::filesystem::current_path(folder_.path()); }
  ~DocumentTest() override { std::filesystem::current_path(before_); }

  // An application folder `mill` with these settings, and its database.
  void MakeMill(const std::string& settings) {
    std::filesystem::create_directory("mill");
    WriteText("mill/Vardex.ini", settings);
    const Outcome created = RunCli({"create", "--app", "mill"});
    ASSERT_EQ(created.code, 0) << created.err;
  }

  // Carries out all examples, in order and in one session, each as the journal line that
  // `line_of` makes of its input.
  template <class LineOf>
  void CarryOut(const std::string& document, const std::vector<Example>& examples,
                const LineOf& line_of) {
    std::string journal;
    for (const Example& example : examples) journal += line_of(example.input) + "\n";
    const Outcome outcome = RunCli({"journal", "--app", "mill", "-"}, journal);
    EXPECT_EQ(outcome.err, "");
    const std::vector<std::string> answers = outcome.lines();
    ASSERT_EQ(answers.size(), examples.size());
    for (size_t i = 0; i < answers.size(); ++i) {
      EXPECT_EQ(answers[i], examples[i].answer)
          << "docs/" << document << ":" << examples[i].line << ": " << examples[i].input;
    }
  }

 private:
  // What a document shows must not depend on where it is read.
  ScopedLocale locale_{Locale{}};
  TempFolder folder_;
  std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace ambrelio::test
