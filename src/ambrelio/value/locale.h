// How numbers and dates read and print as text on this machine.
#pragma once

#include <string_view>

namespace ambrelio {

enum class DateOrder { kMonthDayYear, kDayMonthYear, kYearMonthDay };

struct Locale {
  char decimal = '.';
  char thousands = ',';
  DateOrder date_order = DateOrder::kMonthDayYear;

  // The locale of a POSIX name as "es_ES.UTF-8"; an unknown or empty one, "C" and "POSIX" give the
  // default above.
  static Locale FromName(std::string_view name);
  // The system's: on Windows the regional settings of the user, elsewhere the environment's
  // (LC_ALL, else LC_NUMERIC, else LANG).
  static Locale OfSystem();
  // The locale in force: at first the system's.
  static const Locale& Current();
  // Puts another one in force for the whole process. Not synchronised: called at start, or by a
  // test.
  static void Use(const Locale& locale);
};

// Puts a locale in force for a scope.
class ScopedLocale {
 public:
  explicit ScopedLocale(const Locale& locale) : before_(Locale::Current()) { Locale::Use(locale); }
  ~ScopedLocale() { Locale::Use(before_); }
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;

 private:
  Locale before_;
};

}  // namespace ambrelio
