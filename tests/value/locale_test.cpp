#include "ambrelio/value/locale.h"

#include <gtest/gtest.h>

#include <string>

namespace ambrelio {
namespace {

TEST(Locale, IsPointAndMonthFirstWhenUnknown) {
  for (const char* name : {"", "C", "POSIX", "C.UTF-8", "xx_YY", "tlh"}) {
    Locale locale = Locale::FromName(name);
    EXPECT_EQ(locale.decimal, '.') << name;
    EXPECT_EQ(locale.thousands, ',') << name;
    EXPECT_EQ(locale.date_order, DateOrder::kMonthDayYear) << name;
  }
}

TEST(Locale, IsCommaAndDayFirstInSpain) {
  for (const char* name : {"es_ES.UTF-8", "es_ES@euro", "es_ES", "es", "ca_ES.UTF-8", "gl_ES"}) {
    Locale locale = Locale::FromName(name);
    EXPECT_EQ(locale.decimal, ',') << name;
    EXPECT_EQ(locale.thousands, '.') << name;
    EXPECT_EQ(locale.date_order, DateOrder::kDayMonthYear) << name;
  }
}

TEST(Locale, IsCommaInTheOtherOilCountriesOfEurope) {
  for (const char* name : {"pt_PT", "it_IT", "fr_FR", "el_GR", "tr_TR", "hr_HR", "de_DE"}) {
    EXPECT_EQ(Locale::FromName(name).decimal, ',') << name;
  }
}

TEST(Locale, FollowsTheRegionWhereItDiffersFromItsLanguage) {
  EXPECT_EQ(Locale::FromName("es_MX.UTF-8").decimal, '.');
  EXPECT_EQ(Locale::FromName("es_MX.UTF-8").thousands, ',');
  EXPECT_EQ(Locale::FromName("es_AR.UTF-8").decimal, ',');
  EXPECT_EQ(Locale::FromName("de_CH").decimal, '.');
  EXPECT_EQ(Locale::FromName("en_US").date_order, DateOrder::kMonthDayYear);
  EXPECT_EQ(Locale::FromName("en_GB").date_order, DateOrder::kDayMonthYear);
}

TEST(Locale, KnowsYearFirstRegions) {
  EXPECT_EQ(Locale::FromName("sv_SE").date_order, DateOrder::kYearMonthDay);
  EXPECT_EQ(Locale::FromName("ja_JP.UTF-8").date_order, DateOrder::kYearMonthDay);
}

TEST(ScopedLocale, IsInForceForItsScope) {
  ScopedLocale outer(Locale::FromName("en_US"));
  {
    ScopedLocale inner(Locale::FromName("es_ES"));
    EXPECT_EQ(Locale::Current().decimal, ',');
  }
  EXPECT_EQ(Locale::Current().decimal, '.');
}

}  // namespace
}  // namespace ambrelio
