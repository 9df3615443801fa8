#include "script_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "support/temp_folder.h"

namespace ambrelio::script_host {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

class ScriptFileTest : public ::testing::Test {
 protected:
  std::wstring Write(const std::string& name, std::string_view bytes) const {
    const std::string path = folder_.File(name);
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<long>(bytes.size()));
    return {path.begin(), path.end()};
  }

 private:
  test::TempFolder folder_;
};

TEST_F(ScriptFileTest, WithoutAMarkItIsWindows1252) {
  EXPECT_EQ(ReadScript(Write("a.vbs",
                             "campa\xF1"
                             "a \x80"))
                .text,
            L"campaña €");
}

TEST_F(ScriptFileTest, Utf8IsToldByItsMark) {
  EXPECT_EQ(ReadScript(Write("a.vbs",
                             "\xEF\xBB\xBF"
                             "campa\xC3\xB1"
                             "a"))
                .text,
            L"campaña");
}

TEST_F(ScriptFileTest, Utf16IsToldByItsMark) {
  EXPECT_EQ(ReadScript(Write("a.vbs", {"\xFF\xFE\xF1\0a\0", 6})).text, L"ña");
}

TEST_F(ScriptFileTest, TheEndingNamesTheEngine) {
  EXPECT_STREQ(ReadScript(Write("a.vbs", "")).engine, L"VBScript");
  EXPECT_STREQ(ReadScript(Write("b.JS", "")).engine, L"JScript");
}

TEST_F(ScriptFileTest, OtherEndingsCannotRun) {
  const std::wstring path = Write("a.py", "");
  EXPECT_THAT([&] { ReadScript(path); }, ThrowsMessage<CannotRun>(HasSubstr("a.py")));
}

TEST_F(ScriptFileTest, AMissingFileCannotRun) {
  EXPECT_THAT([] { ReadScript(L"no_such.vbs"); },
              ThrowsMessage<CannotRun>(HasSubstr("no_such.vbs")));
}

}  // namespace
}  // namespace ambrelio::script_host
