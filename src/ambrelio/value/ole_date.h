// A moment as automation clients and the database keep it: days since 30 December 1899 00:00:00,
// the fraction being the time of day. A value type; no time zone, whole seconds.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ambrelio {

// A moment in its calendar parts. month 1..12, day 1..31, hour 0..23, minute and second 0..59.
struct CivilTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const CivilTime&, const CivilTime&) = default;
};

class OleDate {
 public:
  // 1 January 100 and 31 December 9999.
  static constexpr int kFirstDay = -657434;
  static constexpr int kLastDay = 2958465;
  // Whether a number of days lies in these; the fraction counts forward, before the zero date too.
  static constexpr bool IsMoment(double days) {
    return days > kFirstDay - 1 && days < kLastDay + 1;
  }

  // The zero date, 30 December 1899 00:00:00: what an unset moment reads as.
  constexpr OleDate() = default;

  // Any number of days, also before the zero date: there the fraction still counts forward from
  // midnight (-1.25 is 29 December 1899 06:00:00).
  static constexpr OleDate FromDays(double days) { return OleDate(days); }

  // Nothing when the parts are no moment of the years 100 to 9999.
  static std::optional<OleDate> FromCivil(const CivilTime& civil);

  // "YYYY-MM-DD HH:MM:SS" exactly; nothing for any other text.
  static std::optional<OleDate> FromIso(std::string_view text);

  constexpr double days() const { return days_; }
  // The calendar parts, rounded to the nearest second. This and what follows raise 6 (overflow)
  // outside the years 100 to 9999.
  CivilTime Civil() const;
  // "YYYY-MM-DD HH:MM:SS".
  std::string Iso() const;
  // Midnight at the end of this moment's day.
  OleDate NextDay() const;

  friend constexpr bool operator==(OleDate a, OleDate b) { return a.days_ == b.days_; }
  friend constexpr std::partial_ordering operator<=>(OleDate a, OleDate b) {
    return a.days_ <=> b.days_;
  }

 private:
  explicit constexpr OleDate(double days) : days_(days) {}
  double days_ = 0;
};

}  // namespace ambrelio
