#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class CheckCommand : public test::CliTest {
 protected:
  static test::Outcome Check(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "check");
    return test::RunCli(std::move(arguments));
  }
  // A copy of a sample in which one byte is another.
  std::string Damaged(const std::string& name, size_t at, char byte) const {
    std::string bytes = test::ReadText(Sample(name));
    bytes.at(at) = byte;
    const std::string path = folder.File("damaged.mdb");
    test::WriteText(path, bytes);
    return path;
  }
};

TEST_F(CheckCommand, FindsNothingInASoundFile) {
  Create();
  for (const std::string& file : {database(), Sample("adox_jet4")}) {
    const auto outcome = Check({file});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Sin hallazgos\n");
    EXPECT_EQ(Check({file, "--json"}).out, "[]\n");
    EXPECT_EQ(Check({file, "--csv"}).out, "pagina,desplazamiento,hallazgo\r\n");
  }
}

TEST_F(CheckCommand, NamesPageAndOffset) {
  const std::string file = Damaged("adox_jet4", 15 * 4096 + 2, 5);
  const auto outcome = Check({file});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.out, HasSubstr("free bytes"));
  const auto json = Check({file, "--json"});
  EXPECT_EQ(json.code, 1);
  EXPECT_THAT(json.out,
              testing::StartsWith("[{\"pagina\":15,\"desplazamiento\":2,\"hallazgo\":\""));
}

TEST_F(CheckCommand, NeedsThePassword) {
  EXPECT_EQ(Check({Sample("password")}).code, 3);
  EXPECT_THAT(Check({Sample("password")}).err, HasSubstr("password"));
  EXPECT_EQ(Check({Sample("password"), "--password", "ucanaccess"}).code, 0);
}

TEST_F(CheckCommand, CannotOpenOtherFiles) {
  EXPECT_EQ(Check({folder.File("none.mdb")}).code, 3);
  EXPECT_EQ(Check({app + "/Vardex.ini"}).code, 3);
  EXPECT_EQ(Check({Damaged("adox_jet4", 0x14, 5)}).code, 3);
  EXPECT_EQ(Check({Damaged("adox_jet4", 2 * 4096, 9)}).code, 3);
}

TEST_F(CheckCommand, WantsAFile) { EXPECT_EQ(Check({}).code, 2); }

}  // namespace
}  // namespace ambrelio::cli
