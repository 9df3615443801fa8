#include "ambrelio/dao/errors.h"

#include <gtest/gtest.h>

namespace ambrelio::dao {
namespace {

AutomationError Raised(DaoError error, const std::string& detail) {
  try {
    Raise(error, "DAO.Database", detail);
  } catch (const AutomationError& raised) {
    return raised;
  }
}

TEST(DaoErrors, CarryNumberSourceAndASentence) {
  const AutomationError error = Raised(DaoError::kTooFewParameters, "2");
  EXPECT_EQ(error.number(), 3061);
  EXPECT_EQ(error.source(), "DAO.Database");
  EXPECT_EQ(error.description(), "Too few parameters. Expected 2.");
}

TEST(DaoErrors, NameWhatTheyAreAbout) {
  EXPECT_NE(Raised(DaoError::kUnknownTable, "PESADAS").description().find("'PESADAS'"),
            std::string::npos);
}

TEST(DaoErrors, LeaveNoGapWithoutADetail) {
  EXPECT_EQ(Raised(DaoError::kDiskFull, "").description(), "The disk is full.");
}

TEST(DaoErrors, KeepAPercentSignOfTheDetail) {
  EXPECT_EQ(Raised(DaoError::kFileNotFound, "50%.mdb").description(),
            "The file '50%.mdb' was not found.");
}

}  // namespace
}  // namespace ambrelio::dao
