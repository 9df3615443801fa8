#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class ConvertCommand : public test::CliTest {
 protected:
  static test::Outcome Convert(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "convert");
    return test::RunCli(std::move(arguments));
  }
  std::string copy() const { return folder.File("copy.sqlite"); }
};

TEST_F(ConvertCommand, CopiesAMill) {
  Create();
  const auto filled =
      Journal(R"j({"sql":"insert into SOCIO (CODSOC, NOMSOC) values (7, 'Núñez')"})j");
  EXPECT_EQ(filled.code, 0) << filled.err;
  const auto outcome = Convert({database(), copy()});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  const std::string question = "select CODSOC, NOMSOC from SOCIO";
  EXPECT_EQ(test::RunCli({"sql", copy(), question, "--csv"}).out, "CODSOC,NOMSOC\r\n7,Núñez\r\n");
  EXPECT_EQ(test::RunCli({"check", copy()}).code, 0);
}

TEST_F(ConvertCommand, PrintsWhatDidNotGoAlong) {
  const auto outcome = Convert({Sample("indexTestV2000"), copy()});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.out, testing::StartsWith("No se ha copiado: relationship "));
  EXPECT_TRUE(std::filesystem::exists(copy()));
}

TEST_F(ConvertCommand, CannotReadOrMakeTheFile) {
  Create();
  const auto missing = Convert({folder.File("none.mdb"), copy()});
  EXPECT_EQ(missing.code, 3);
  EXPECT_THAT(missing.err, HasSubstr("none.mdb"));
  const auto taken = Convert({database(), app + "/Vardex.ini"});
  EXPECT_EQ(taken.code, 3);
  EXPECT_THAT(taken.err, HasSubstr("Vardex.ini"));
  EXPECT_EQ(Convert({Sample("password"), copy(), "--password", "agua"}).code, 3);
  EXPECT_FALSE(std::filesystem::exists(copy()));
}

TEST_F(ConvertCommand, WantsTwoFiles) {
  EXPECT_EQ(Convert({database()}).code, 2);
  EXPECT_EQ(Convert({}).code, 2);
  EXPECT_EQ(Convert({database(), copy(), folder.File("third.mdb")}).code, 2);
}

}  // namespace
}  // namespace ambrelio::cli
