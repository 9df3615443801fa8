#include "ambrelio/value/automation_error.h"

#include <gtest/gtest.h>

#include <string>

namespace ambrelio {
namespace {

AutomationError Raised(RuntimeError error, const std::string& detail = {}) {
  try {
    Raise(error, detail);
  } catch (const AutomationError& raised) {
    return raised;
  }
}

TEST(AutomationError, CarriesNumberSourceAndDescription) {
  AutomationError error(3022, "DAO.Database", "A duplicate.");
  EXPECT_EQ(error.number(), 3022);
  EXPECT_EQ(error.source(), "DAO.Database");
  EXPECT_EQ(error.description(), "A duplicate.");
  EXPECT_STREQ(error.what(), "A duplicate.");
}

TEST(Raise, GivesTheLanguagesNumberAndSentence) {
  AutomationError error = Raised(RuntimeError::kOverflow);
  EXPECT_EQ(error.number(), 6);
  EXPECT_EQ(error.source(), "Ambrelio");
  EXPECT_EQ(error.description(), "Overflow");
}

TEST(Raise, PutsTheDetailBehindTheSentence) {
  EXPECT_EQ(Raised(RuntimeError::kTypeMismatch, "argument qto").description(),
            "Type mismatch: argument qto");
}

TEST(Raise, HasASentenceForEveryError) {
  for (RuntimeError error :
       {RuntimeError::kInvalidCall, RuntimeError::kOverflow, RuntimeError::kSubscriptOutOfRange,
        RuntimeError::kDivisionByZero, RuntimeError::kTypeMismatch, RuntimeError::kPathFileAccess,
        RuntimeError::kObjectNotSet, RuntimeError::kInvalidUseOfNull, RuntimeError::kObjectRequired,
        RuntimeError::kCannotCreateObject, RuntimeError::kMemberNotFound,
        RuntimeError::kArgumentNotOptional, RuntimeError::kWrongArgumentCount}) {
    AutomationError raised = Raised(error);
    EXPECT_EQ(raised.number(), static_cast<int>(error));
    EXPECT_NE(raised.description(), "Application-defined or object-defined error");
  }
}

}  // namespace
}  // namespace ambrelio
