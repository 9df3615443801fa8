#include "ambrelio/value/locale.h"

#include <algorithm>

namespace ambrelio {
namespace {

constexpr auto kMdy = DateOrder::kMonthDayYear;
constexpr auto kDmy = DateOrder::kDayMonthYear;
constexpr auto kYmd = DateOrder::kYearMonthDay;

struct Entry {
  std::string_view name;  // language, or language and region
  Locale locale;
};

// Regions that differ from their language stand before it. Where grouping is a no-break space, a
// blank stands for it.
constexpr Entry kEntries[] = {
    // Spanish: Spain and the south of America write a comma, the rest of America a point.
    {"es_CR", {',', ' ', kDmy}},  {"es_DO", {'.', ',', kDmy}},  {"es_GT", {'.', ',', kDmy}},
    {"es_HN", {'.', ',', kDmy}},  {"es_MX", {'.', ',', kDmy}},  {"es_NI", {'.', ',', kDmy}},
    {"es_PA", {'.', ',', kMdy}},  {"es_PE", {'.', ',', kDmy}},  {"es_PR", {'.', ',', kMdy}},
    {"es_SV", {'.', ',', kDmy}},  {"es_US", {'.', ',', kMdy}},  {"es", {',', '.', kDmy}},
    {"ca", {',', '.', kDmy}},     {"gl", {',', '.', kDmy}},     {"eu", {',', '.', kYmd}},
    {"an", {',', '.', kDmy}},     {"ast", {',', '.', kDmy}},    {"oc", {',', ' ', kDmy}},
    {"pt", {',', '.', kDmy}},     {"fr_CA", {',', ' ', kYmd}},  {"fr_CH", {'.', '\'', kDmy}},
    {"fr", {',', ' ', kDmy}},     {"it_CH", {'.', '\'', kDmy}}, {"it", {',', '.', kDmy}},
    {"de_CH", {'.', '\'', kDmy}}, {"de_LI", {'.', '\'', kDmy}}, {"de", {',', '.', kDmy}},
    {"el", {',', '.', kDmy}},     {"tr", {',', '.', kDmy}},     {"nl", {',', '.', kDmy}},
    {"da", {',', '.', kDmy}},     {"nb", {',', ' ', kDmy}},     {"nn", {',', ' ', kDmy}},
    {"no", {',', ' ', kDmy}},     {"sv", {',', ' ', kYmd}},     {"fi", {',', ' ', kDmy}},
    {"pl", {',', ' ', kDmy}},     {"cs", {',', ' ', kDmy}},     {"sk", {',', ' ', kDmy}},
    {"sl", {',', '.', kDmy}},     {"hr", {',', '.', kDmy}},     {"sr", {',', '.', kDmy}},
    {"hu", {',', ' ', kYmd}},     {"ro", {',', '.', kDmy}},     {"bg", {',', ' ', kDmy}},
    {"ru", {',', ' ', kDmy}},     {"uk", {',', ' ', kDmy}},     {"lt", {',', ' ', kYmd}},
    {"lv", {',', ' ', kDmy}},     {"et", {',', ' ', kDmy}},     {"en_US", {'.', ',', kMdy}},
    {"en_PH", {'.', ',', kMdy}},  {"en_CA", {'.', ',', kYmd}},  {"en_ZA", {',', ' ', kYmd}},
    {"en", {'.', ',', kDmy}},     {"ar", {'.', ',', kDmy}},     {"he", {'.', ',', kDmy}},
    {"ja", {'.', ',', kYmd}},     {"ko", {'.', ',', kYmd}},     {"zh", {'.', ',', kYmd}},
};

Locale& InForce() {
  static Locale locale = Locale::OfSystem();
  return locale;
}

}  // namespace

Locale Locale::FromName(std::string_view name) {
  name = name.substr(0, name.find_first_of(".@"));
  std::string_view language = name.substr(0, name.find('_'));
  const auto* found = std::find_if(
      std::begin(kEntries), std::end(kEntries),
      [&](const Entry& entry) { return entry.name == name || entry.name == language; });
  return found == std::end(kEntries) ? Locale() : found->locale;
}

const Locale& Locale::Current() { return InForce(); }

void Locale::Use(const Locale& locale) { InForce() = locale; }

}  // namespace ambrelio
