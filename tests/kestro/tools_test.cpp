#include "ambrelio/kestro/tools.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>

#include "support/error_of.h"

namespace ambrelio::kestro {
namespace {

using test::ErrorOf;

TEST(IntegerText, WritesDecimalDigits) {
  EXPECT_EQ(Tools::IntegerText(0), "0");
  EXPECT_EQ(Tools::IntegerText(-1), "-1");
  EXPECT_EQ(Tools::IntegerText(32767), "32767");
  EXPECT_EQ(Tools::IntegerText(-32768), "-32768");
}

TEST(LongText, WritesDecimalDigits) {
  EXPECT_EQ(Tools::LongText(0), "0");
  EXPECT_EQ(Tools::LongText(40000), "40000");
  EXPECT_EQ(Tools::LongText(std::numeric_limits<int32_t>::min()), "-2147483648");
}

TEST(ValueOrZero, IsZeroForNullOnly) {
  EXPECT_EQ(Tools::ValueOrZero(Variant::Null()), Variant(int16_t{0}));
  EXPECT_EQ(Tools::ValueOrZero(2.5), Variant(2.5));
  EXPECT_EQ(Tools::ValueOrZero("text"), Variant("text"));
  EXPECT_EQ(Tools::ValueOrZero(Variant()), Variant());
}

TEST(ValueAsInteger, ConvertsAndTakesNullForZero) {
  EXPECT_EQ(Tools::ValueAsInteger(Variant::Null()), 0);
  EXPECT_EQ(Tools::ValueAsInteger(int32_t{7}), 7);
  EXPECT_EQ(Tools::ValueAsInteger(2.5), 2);
  EXPECT_EQ(ErrorOf([] { Tools::ValueAsInteger(int32_t{40000}); }), 6);
}

TEST(ValueAsText, ConvertsAndTakesNullForNothing) {
  EXPECT_EQ(Tools::ValueAsText(Variant::Null()), "");
  EXPECT_EQ(Tools::ValueAsText("Picual"), "Picual");
  EXPECT_EQ(Tools::ValueAsText(int32_t{7}), "7");
}

TEST(TextAsBoolean, IsTrueForTheWordsOfYes) {
  for (const char* text : {"1", "-1", "true", "True", "VERDADERO", "yes", "si", "Si", "sí", "SÍ",
                           "on", "ON", " true "}) {
    EXPECT_TRUE(Tools::TextAsBoolean(text)) << text;
  }
}

TEST(TextAsBoolean, IsTrueForAnyNumberButZero) {
  for (const char* text : {"2", "0.5", "-3", "&H1"}) {
    EXPECT_TRUE(Tools::TextAsBoolean(text)) << text;
  }
  for (const char* text : {"0", "0.0", "-0", "00"}) {
    EXPECT_FALSE(Tools::TextAsBoolean(text)) << text;
  }
}

TEST(TextAsBoolean, IsFalseForAnythingElse) {
  for (const char* text : {"", " ", "false", "falso", "no", "off", "truex", "1x", "s"}) {
    EXPECT_FALSE(Tools::TextAsBoolean(text)) << text;
  }
}

TEST(NextToken, TakesTokensOffTheFrontOneByOne) {
  std::string held = "4,2,12";
  EXPECT_EQ(Tools::NextToken(held, ','), "4");
  EXPECT_EQ(held, "2,12");
  EXPECT_EQ(Tools::NextToken(held, ','), "2");
  EXPECT_EQ(Tools::NextToken(held, ','), "12");
  EXPECT_EQ(held, "");
  EXPECT_EQ(Tools::NextToken(held, ','), "");
}

TEST(NextToken, KeepsEmptyTokens) {
  std::string held = ",,x";
  EXPECT_EQ(Tools::NextToken(held, ','), "");
  EXPECT_EQ(held, ",x");
  EXPECT_EQ(Tools::NextToken(held, ','), "");
  EXPECT_EQ(held, "x");
}

TEST(Replace, ReplacesEveryOccurrence) {
  EXPECT_EQ(Tools::Replace("@N and @N", "@N", "7"), "7 and 7");
  EXPECT_EQ(Tools::Replace("aaa", "aa", "b"), "ba");
  EXPECT_EQ(Tools::Replace("a.b.c", ".", ""), "abc");
}

TEST(Replace, MindsTheCase) { EXPECT_EQ(Tools::Replace("#Qto", "#QTO", "1"), "#Qto"); }

TEST(Replace, DoesNotLookIntoWhatItPut) { EXPECT_EQ(Tools::Replace("a", "a", "aa"), "aa"); }

TEST(Replace, LeavesTheTextWhenThereIsNothingToReplace) {
  EXPECT_EQ(Tools::Replace("text", "x y", "z"), "text");
  EXPECT_EQ(Tools::Replace("text", "", "z"), "text");
  EXPECT_EQ(Tools::Replace("", "a", "z"), "");
}

TEST(Join, PutsTheSeparatorBetween) {
  EXPECT_EQ(Tools::Join({}, ", "), "");
  EXPECT_EQ(Tools::Join({"a"}, ", "), "a");
  EXPECT_EQ(Tools::Join({"a", "", "c"}, ", "), "a, , c");
}

TEST(CombinePath, PutsOneSeparatorBetween) {
  std::string separator(1, static_cast<char>(std::filesystem::path::preferred_separator));
  EXPECT_EQ(Tools::CombinePath("mill", "oliva.mdb"), "mill" + separator + "oliva.mdb");
  EXPECT_EQ(Tools::CombinePath("mill/", "oliva.mdb"), "mill" + separator + "oliva.mdb");
  EXPECT_EQ(Tools::CombinePath("mill\\", "oliva.mdb"), "mill" + separator + "oliva.mdb");
  EXPECT_EQ(Tools::CombinePath("mill//", "oliva.mdb"), "mill" + separator + "oliva.mdb");
  EXPECT_EQ(Tools::CombinePath("/", "oliva.mdb"), separator + "oliva.mdb");
}

TEST(CombinePath, LetsAnAbsoluteFileStandAlone) {
  EXPECT_EQ(Tools::CombinePath("mill", "/data/oliva.mdb"), "/data/oliva.mdb");
  EXPECT_EQ(Tools::CombinePath("mill", "C:\\data\\oliva.mdb"), "C:\\data\\oliva.mdb");
  EXPECT_EQ(Tools::CombinePath("mill", "\\\\server\\oliva.mdb"), "\\\\server\\oliva.mdb");
}

TEST(CombinePath, IsTheFileWhenThereIsNoFolder) {
  EXPECT_EQ(Tools::CombinePath("", "oliva.mdb"), "oliva.mdb");
}

TEST(Append, MakesAListOfEmpty) {
  Variant list;
  Tools::Append(list, int16_t{7});
  EXPECT_EQ(list, Variant(Variant::Array{Variant(int16_t{7})}));
}

TEST(Append, AddsAtTheEndOfAList) {
  Variant list;
  Tools::Append(list, "a");
  Tools::Append(list, Variant::Array{Variant("b")});
  Tools::Append(list, Variant::Null());
  ASSERT_EQ(list.array().size(), 3U);
  EXPECT_EQ(list.array()[1], Variant(Variant::Array{Variant("b")}));
  EXPECT_TRUE(list.array()[2].is_null());
}

TEST(Append, RefusesWhatIsNoList) {
  Variant number = int16_t{1};
  EXPECT_EQ(ErrorOf([&] { Tools::Append(number, "a"); }), 13);
  EXPECT_EQ(number, Variant(int16_t{1}));
}

}  // namespace
}  // namespace ambrelio::kestro
