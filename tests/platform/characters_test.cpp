#include "ambrelio/platform/characters.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ambrelio {
namespace {

std::vector<char32_t> Characters(std::string_view text) {
  std::vector<char32_t> characters;
  for (size_t at = 0; at < text.size();) characters.push_back(NextCharacter(text, at));
  return characters;
}

using Expected = std::vector<char32_t>;

TEST(NextCharacter, ReadsCharactersOfOneToFourBytes) {
  EXPECT_EQ(Characters("añ€𝄞"), (Expected{U'a', U'ñ', U'€', U'𝄞'}));
}

TEST(NextCharacter, ReadsAStrayByteAsItself) {
  EXPECT_EQ(Characters("a\xFFz"), (Expected{U'a', kStrayByte + 0xFF, U'z'}));
  EXPECT_EQ(Characters("\x80"), (Expected{kStrayByte + 0x80}));
}

TEST(NextCharacter, ReadsACutCharacterByteByByte) {
  EXPECT_EQ(Characters("\xE2\x82"), (Expected{kStrayByte + 0xE2, kStrayByte + 0x82}));
  EXPECT_EQ(Characters("\xC3z"), (Expected{kStrayByte + 0xC3, U'z'}));
}

TEST(NextCharacter, RefusesOverlongFormsSurrogatesAndNumbersBeyondUnicode) {
  EXPECT_EQ(Characters("\xC0\xAF").front(), kStrayByte + 0xC0);
  EXPECT_EQ(Characters("\xE0\x80\xAF").front(), kStrayByte + 0xE0);
  EXPECT_EQ(Characters("\xED\xA0\x80").front(), kStrayByte + 0xED);
  EXPECT_EQ(Characters("\xF4\x90\x80\x80").front(), kStrayByte + 0xF4);
}

TEST(AppendCharacter, WritesWhatNextCharacterReads) {
  const std::string all = "añ€𝄞\xFF\xE2\x82z";
  std::string copy;
  for (char32_t character : Characters(all)) AppendCharacter(copy, character);
  EXPECT_EQ(copy, all);
}

TEST(LetterCase, ChangesLatinGreekAndCyrillic) {
  EXPECT_EQ(UpperCase("almazara ñandú ç šž ÿ ąłż αώ дё"), "ALMAZARA ÑANDÚ Ç ŠŽ Ÿ ĄŁŻ ΑΏ ДЁ");
  EXPECT_EQ(LowerCase("ALMAZARA ÑANDÚ Ç ŠŽ Ÿ ĄŁŻ ΑΏ ДЁ"), "almazara ñandú ç šž ÿ ąłż αώ дё");
}

TEST(LetterCase, LeavesSignsAndLettersWithoutAPartner) {
  EXPECT_EQ(UpperCase("ß×÷ĸ1-@[`{"), "ß×÷ĸ1-@[`{");
  EXPECT_EQ(LowerCase("×÷1-@[`{"), "×÷1-@[`{");
}

TEST(LetterCase, LeavesStrayBytes) { EXPECT_EQ(LowerCase("A\xD1Z"), "a\xD1z"); }

TEST(LetterCase, BringsEveryCapitalBack) {
  for (char32_t character = 0; character < 0x500; ++character) {
    if (ToLower(character) == character) continue;
    EXPECT_EQ(ToUpper(ToLower(character)), character);
  }
}

}  // namespace
}  // namespace ambrelio
