#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "ambrelio/engine/embedded/planner/planner.h"

namespace ambrelio::embedded {
namespace {

// The environment's variable as it is now, put back in the end.
class ScopedVariable {
 public:
  explicit ScopedVariable(const char* value) {
    if (const char* text = std::getenv(kName)) before_ = text;
    Set(value);
  }
  ~ScopedVariable() { Set(before_ ? before_->c_str() : nullptr); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  static constexpr const char* kName = "AMBRELIO_WITHOUT_REWRITES";

  static void Set(const char* value) {
    if (value == nullptr) {
      unsetenv(kName);
    } else {
      setenv(kName, value, 1);
    }
  }

  std::optional<std::string> before_;
};

// The rewrites that are made, by a letter of each.
std::string Made(const PlanOptions& options) {
  return std::string(options.inner_joins ? "i" : "") + (options.merged_queries ? "m" : "") +
         (options.split_joins ? "s" : "") + (options.shorter_keys ? "k" : "");
}

TEST(PlanOptions, MakeEachRewriteUnlessTold) {
  EXPECT_EQ(Made(PlanOptions()), "imsk");
  EXPECT_EQ(Made(PlanOptions::Without("")), "imsk");
}

TEST(PlanOptions, LeaveOutTheRewriteNamed) {
  EXPECT_EQ(Made(PlanOptions::Without("inner_joins")), "msk");
  EXPECT_EQ(Made(PlanOptions::Without("merged_queries")), "isk");
  EXPECT_EQ(Made(PlanOptions::Without("split_joins")), "imk");
  EXPECT_EQ(Made(PlanOptions::Without("shorter_keys")), "ims");
}

TEST(PlanOptions, LeaveOutEveryRewriteOfTheList) {
  EXPECT_EQ(Made(PlanOptions::Without("split_joins,inner_joins")), "mk");
  EXPECT_EQ(Made(PlanOptions::Without("inner_joins,merged_queries,split_joins,shorter_keys")), "");
}

TEST(PlanOptions, LeaveOutAll) {
  EXPECT_EQ(Made(PlanOptions::Without("all")), "");
  EXPECT_EQ(Made(PlanOptions::Without("inner_joins,all")), "");
}

TEST(PlanOptions, PassOverNamesThatAreNone) {
  EXPECT_EQ(Made(PlanOptions::Without("joins")), "imsk");
  EXPECT_EQ(Made(PlanOptions::Without("inner_join,inner_joinss,INNER_JOINS")), "imsk");
  EXPECT_EQ(Made(PlanOptions::Without(",joins,,split_joins,")), "imk");
}

TEST(PlanOptions, AreWhatTheEnvironmentLeaves) {
  const ScopedVariable variable("merged_queries");
  EXPECT_EQ(Made(PlanOptions::FromEnvironment()), "isk");
}

TEST(PlanOptions, AreAllWhereTheEnvironmentSaysNothing) {
  const ScopedVariable variable(nullptr);
  EXPECT_EQ(Made(PlanOptions::FromEnvironment()), "imsk");
}

}  // namespace
}  // namespace ambrelio::embedded
