// Numbers by the patterns of `Format`.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ambrelio/engine/embedded/functions/format_pattern.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/decimal.h"
#include "ambrelio/value/locale.h"

namespace ambrelio::embedded {

namespace {

constexpr int kSignificantDigits = 15;

// What a section says about the number as a whole.
struct Layout {
  int whole_places = 0;  // 0 and # before the point
  int whole_least = 0;   // digits that always stand before the point
  int decimals = 0;      // 0 and # behind it
  int decimals_least = 0;
  int shift = 0;  // powers of ten: two for each %, minus three for each comma that ends the places
  bool grouped = false;
  bool has_point = false;
  bool scientific = false;
  size_t exponent_at = 0;  // where the E stands
  int exponent_places = 0;
};

// Whether an exponent starts here: E+ or E- with a place of a digit.
bool IsExponent(const Pattern& section, size_t at) {
  return at + 2 < section.size() && section[at].IsOneOf("Ee") && section[at + 1].IsOneOf("+-") &&
         section[at + 2].IsOneOf("0#");
}

void AddPlace(Layout& layout, bool zero) {
  if (layout.has_point) {
    ++layout.decimals;
    if (zero) layout.decimals_least = layout.decimals;
  } else {
    ++layout.whole_places;
    if (zero || layout.whole_least > 0) ++layout.whole_least;
  }
}

Layout Measure(const Pattern& section) {
  Layout layout;
  int commas = 0;  // since the last place before the point
  for (size_t i = 0; i < section.size(); ++i) {
    const PatternPart& part = section[i];
    if (part.IsOneOf("0#")) {
      if (!layout.has_point && commas > 0) {
        layout.grouped = true;
        commas = 0;
      }
      AddPlace(layout, part.Is('0'));
    } else if (part.Is('.')) {
      layout.has_point = true;
    } else if (part.Is(',') && !layout.has_point && layout.whole_places > 0) {
      ++commas;
    } else if (part.Is('%')) {
      layout.shift += 2;
    } else if (!layout.scientific && IsExponent(section, i)) {
      layout.scientific = true;
      layout.exponent_at = i;
      for (i += 2; i < section.size() && section[i].IsOneOf("0#"); ++i) ++layout.exponent_places;
      --i;
    }
  }
  layout.shift -= 3 * commas;
  return layout;
}

// Lays the digits of a number without sign into a section.
class NumberPrinter {
 public:
  NumberPrinter(const Pattern& section, Decimal number)
      : section_(section), layout_(Measure(section)), number_(std::move(number)) {
    number_.negative = false;
    if (number_.digits.empty()) {
      number_.exponent = 0;
    } else {
      number_.exponent += layout_.shift;
    }
    if (layout_.scientific) {
      Normalise();
    } else {
      number_.Round(layout_.decimals);
    }
    const std::string text = number_.Fixed(layout_.decimals, '.');
    const size_t whole =
        text.size() - static_cast<size_t>(layout_.decimals) - (layout_.decimals > 0 ? 1 : 0);
    whole_ = text.substr(0, whole);
    if (layout_.decimals > 0) fraction_ = text.substr(whole + 1);
    if (whole_ == "0") whole_.clear();
  }

  std::string Print() {
    for (size_t i = 0; i < section_.size(); ++i) {
      const PatternPart& part = section_[i];
      if (layout_.scientific && i == layout_.exponent_at) {
        PrintExponent();
        i += 1 + static_cast<size_t>(layout_.exponent_places);
      } else if (part.IsOneOf("0#")) {
        behind_point_ ? PrintDecimal() : PrintWhole();
      } else if (part.Is('.') && !behind_point_) {
        PrintPoint();
      } else if (!part.Is(',')) {
        text_ += part.text;
      }
    }
    return text_;
  }

 private:
  // Brings the number to as many digits before the point as there are places, and keeps the power
  // of ten that this took.
  void Normalise() {
    if (number_.digits.empty()) return;
    power_ = number_.exponent - layout_.whole_places;
    number_.exponent = layout_.whole_places;
    number_.Round(layout_.decimals);
    if (number_.exponent <= layout_.whole_places) return;
    // 9.99 became 10.0.
    --number_.exponent;
    ++power_;
  }

  // The digit that stands so many places before the point's last one, with its grouping sign.
  void PrintWholeDigit(int place) {
    const int digits = static_cast<int>(whole_.size());
    if (place < digits) {
      text_ += whole_[static_cast<size_t>(digits - 1 - place)];
    } else if (place < layout_.whole_least) {
      text_ += '0';
    } else {
      return;
    }
    if (layout_.grouped && place > 0 && place % 3 == 0) text_ += Locale::Current().thousands;
  }

  // The first place takes the digits that have none, too.
  void PrintWhole() {
    const int place = layout_.whole_places - 1 - whole_printed_;
    if (whole_printed_ == 0) PrintSurplus(place);
    PrintWholeDigit(place);
    ++whole_printed_;
  }

  void PrintSurplus(int last) {
    for (int place = static_cast<int>(whole_.size()) - 1; place > last; --place) {
      PrintWholeDigit(place);
    }
  }

  void PrintPoint() {
    if (layout_.whole_places == 0) PrintSurplus(-1);
    text_ += Locale::Current().decimal;
    behind_point_ = true;
  }

  void PrintDecimal() {
    const size_t place = decimals_printed_++;
    const bool kept = place < static_cast<size_t>(layout_.decimals_least) ||
                      fraction_.find_first_not_of('0', place) != std::string::npos;
    if (kept) text_ += fraction_[place];
  }

  void PrintExponent() {
    text_ += section_[layout_.exponent_at].text;
    if (power_ < 0) {
      text_ += '-';
    } else if (section_[layout_.exponent_at + 1].Is('+')) {
      text_ += '+';
    }
    const std::string digits = std::to_string(std::abs(power_));
    const auto places = static_cast<size_t>(layout_.exponent_places);
    if (digits.size() < places) text_.append(places - digits.size(), '0');
    text_ += digits;
  }

  const Pattern& section_;
  Layout layout_;
  Decimal number_;
  std::string whole_;     // the digits before the point, none for 0
  std::string fraction_;  // those behind it
  std::string text_;
  int power_ = 0;
  int whole_printed_ = 0;
  size_t decimals_printed_ = 0;
  bool behind_point_ = false;
};

}  // namespace

std::string FormatNumber(double value, const std::vector<Pattern>& sections) {
  const auto given = [&sections](size_t i) { return sections.size() > i && !sections[i].empty(); };
  const Decimal number = Decimal::FromDouble(value, kSignificantDigits);
  if (value < 0) {
    if (given(1)) return NumberPrinter(sections[1], number).Print();
    return std::string(1, '-').append(NumberPrinter(sections[0], number).Print());
  }
  return NumberPrinter(sections[value == 0 && given(2) ? 2 : 0], number).Print();
}

}  // namespace ambrelio::embedded
