#include <gtest/gtest.h>

#include <string>

#include "ambrelio/engine/embedded/planner/planner.h"
#include "support/environment.h"

namespace ambrelio::embedded {
namespace {

constexpr const char* kVariable = "AMBRELIO_WITHOUT_REWRITES";

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
  test::ScopedEnvironment environment;
  environment.Set(kVariable, "merged_queries");
  EXPECT_EQ(Made(PlanOptions::FromEnvironment()), "isk");
}

TEST(PlanOptions, AreAllWhereTheEnvironmentSaysNothing) {
  test::ScopedEnvironment environment;
  environment.Unset(kVariable);
  EXPECT_EQ(Made(PlanOptions::FromEnvironment()), "imsk");
}

}  // namespace
}  // namespace ambrelio::embedded
