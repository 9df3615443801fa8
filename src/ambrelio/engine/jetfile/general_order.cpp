#include "ambrelio/engine/jetfile/general_order.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kMostCharacters = 255;
constexpr uint8_t kEnd = 0x00;
constexpr uint8_t kSectionEnd = 0x01;
constexpr uint8_t kPlain = 0x02;  // the accent of what has none
constexpr uint8_t kIgnorableMark = 0x06;

// A letter, digit or sign: up to two weights, each of one byte or two, and the accent on the last.
struct Weight {
  uint16_t first = 0;
  uint16_t second = 0;  // of what sorts as two letters; 0 otherwise
  uint8_t accent = kPlain;
};

struct Sign {
  char16_t character;
  uint16_t weight;
};

constexpr auto kSigns = std::to_array<Sign>({
    {u' ', 0x07},        {u'!', 0x09},        {u'"', 0x0A},        {u'#', 0x0C},
    {u'$', 0x0E},        {u'%', 0x10},        {u'&', 0x12},        {u'(', 0x14},
    {u')', 0x16},        {u'*', 0x18},        {u',', 0x1A},        {u'.', 0x1C},
    {u'/', 0x1E},        {u':', 0x20},        {u';', 0x22},        {u'?', 0x24},
    {u'@', 0x26},        {u'[', 0x27},        {u'\\', 0x29},       {u']', 0x2A},
    {u'+', 0x2C},        {u'<', 0x2E},        {u'=', 0x30},        {u'>', 0x32},
    {u'0', 0x36},        {u'1', 0x38},        {u'2', 0x3A},        {u'3', 0x3C},
    {u'4', 0x3E},        {u'5', 0x40},        {u'6', 0x42},        {u'7', 0x44},
    {u'8', 0x46},        {u'9', 0x48},        {u'\t', 0x0803},     {u'\n', 0x0804},
    {u'\v', 0x0805},     {u'\f', 0x0806},     {u'\r', 0x0807},     {u'^', 0x2B02},
    {u'_', 0x2B03},      {u'`', 0x2B07},      {u'{', 0x2B09},      {u'|', 0x2B0B},
    {u'}', 0x2B0D},      {u'~', 0x2B0F},      {u'\u00A0', 0x0802}, {u'\u00A1', 0x2B10},
    {u'\u00A2', 0x34A6}, {u'\u00A3', 0x34A7}, {u'\u00A4', 0x34A8}, {u'\u00A5', 0x34A9},
    {u'\u00A6', 0x2B11}, {u'\u00A7', 0x34AA}, {u'\u00A8', 0x2B12}, {u'\u00A9', 0x34AB},
    {u'\u00AB', 0x3305}, {u'\u00AC', 0x34AC}, {u'\u00AE', 0x34AD}, {u'\u00AF', 0x2B13},
    {u'\u00B0', 0x34AE}, {u'\u00B1', 0x3304}, {u'\u00B2', 0x3A},   {u'\u00B3', 0x3C},
    {u'\u00B4', 0x2B14}, {u'\u00B5', 0x34AF}, {u'\u00B6', 0x34B0}, {u'\u00B7', 0x34B1},
    {u'\u00B8', 0x2B15}, {u'\u00B9', 0x38},   {u'\u00BB', 0x3307}, {u'\u00BC', 0x3712},
    {u'\u00BD', 0x3716}, {u'\u00BE', 0x371A}, {u'\u00BF', 0x2B16}, {u'\u00D7', 0x3309},
    {u'\u00F7', 0x330A}, {u'\u2018', 0x2B37}, {u'\u2019', 0x2B38}, {u'\u201C', 0x2B3B},
    {u'\u201D', 0x2B3C}, {u'\u2026', 0x34B9}, {u'\u20AC', 0x35A1},
});

// The letters a to z.
constexpr std::array<uint8_t, 26> kLetters = {0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59,
                                              0x5B, 0x5C, 0x5E, 0x60, 0x62, 0x64, 0x66, 0x68, 0x69,
                                              0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78};

constexpr uint8_t LetterWeight(char letter) {
  return kLetters.at(static_cast<size_t>(letter - 'a'));
}

// The letters that are one of a to z with a mark; each capital beside its small letter.
struct Accented {
  uint8_t accent;
  std::u16string_view letters;
  std::string_view bases;
};
constexpr auto kAccented = std::to_array<Accented>({
    {0x03, u"\u00AA\u00BA", "ao"},
    {0x0E, u"áéíóúýÁÉÍÓÚÝ", "aeiouyaeiouy"},
    {0x0F, u"àèìòùÀÈÌÒÙ", "aeiouaeiou"},
    {0x12, u"âêîôûÂÊÎÔÛ", "aeiouaeiou"},
    {0x13, u"äëïöüÿÄËÏÖÜŸ", "aeiouyaeiouy"},
    {0x14, u"šŠžŽ", "sszz"},
    {0x19, u"ãñõÃÑÕ", "anoano"},
    {0x1A, u"åÅ", "aa"},
    {0x1C, u"çÇ", "cc"},
    {0x21, u"øØ", "oo"},
    {0x68, u"ðÐ", "dd"},
    {0x7B, u"ƒ", "f"},
});

struct TwoLetters {
  char16_t character;
  char first;
  char second;
};
constexpr auto kTwoLetters = std::to_array<TwoLetters>({{u'ß', 's', 's'},
                                                        {u'æ', 'a', 'e'},
                                                        {u'Æ', 'a', 'e'},
                                                        {u'þ', 't', 'h'},
                                                        {u'Þ', 't', 'h'},
                                                        {u'œ', 'o', 'e'},
                                                        {u'Œ', 'o', 'e'}});

using Weights = std::unordered_map<char16_t, Weight>;

Weights MakeWeights() {
  Weights weights;
  for (const Sign& sign : kSigns) weights[sign.character] = {sign.weight};
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    const Weight weight{LetterWeight(letter)};
    weights[static_cast<char16_t>(letter)] = weight;
    weights[static_cast<char16_t>(letter - 'a' + 'A')] = weight;
  }
  for (const Accented& group : kAccented) {
    for (size_t i = 0; i < group.letters.size(); ++i) {
      weights[group.letters[i]] = {LetterWeight(group.bases[i]), 0, group.accent};
    }
  }
  for (const TwoLetters& two : kTwoLetters) {
    weights[two.character] = {LetterWeight(two.first), LetterWeight(two.second)};
  }
  return weights;
}

// What leaves its mark behind the rest of the key only; 0 for other characters.
uint8_t IgnorableCode(char16_t unit) {
  if (unit >= 0x01 && unit <= 0x08) return static_cast<uint8_t>(unit - 0x01 + 0x03);
  if (unit >= 0x0E && unit <= 0x1F) return static_cast<uint8_t>(unit - 0x0E + 0x0B);
  if (unit >= 0x7F && unit <= 0x9F) return static_cast<uint8_t>(unit - 0x7F + 0x1D);
  switch (unit) {
    case u'\'':
      return 0x80;
    case u'-':
      return 0x82;
    case u'\u00AD':
      return 0x83;
    case u'\u2013':
      return 0x89;
    case u'\u2014':
      return 0x8B;
    default:
      return 0;
  }
}

bool IsLetter(char16_t unit, char letter) {
  return unit == static_cast<char16_t>(letter) || unit == static_cast<char16_t>(letter - 'a' + 'A');
}

// The weight of a Spanish letter that the General order does not have; `used` units make it up.
std::optional<Weight> SpanishWeight(std::u16string_view rest, TextOrder order, size_t& used) {
  constexpr uint16_t kCh = 0x4E04;
  constexpr uint16_t kLl = 0x5F04;
  constexpr uint16_t kEnye = 0x6304;
  if (order == TextOrder::kGeneral) return std::nullopt;
  used = 1;
  if (rest[0] == u'ñ' || rest[0] == u'Ñ') return Weight{kEnye};
  if (order != TextOrder::kTraditionalSpanish || rest.size() < 2) return std::nullopt;
  used = 2;
  if (IsLetter(rest[0], 'c') && IsLetter(rest[1], 'h')) return Weight{kCh};
  if (IsLetter(rest[0], 'l') && IsLetter(rest[1], 'l')) return Weight{kLl};
  return std::nullopt;
}

class KeyWriter {
 public:
  void Add(const Weight& weight) {
    AddOne(weight.first, weight.second == 0 ? weight.accent : kPlain);
    if (weight.second != 0) AddOne(weight.second, weight.accent);
  }
  void AddIgnorable(uint8_t code) {
    const size_t position = 0x8000 | (7 + 4 * accents_.size());
    ignorables_.push_back(static_cast<uint8_t>(position >> 8));
    ignorables_.push_back(static_cast<uint8_t>(position));
    ignorables_.push_back(kIgnorableMark);
    ignorables_.push_back(code);
  }
  Bytes Key() {
    while (!accents_.empty() && accents_.back() == kPlain) accents_.pop_back();
    Bytes key = std::move(primary_);
    key.push_back(kSectionEnd);
    Append(key, accents_);
    if (!ignorables_.empty()) {
      key.insert(key.end(), 3, kSectionEnd);
      Append(key, ignorables_);
    }
    key.push_back(kEnd);
    return key;
  }

 private:
  void AddOne(uint16_t weight, uint8_t accent) {
    if (weight > 0xFF) primary_.push_back(static_cast<uint8_t>(weight >> 8));
    primary_.push_back(static_cast<uint8_t>(weight));
    accents_.push_back(accent);
  }

  Bytes primary_;
  Bytes accents_;
  Bytes ignorables_;
};

}  // namespace

std::optional<Bytes> GeneralOrderKey(std::string_view utf8, TextOrder order) {
  static const Weights weights = MakeWeights();
  std::u16string units = Utf8ToUtf16(utf8);
  units.resize(std::min(units.size(), kMostCharacters));
  units.erase(units.find_last_not_of(u' ') + 1);
  KeyWriter writer;
  for (size_t at = 0; at < units.size(); ++at) {
    const char16_t unit = units[at];
    size_t used = 1;
    if (const auto spanish = SpanishWeight(std::u16string_view(units).substr(at), order, used)) {
      writer.Add(*spanish);
      at += used - 1;
    } else if (const uint8_t code = IgnorableCode(unit); code != 0) {
      writer.AddIgnorable(code);
    } else if (const auto found = weights.find(unit); found != weights.end()) {
      writer.Add(found->second);
    } else if (unit != 0) {
      return std::nullopt;
    }
  }
  return writer.Key();
}

}  // namespace ambrelio::jetfile
