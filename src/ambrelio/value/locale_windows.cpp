#include <windows.h>

#include "ambrelio/value/locale.h"

namespace ambrelio {
namespace {

// A sign of the user's settings. Where it is none of ASCII's, `otherwise` stands for it.
char Sign(LCTYPE setting, char otherwise) {
  wchar_t text[8] = L"";
  ::GetLocaleInfoW(LOCALE_USER_DEFAULT, setting, text, 8);
  const wchar_t sign = text[0];
  return sign > 0 && sign < 0x80 ? static_cast<char>(sign) : otherwise;
}

DateOrder OrderOfShortDates() {
  DWORD order = 0;
  ::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IDATE | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<LPWSTR>(&order), sizeof order / sizeof(wchar_t));
  switch (order) {
    case 1:
      return DateOrder::kDayMonthYear;
    case 2:
      return DateOrder::kYearMonthDay;
    default:
      return DateOrder::kMonthDayYear;
  }
}

}  // namespace

Locale Locale::OfSystem() {
  // Grouping is a no-break space in many countries, for which a blank stands.
  return {Sign(LOCALE_SDECIMAL, '.'), Sign(LOCALE_STHOUSAND, ' '), OrderOfShortDates()};
}

}  // namespace ambrelio
