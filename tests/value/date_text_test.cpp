// Dates from and to text.
#include "ambrelio/value/date_text.h"

#include <gtest/gtest.h>

#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

// The moment that the text reads as, as ISO text; "none" when it reads as none.
std::string Read(std::string_view text, const char* locale = "es_ES") {
  ScopedLocale scope(Locale::FromName(locale));
  auto date = ParseDate(text);
  return date ? date->Iso() : "none";
}

std::string Write(const char* iso, const char* locale) {
  ScopedLocale scope(Locale::FromName(locale));
  return DateText(*OleDate::FromIso(iso));
}

TEST(ParseDate, ReadsTheLocalesOrder) {
  EXPECT_EQ(Read("5/3/2003", "es_ES"), "2003-03-05 00:00:00");
  EXPECT_EQ(Read("5/3/2003", "en_US"), "2003-05-03 00:00:00");
  EXPECT_EQ(Read("03/5/3", "sv_SE"), "2003-05-03 00:00:00");
}

TEST(ParseDate, SwapsDayAndMonthWhenTheOrderIsImpossible) {
  EXPECT_EQ(Read("3/25/2003", "es_ES"), "2003-03-25 00:00:00");
  EXPECT_EQ(Read("25/3/2003", "en_US"), "2003-03-25 00:00:00");
  EXPECT_EQ(Read("2003/25/3", "es_ES"), "2003-03-25 00:00:00");
  EXPECT_EQ(Read("25/13/2003", "es_ES"), "none");
}

TEST(ParseDate, ReadsIsoDatesInAnyLocale) {
  for (const char* locale : {"es_ES", "en_US", "sv_SE"}) {
    EXPECT_EQ(Read("2003-03-05", locale), "2003-03-05 00:00:00") << locale;
    EXPECT_EQ(Read("2003-03-05 08:04:09", locale), "2003-03-05 08:04:09") << locale;
  }
}

TEST(ParseDate, FindsAFullYearAtTheEndInAYearFirstLocale) {
  EXPECT_EQ(Read("3/5/2003", "sv_SE"), "2003-03-05 00:00:00");
}

TEST(ParseDate, TakesSlashHyphenAndPointButNotMixed) {
  EXPECT_EQ(Read("5-3-2003"), "2003-03-05 00:00:00");
  EXPECT_EQ(Read("5.3.2003"), "2003-03-05 00:00:00");
  EXPECT_EQ(Read("5/3-2003"), "none");
}

TEST(ParseDate, CompletesYearsOfTwoDigits) {
  EXPECT_EQ(Read("5/3/00"), "2000-03-05 00:00:00");
  EXPECT_EQ(Read("5/3/29"), "2029-03-05 00:00:00");
  EXPECT_EQ(Read("5/3/30"), "1930-03-05 00:00:00");
  EXPECT_EQ(Read("5/3/99"), "1999-03-05 00:00:00");
}

TEST(ParseDate, ReadsATimeAloneOnTheZeroDate) {
  EXPECT_EQ(Read("8:04"), "1899-12-30 08:04:00");
  EXPECT_EQ(Read("23:59:59"), "1899-12-30 23:59:59");
  EXPECT_EQ(Read("0:00"), "1899-12-30 00:00:00");
}

TEST(ParseDate, ReadsHalvesOfTheDay) {
  EXPECT_EQ(Read("8:04 pm"), "1899-12-30 20:04:00");
  EXPECT_EQ(Read("8:04:09AM"), "1899-12-30 08:04:09");
  EXPECT_EQ(Read("12:00 am"), "1899-12-30 00:00:00");
  EXPECT_EQ(Read("12:30 p"), "1899-12-30 12:30:00");
  EXPECT_EQ(Read("8 PM"), "1899-12-30 20:00:00");
  EXPECT_EQ(Read("13:00 pm"), "none");
  EXPECT_EQ(Read("0:30 am"), "none");
}

TEST(ParseDate, ReadsDateAndTime) {
  EXPECT_EQ(Read("5/3/2003 8:04:09"), "2003-03-05 08:04:09");
  EXPECT_EQ(Read("  5/3/2003   8:04 PM "), "2003-03-05 20:04:00");
}

TEST(ParseDate, RefusesOtherText) {
  for (const char* text :
       {"",           " ",         "abc",       "12",        "12.5",       "5/3",
        "5/3/2003/1", "31/4/2003", "29/2/2003", "5/3/10000", "24:00",      "8:60",
        "8:04:60",    "8:04:09:1", "8",         "008:04",    "5/3/2003 x", "5/3/2003 8",
        "/5/3",       "5//2003",   "5/3/2003x", "5/3/99 99", "pm",         "5/3/050"}) {
    EXPECT_EQ(Read(text), "none") << text;
  }
}

TEST(DateText, IsShortDateAndTimeOfTheLocale) {
  EXPECT_EQ(Write("2003-03-05 08:04:09", "es_ES"), "05/03/2003 8:04:09");
  EXPECT_EQ(Write("2003-03-05 08:04:09", "en_US"), "3/5/2003 8:04:09 AM");
  EXPECT_EQ(Write("2003-03-05 08:04:09", "sv_SE"), "2003-03-05 8:04:09");
}

TEST(DateText, IsTheDateAloneAtMidnight) {
  EXPECT_EQ(Write("2003-03-05 00:00:00", "es_ES"), "05/03/2003");
}

TEST(DateText, IsTheTimeAloneOnTheZeroDate) {
  EXPECT_EQ(Write("1899-12-30 17:30:00", "es_ES"), "17:30:00");
  EXPECT_EQ(Write("1899-12-30 00:00:00", "es_ES"), "0:00:00");
}

TEST(DateText, CountsHoursFrom12InHalvesOfTheDay) {
  EXPECT_EQ(Write("1899-12-30 00:30:00", "en_US"), "12:30:00 AM");
  EXPECT_EQ(Write("1899-12-30 12:30:00", "en_US"), "12:30:00 PM");
  EXPECT_EQ(Write("1899-12-30 23:30:00", "en_US"), "11:30:00 PM");
}

TEST(DateText, ReadsBackAsTheSameMoment) {
  for (const char* locale : {"es_ES", "en_US", "sv_SE"}) {
    for (const char* iso : {"2003-03-05 08:04:09", "1899-12-30 00:00:00", "1899-12-30 13:00:00",
                            "0100-01-02 00:00:00", "9999-12-31 23:59:59", "1899-12-29 06:00:00"}) {
      EXPECT_EQ(Read(Write(iso, locale), locale), iso) << locale;
    }
  }
}

}  // namespace
}  // namespace ambrelio
