#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

// What Windows makes of a number of thousands with two decimals: "1.234,50" in Spain.
std::string NumberAsWindowsWritesIt() {
  char text[40] = "";
  ::GetNumberFormatA(LOCALE_USER_DEFAULT, 0, "1234.5", nullptr, text, sizeof text);
  return text;
}

// A date whose parts all differ: "22/11/2025" in Spain.
std::string DateAsWindowsWritesIt() {
  const SYSTEMTIME moment{2025, 11, 0, 22, 0, 0, 0, 0};
  char text[40] = "";
  ::GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &moment, nullptr, text, sizeof text);
  return text;
}

TEST(LocaleOfWindows, HasTheDecimalSignOfTheUsersSettings) {
  const std::string number = NumberAsWindowsWritesIt();
  ASSERT_NE(number.find("50"), std::string::npos) << number;
  EXPECT_EQ(Locale::OfSystem().decimal, number.at(number.find("50") - 1)) << number;
}

TEST(LocaleOfWindows, HasTheGroupingOfTheUsersSettings) {
  // Some countries do not group numbers of four digits, or do so with a sign beyond ASCII.
  const std::string number = NumberAsWindowsWritesIt();
  const char sign = number.at(1);
  if (sign != '2' && static_cast<unsigned char>(sign) < 0x80) {
    EXPECT_EQ(Locale::OfSystem().thousands, sign) << number;
  }
}

TEST(LocaleOfWindows, HasTheOrderOfTheUsersShortDates) {
  const std::string date = DateAsWindowsWritesIt();
  const DateOrder order = Locale::OfSystem().date_order;
  if (date.starts_with("22")) {
    EXPECT_EQ(order, DateOrder::kDayMonthYear) << date;
  } else if (date.starts_with("11")) {
    EXPECT_EQ(order, DateOrder::kMonthDayYear) << date;
  } else {
    EXPECT_EQ(order, DateOrder::kYearMonthDay) << date;
  }
}

TEST(LocaleOfWindows, IsInForceAtFirst) {
  EXPECT_EQ(Locale::Current().decimal, Locale::OfSystem().decimal);
}

}  // namespace
}  // namespace ambrelio
