// Every user table beside what mdbtools, another reader of these files, makes of it.
#include "engine/jetfile/mdbtools_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "engine/jetfile/mdbtools_program.h"
#include "engine/jetfile/random_table.h"
#include "engine/jetfile/samples.h"
#include "support/temp_folder.h"

namespace ambrelio::jetfile {
namespace {

class BesideMdbtools : public testing::TestWithParam<Sample> {};

INSTANTIATE_TEST_SUITE_P(Files, BesideMdbtools, testing::ValuesIn(Samples()),
                         [](const auto& sample) { return TestName(sample.param); });

std::string ExpectedFolder() { return AMBRELIO_SOURCE_DIR "/tests/engine/jetfile/expected/"; }

std::string LinesInOrder(const std::string& text) {
  std::multiset<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.insert(line);
  std::string sorted;
  for (const std::string& line : lines) sorted += line + '\n';
  return sorted;
}

// mdbtools gives a row that moved where it is now, and not where it belongs: of the sample with
// such rows only the lines are compared, not their order.
std::string Comparable(const Sample& sample, const std::string& text) {
  return sample.name == std::string("overflowTestV2000") ? LinesInOrder(text) : text;
}

TEST_P(BesideMdbtools, ReadsTheSameAsIsKeptOfIt) {
  std::ifstream kept(ExpectedFolder() + GetParam().name + ".txt", std::ios::binary);
  std::ostringstream expected;
  expected << kept.rdbuf();
  ASSERT_TRUE(kept.is_open());
  EXPECT_EQ(Comparable(GetParam(), MdbtoolsText(OpenSample(GetParam()))),
            Comparable(GetParam(), expected.str()));
}

TEST_P(BesideMdbtools, ReadsTheSameAsItReadsNow) {
  if (!HasMdbtools()) GTEST_SKIP() << "mdbtools is not installed";
  const std::string command = ExpectedFolder() + "tell '" + SamplePath(GetParam().name) + "'";
  EXPECT_EQ(Comparable(GetParam(), MdbtoolsText(OpenSample(GetParam()))),
            Comparable(GetParam(), OutputOf(command)));
}

std::vector<Sample> ChangedSamples() {
  return {{"compIndexTestV2000"}, {"db-enc"}, {"indexTestV2000"}, {"test2V2000"}};
}

// To mdbtools a text without characters is Null, as a rule.
std::string WithoutEmptyTexts(std::string text) {
  for (size_t at = 0; (at = text.find("\"\"", at)) != std::string::npos;) text.erase(at, 2);
  return text;
}

class ChangedBesideMdbtools : public testing::TestWithParam<Sample> {};

INSTANTIATE_TEST_SUITE_P(Files, ChangedBesideMdbtools, testing::ValuesIn(ChangedSamples()),
                         [](const auto& sample) { return TestName(sample.param); });

TEST_P(ChangedBesideMdbtools, ReadsTheSameAsWasWritten) {
  if (!HasMdbtools()) GTEST_SKIP() << "mdbtools is not installed";
  JetFile file = JetFile::FromBytes(SampleBytes(GetParam().name), "");
  for (const auto& [name, page] : UserTables(file)) RandomTable(file, page, 3).ChangeSome(60);
  const Bytes bytes = StoredBytes(file);
  const test::TempFolder folder;
  const std::string path = folder.File("changed.mdb");
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
  EXPECT_EQ(LinesInOrder(WithoutEmptyTexts(MdbtoolsText(file))),
            LinesInOrder(WithoutEmptyTexts(OutputOf(ExpectedFolder() + "tell '" + path + "'"))));
}

}  // namespace
}  // namespace ambrelio::jetfile
