#include <gtest/gtest.h>

#include <string>

#include "ambrelio/engine/embedded/planner/planner.h"
#include "support/environment.h"

namespace ambrelio::embedded {
namespace {

constexpr const char* kVariable = "AMBRELIO_WITHOUT_REWRITES";

// The rewrites that are made, by their first letters.
std::string Made(const PlanOptions& options) {
  return std::string(options.inner_joins ? "i" : "") + (options.merged_queries ? "m" : "") +
         (options.split_joins ? "s" : "");
}

TEST(PlanOptions, MakeEachRewriteUnlessTold) {
  EXPECT_EQ(Made(PlanOptions()), "ims");
  EXPECT_EQ(Made(PlanOptions::Without("")), "ims");
}

TEST(PlanOptions, LeaveOutTheRewriteNamed) {
  EXPECT_EQ(Made(PlanOptions::Without("inner_joins")), "ms");
  EXPECT_EQ(Made(PlanOptions::Without("merged_queries")), "is");
  EXPECT_EQ(Made(PlanOptions::Without("split_joins")), "im");
}

TEST(PlanOptions, LeaveOutEveryRewriteOfTheList) {
  EXPECT_EQ(Made(PlanOptions::Without("split_joins,inner_joins")), "m");
  EXPECT_EQ(Made(PlanOptions::Without("inner_joins,merged_queries,split_joins")), "");
}

TEST(PlanOptions, LeaveOutAll) {
  EXPECT_EQ(Made(PlanOptions::Without("all")), "");
  EXPECT_EQ(Made(PlanOptions::Without("inner_joins,all")), "");
}

TEST(PlanOptions, PassOverNamesThatAreNone) {
  EXPECT_EQ(Made(PlanOptions::Without("joins")), "ims");
  EXPECT_EQ(Made(PlanOptions::Without("inner_join,inner_joinss,INNER_JOINS")), "ims");
  EXPECT_EQ(Made(PlanOptions::Without(",joins,,split_joins,")), "im");
}

TEST(PlanOptions, AreWhatTheEnvironmentLeaves) {
  test::ScopedEnvironment environment;
  environment.Set(kVariable, "merged_queries");
  EXPECT_EQ(Made(PlanOptions::FromEnvironment()), "is");
}

TEST(PlanOptions, AreAllWhereTheEnvironmentSaysNothing) {
  test::ScopedEnvironment environment;
  environment.Unset(kVariable);
  EXPECT_EQ(Made(PlanOptions::FromEnvironment()), "ims");
}

}  // namespace
}  // namespace ambrelio::embedded
