// Every user table beside what mdbtools, another reader of these files, makes of it.
#include "engine/jetfile/mdbtools_text.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "engine/jetfile/mdbtools_program.h"
#include "engine/jetfile/samples.h"

namespace ambrelio::jetfile {
namespace {

class BesideMdbtools : public testing::TestWithParam<Sample> {};

INSTANTIATE_TEST_SUITE_P(Files, BesideMdbtools, testing::ValuesIn(Samples()),
                         [](const auto& sample) { return TestName(sample.param); });

std::string ExpectedFolder() { return AMBRELIO_SOURCE_DIR "/tests/engine/jetfile/expected/"; }

// mdbtools gives a row that moved where it is now, and not where it belongs: of the sample with
// such rows only the lines are compared, not their order.
std::string Comparable(const Sample& sample, const std::string& text) {
  if (sample.name != std::string("overflowTestV2000")) return text;
  std::set<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.insert(line);
  std::string sorted;
  for (const std::string& line : lines) sorted += line + '\n';
  return sorted;
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

}  // namespace
}  // namespace ambrelio::jetfile
