#include "arguments.h"

#include <gtest/gtest.h>

#include "failure.h"

namespace ambrelio::cli {
namespace {

using automation::Arguments;
using automation::ValueType;

const automation::Member& Member(const char* owner, const char* name) {
  return *automation::FindMember(*automation::FindClass(owner), name, automation::Access::kCall);
}

TEST(ReadPath, KnowsTheNewSeasonAlsoWithoutItsTilde) {
  for (const char* text : {"IniciarCampaña", "INICIARCAMPAÑA", "IniciarCampana", "iniciarcampana",
                           "Trazabilidad.IniciarCampana"}) {
    const automation::Path path = ReadPath(text);
    ASSERT_EQ(path.size(), 1U) << text;
    EXPECT_TRUE(automation::SameName(path[0].name, "IniciarCampaña")) << text;
  }
}

TEST(ReadPath, LeavesOtherNamesAlone) {
  EXPECT_EQ(ReadPath("Deposito(3).IniciarCampana")[1].name, "IniciarCampana");
}

TEST(ReadPath, RefusesWhatIsNoPath) {
  try {
    ReadPath("Tolva(2");
    FAIL() << "accepted";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::kWrongInput);
    EXPECT_STREQ(failure.what(), "at position 8 of the path: ')' is missing");
  }
}

TEST(ParseArgument, LeavesOutADash) {
  EXPECT_FALSE(ParseArgument("-", ValueType::kDouble).has_value());
}

TEST(ParseArgument, ReadsNumbersWithAPoint) {
  EXPECT_EQ(ParseArgument("0.6", ValueType::kDouble), Variant(0.6));
  EXPECT_EQ(ParseArgument("-12", ValueType::kInteger), Variant(int32_t{-12}));
  EXPECT_EQ(ParseArgument("12,5", ValueType::kDouble), Variant("12,5"));
}

TEST(ParseArgument, NumbersWithoutEndAreText) {
  EXPECT_EQ(ParseArgument("inf", ValueType::kVariant), Variant("inf"));
  EXPECT_EQ(ParseArgument("1e999", ValueType::kVariant), Variant("1e999"));
}

TEST(ParseArgument, KeepsTextWhereTextIsWanted) {
  EXPECT_EQ(ParseArgument("007", ValueType::kText), Variant("007"));
  EXPECT_EQ(ParseArgument("2025-11-03", ValueType::kText), Variant("2025-11-03"));
  EXPECT_EQ(ParseArgument("", ValueType::kText), Variant(""));
}

TEST(ParseArgument, ReadsDatesInThreeForms) {
  const Variant noon = *OleDate::FromIso("2025-11-03 12:00:00");
  EXPECT_EQ(ParseArgument("2025-11-03 12:00:00", ValueType::kDate), noon);
  EXPECT_EQ(ParseArgument("2025-11-03T12:00:00", ValueType::kVariant), noon);
  EXPECT_EQ(ParseArgument("2025-11-03", ValueType::kVariant),
            Variant(*OleDate::FromIso("2025-11-03 00:00:00")));
}

TEST(ParseArgument, ReadsListsAndQuotedTextAsJson) {
  EXPECT_EQ(ParseArgument("\"007\"", ValueType::kVariant), Variant("007"));
  EXPECT_EQ(ParseArgument("[1,\"a\"]", ValueType::kVariant),
            Variant(Variant::Array{Variant(int32_t{1}), Variant("a")}));
  EXPECT_EQ(ParseArgument("{\"empty\":true}", ValueType::kVariant), Variant());
}

TEST(PrepareArguments, MakesDatesWhereTheyAreWanted) {
  const Variant noon = *OleDate::FromIso("2025-11-03 12:00:00");
  EXPECT_EQ(PrepareArguments(Member("Deposito", "EntradaNivel"), {Variant("2025-11-03 12:00:00")}),
            Arguments{noon});
  EXPECT_EQ(PrepareArguments(Member("Deposito", "EntradaNivel"), {Variant("2025-11-03")}),
            Arguments{Variant("2025-11-03")});
}

TEST(PrepareArguments, GivesOutputsAFreshVariable) {
  EXPECT_EQ(PrepareArguments(Member("Deposito", "UltimoMovimiento"), {std::nullopt}),
            (Arguments{Variant(), Variant(), Variant(OleDate())}));
}

TEST(PrepareArguments, DoesNotMakeUpOtherArguments) {
  EXPECT_EQ(PrepareArguments(Member("Tolva", "Descargar"), {Variant(int32_t{1}), std::nullopt}),
            (Arguments{Variant(int32_t{1}), std::nullopt}));
}

}  // namespace
}  // namespace ambrelio::cli
