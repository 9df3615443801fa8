#include "ambrelio/engine/embedded/functions/general_order.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "ambrelio/platform/characters.h"
#include "ambrelio/value/ascii.h"

namespace ambrelio::embedded {

namespace {

// The weights are those of the index entries of Jet 4 files, so that both order alike.
//
//   text  = primary weight of each character, then its mark, then the ignorables with their places
//
// compared in that order, each level as a whole.
struct Weight {
  uint32_t primary = 0;    // 0: not seen at this level
  uint16_t expansion = 0;  // the second primary weight of ß, æ and their like
  uint8_t mark = 2;        // the accent; 2 for none
  uint8_t ignorable = 0;   // hyphen and the like; 0 with no primary: no weight at all
};

struct Sign {
  char32_t character;
  uint16_t primary;
};

constexpr auto kSigns = std::to_array<Sign>({
    {U' ', 0x0700},  {0xA0, 0x0802},  {U'\t', 0x0803}, {U'\n', 0x0804}, {U'\v', 0x0805},
    {U'\f', 0x0806}, {U'\r', 0x0807}, {U'!', 0x0900},  {U'"', 0x0A00},  {U'#', 0x0C00},
    {U'$', 0x0E00},  {U'%', 0x1000},  {U'&', 0x1200},  {U'(', 0x1400},  {U')', 0x1600},
    {U'*', 0x1800},  {U',', 0x1A00},  {U'.', 0x1C00},  {U'/', 0x1E00},  {U':', 0x2000},
    {U';', 0x2200},  {U'?', 0x2400},  {U'@', 0x2600},  {U'[', 0x2700},  {U'\\', 0x2900},
    {U']', 0x2A00},  {U'^', 0x2B02},  {U'_', 0x2B03},  {U'`', 0x2B07},  {U'{', 0x2B09},
    {U'|', 0x2B0B},  {U'}', 0x2B0D},  {U'~', 0x2B0F},  {U'¡', 0x2B10},  {U'¦', 0x2B11},
    {U'¨', 0x2B12},  {U'¯', 0x2B13},  {U'´', 0x2B14},  {U'¸', 0x2B15},  {U'¿', 0x2B16},
    {U'‘', 0x2B37},  {U'’', 0x2B38},  {U'“', 0x2B3B},  {U'”', 0x2B3C},  {U'+', 0x2C00},
    {U'<', 0x2E00},  {U'=', 0x3000},  {U'>', 0x3200},  {U'±', 0x3304},  {U'«', 0x3305},
    {U'»', 0x3307},  {U'×', 0x3309},  {U'÷', 0x330A},  {U'¢', 0x34A6},  {U'£', 0x34A7},
    {U'¤', 0x34A8},  {U'¥', 0x34A9},  {U'§', 0x34AA},  {U'©', 0x34AB},  {U'¬', 0x34AC},
    {U'®', 0x34AD},  {U'°', 0x34AE},  {U'µ', 0x34AF},  {U'¶', 0x34B0},  {U'·', 0x34B1},
    {U'…', 0x34B9},  {U'€', 0x35A1},  {U'0', 0x3600},  {U'¼', 0x3712},  {U'½', 0x3716},
    {U'¾', 0x371A},  {U'1', 0x3800},  {U'¹', 0x3800},  {U'2', 0x3A00},  {U'²', 0x3A00},
    {U'3', 0x3C00},  {U'³', 0x3C00},  {U'4', 0x3E00},  {U'5', 0x4000},  {U'6', 0x4200},
    {U'7', 0x4400},  {U'8', 0x4600},  {U'9', 0x4800},  {U'a', 0x4A00},  {U'b', 0x4C00},
    {U'c', 0x4D00},  {U'd', 0x4F00},  {U'e', 0x5100},  {U'f', 0x5300},  {U'g', 0x5500},
    {U'h', 0x5700},  {U'i', 0x5900},  {U'j', 0x5B00},  {U'k', 0x5C00},  {U'l', 0x5E00},
    {U'm', 0x6000},  {U'n', 0x6200},  {U'o', 0x6400},  {U'p', 0x6600},  {U'q', 0x6800},
    {U'r', 0x6900},  {U's', 0x6B00},  {U't', 0x6D00},  {U'u', 0x6F00},  {U'v', 0x7100},
    {U'w', 0x7300},  {U'x', 0x7500},  {U'y', 0x7600},  {U'z', 0x7800},
});

// Letters that are others with an accent or in another form, small ones only.
struct Marked {
  std::u32string_view letters;
  std::u32string_view plain;
  uint8_t mark;
};

constexpr auto kMarked = std::to_array<Marked>({
    {U"ªºıŀŉĸſ", U"aoilnks", 0x03},
    {U"áćéíĺńóŕśúýź", U"aceilnorsuyz", 0x0E},
    {U"àèìòù", U"aeiou", 0x0F},
    {U"ċėġİż", U"cegiz", 0x10},
    {U"âĉêĝĥîĵôŝûŵŷ", U"aceghijosuwy", 0x12},
    {U"äëïöüÿ", U"aeiouy", 0x13},
    {U"čďěľňřšťž", U"cdelnrstz", 0x14},
    {U"ăĕğĭŏŭ", U"aegiou", 0x15},
    {U"āēīōū", U"aeiou", 0x17},
    {U"ãĩñõũ", U"ainou", 0x19},
    {U"åů", U"au", 0x1A},
    {U"ąęįų", U"aeiu", 0x1B},
    {U"çģķļņŗşţ", U"cgklnrst", 0x1C},
    {U"őű", U"ou", 0x1D},
    {U"đħłøŧ", U"dhlot", 0x21},
    {U"ðŋ", U"dn", 0x68},
    {U"ƒ", U"f", 0x7B},
});

constexpr std::u32string_view kExpanded = U"ßæþœĳ";
constexpr std::u32string_view kExpansions = U"ssaethoeij";

constexpr auto kIgnorables = std::to_array<Sign>({
    {U'\'', 0x80},
    {U'-', 0x82},
    {0xAD, 0x83},
    {U'–', 0x89},
    {U'—', 0x8B},
});

constexpr uint16_t PrimaryOf(char32_t character) {
  for (const Sign& sign : kSigns) {
    if (sign.character == character) return sign.primary;
  }
  return 0;
}

// The weight of a character that is none of the tables': behind all of them, by its number.
constexpr Weight OtherWeight(char32_t character) {
  Weight weight;
  weight.primary = 0x10000 + static_cast<uint32_t>(ToLower(character));
  return weight;
}

constexpr Weight FindWeight(char32_t character) {
  const char32_t letter = ToLower(character);
  Weight weight;
  weight.primary = PrimaryOf(letter);
  if (weight.primary != 0) return weight;
  for (const Marked& marked : kMarked) {
    const size_t place = marked.letters.find(letter);
    if (place == std::u32string_view::npos) continue;
    weight.primary = PrimaryOf(marked.plain[place]);
    weight.mark = marked.mark;
    return weight;
  }
  if (const size_t place = kExpanded.find(letter); place != std::u32string_view::npos) {
    weight.primary = PrimaryOf(kExpansions[2 * place]);
    weight.expansion = PrimaryOf(kExpansions[2 * place + 1]);
    return weight;
  }
  for (const Sign& sign : kIgnorables) {
    if (sign.character != character) continue;
    weight.ignorable = static_cast<uint8_t>(sign.primary);
    return weight;
  }
  if (character == 0) return weight;
  const auto control = [&weight, character](char32_t first, uint8_t code) {
    weight.ignorable = static_cast<uint8_t>(code + (character - first));
    return weight;
  };
  if (character <= 0x08) return control(0x01, 0x03);
  if (character >= 0x0E && character <= 0x1F) return control(0x0E, 0x0B);
  if (character >= 0x7F && character <= 0x9F) return control(0x7F, 0x1D);
  return OtherWeight(character);
}

// Everything that is met often: ASCII, Latin-1 and Latin Extended-A.
constexpr auto kWeights = [] {
  std::array<Weight, 0x180> weights{};
  for (char32_t character = 0; character < weights.size(); ++character) {
    weights[character] = FindWeight(character);
  }
  return weights;
}();

Weight WeightOf(char32_t character) {
  if (character < kWeights.size()) return kWeights[character];
  const bool tabled = character == U'ƒ' || (character >= 0x2013 && character <= 0x20AC);
  return tabled ? FindWeight(character) : OtherWeight(character);
}

// The first two levels of a text, weight by weight.
class Letters {
 public:
  struct Letter {
    uint32_t primary;  // 0 at the end
    uint8_t mark;
  };

  explicit Letters(std::string_view text) : text_(text) {}

  Letter Next() {
    if (expansion_ != 0) return {std::exchange(expansion_, uint16_t{0}), Weight().mark};
    while (at_ < text_.size()) {
      const Weight weight = WeightOf(NextCharacter(text_, at_));
      if (weight.primary != 0) {
        expansion_ = weight.expansion;
        return {weight.primary, weight.mark};
      }
      met_ignorables_ = met_ignorables_ || weight.ignorable != 0;
    }
    return {0, Weight().mark};
  }

  // Whether there was any on the way so far.
  bool met_ignorables() const { return met_ignorables_; }

 private:
  std::string_view text_;
  size_t at_ = 0;
  uint16_t expansion_ = 0;
  bool met_ignorables_ = false;
};

// The last level of a text: its ignorable characters with the number of weights before each.
class Ignorables {
 public:
  // (0, 0) at the end, which is less than any other.
  using Ignorable = std::pair<size_t, uint8_t>;

  explicit Ignorables(std::string_view text) : text_(text) {}

  Ignorable Next() {
    while (at_ < text_.size()) {
      const Weight weight = WeightOf(NextCharacter(text_, at_));
      if (weight.ignorable != 0) return {place_, weight.ignorable};
      place_ += (weight.primary != 0 ? 1 : 0) + (weight.expansion != 0 ? 1 : 0);
    }
    return {0, 0};
  }

 private:
  std::string_view text_;
  size_t at_ = 0;
  size_t place_ = 1;
};

int CompareIgnorables(std::string_view a, std::string_view b) {
  Ignorables of_a(a);
  Ignorables of_b(b);
  while (true) {
    const auto next_a = of_a.Next();
    const auto next_b = of_b.Next();
    if (next_a != next_b) return next_a < next_b ? -1 : 1;
    if (next_a.first == 0) return 0;
  }
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// The bytes that both texts begin with but for case, up to the start of a character in both: they
// weigh the same, whatever follows.
size_t CommonStart(std::string_view a, std::string_view b) {
  const auto splits = [](std::string_view text, size_t at) {
    return at < text.size() && IsContinuation(text[at]);
  };
  size_t at = 0;
  const size_t shorter = std::min(a.size(), b.size());
  while (at < shorter && (a[at] == b[at] || AsciiLower(a[at]) == AsciiLower(b[at]))) ++at;
  while (at > 0 && (splits(a, at) || splits(b, at))) --at;
  return at;
}

}  // namespace

int CompareText(std::string_view a, std::string_view b) {
  if (a == b) return 0;
  a = WithoutTrailingBlanks(a);
  b = WithoutTrailingBlanks(b);
  const size_t common = CommonStart(a, b);
  a.remove_prefix(common);
  b.remove_prefix(common);
  Letters letters_a(a);
  Letters letters_b(b);
  int by_marks = 0;
  while (true) {
    const auto letter_a = letters_a.Next();
    const auto letter_b = letters_b.Next();
    if (letter_a.primary != letter_b.primary) return letter_a.primary < letter_b.primary ? -1 : 1;
    if (letter_a.primary == 0) break;
    if (by_marks == 0) by_marks = letter_a.mark - letter_b.mark;
  }
  if (by_marks != 0) return by_marks;
  const bool ignorables = letters_a.met_ignorables() || letters_b.met_ignorables();
  return ignorables ? CompareIgnorables(a, b) : 0;
}

}  // namespace ambrelio::embedded
