#include <gtest/gtest.h>

#include <cstdlib>

#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

// The environment is read once for a process, so each case runs in one of its own, which ends with
// the decimal sign as its exit code.
class LocaleDeathTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  [[noreturn]] static void ExitWithDecimalSign(const char* all, const char* numeric,
                                               const char* language) {
    ::setenv("LC_ALL", all, 1);
    ::setenv("LC_NUMERIC", numeric, 1);
    ::setenv("LANG", language, 1);
    std::exit(Locale::Current().decimal);
  }
};

TEST_F(LocaleDeathTest, ComesFromTheEnvironmentsFirstVariableWithAValue) {
  EXPECT_EXIT(ExitWithDecimalSign("", "", "es_ES.UTF-8"), testing::ExitedWithCode(','), "");
  EXPECT_EXIT(ExitWithDecimalSign("", "en_US", "es_ES.UTF-8"), testing::ExitedWithCode('.'), "");
  EXPECT_EXIT(ExitWithDecimalSign("es_ES", "en_US", ""), testing::ExitedWithCode(','), "");
  EXPECT_EXIT(ExitWithDecimalSign("", "", ""), testing::ExitedWithCode('.'), "");
}

}  // namespace
}  // namespace ambrelio
