#include "ambrelio/platform/text_encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace ambrelio {
namespace {

TEST(IsValidUtf8, AcceptsCharactersOfEveryLength) {
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8("aceite"));
  EXPECT_TRUE(IsValidUtf8("ñ€😀"));
  EXPECT_TRUE(IsValidUtf8("\xF4\x8F\xBF\xBF"));  // the last character
  EXPECT_TRUE(IsValidUtf8(std::string_view("\0", 1)));
}

TEST(IsValidUtf8, RefusesMalformedBytes) {
  EXPECT_FALSE(IsValidUtf8("\xF1"));      // a Windows-1252 ñ
  EXPECT_FALSE(IsValidUtf8("\xC3"));      // cut short
  EXPECT_FALSE(IsValidUtf8("\xE2\x82"));  // cut short
  EXPECT_FALSE(IsValidUtf8("\xB1"));      // no first byte
  EXPECT_FALSE(IsValidUtf8("\xC3("));
  EXPECT_FALSE(IsValidUtf8("\xFF"));
}

TEST(IsValidUtf8, RefusesOverlongForms) {
  EXPECT_FALSE(IsValidUtf8("\xC0\xAF"));
  EXPECT_FALSE(IsValidUtf8("\xE0\x80\xAF"));
  EXPECT_FALSE(IsValidUtf8("\xF0\x80\x80\xAF"));
}

TEST(IsValidUtf8, RefusesSurrogatesAndWhatIsBeyondTheLastCharacter) {
  EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));
  EXPECT_FALSE(IsValidUtf8("\xF4\x90\x80\x80"));
  EXPECT_FALSE(IsValidUtf8("\xF8\x88\x80\x80\x80"));
}

TEST(Windows1252, ReadsLettersAndTheSignsOfItsOwn) {
  EXPECT_EQ(Windows1252ToUtf8("a\xF1\xBF\x80\x9F"), "añ¿€Ÿ");
}

TEST(Windows1252, ReadsBytesWithoutAMeaningAsReplacements) {
  EXPECT_EQ(Windows1252ToUtf8("\x81\x8D\x8F\x90\x9D"), "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Windows1252, WritesWhatItReads) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string bytes(1, static_cast<char>(byte));
    std::string text = Windows1252ToUtf8(bytes);
    EXPECT_TRUE(IsValidUtf8(text)) << byte;
    if (text != "\uFFFD") {
      EXPECT_EQ(Utf8ToWindows1252(text), bytes) << byte;
    }
  }
}

TEST(Windows1252, WritesAQuestionMarkForOtherCharacters) {
  EXPECT_EQ(Utf8ToWindows1252("aΩ😀\uFFFD\u0081z"), "a????z");
  EXPECT_EQ(Utf8ToWindows1252("a\xFFz"), "a?z");
}

TEST(Utf16, ReadsAndWritesPairs) {
  EXPECT_EQ(Utf8ToUtf16("ñ€😀\U00010000\U0010FFFF"), u"ñ€😀\U00010000\U0010FFFF");
  EXPECT_EQ(Utf16ToUtf8(u"ñ€😀\U00010000\U0010FFFF"), "ñ€😀\U00010000\U0010FFFF");
}

TEST(Utf16, ReadsUnpairedSurrogatesAsReplacements) {
  const char16_t high_alone[] = {u'a', 0xD83D, u'b'};
  const char16_t low_alone[] = {0xDE00, u'b'};
  const char16_t high_last[] = {u'a', 0xD83D};
  const char16_t two_highs[] = {0xD83D, 0xD83D, 0xDE00};
  EXPECT_EQ(Utf16ToUtf8({high_alone, 3}), "a\uFFFDb");
  EXPECT_EQ(Utf16ToUtf8({low_alone, 2}), "\uFFFDb");
  EXPECT_EQ(Utf16ToUtf8({high_last, 2}), "a\uFFFD");
  EXPECT_EQ(Utf16ToUtf8({two_highs, 3}), "\uFFFD😀");
}

TEST(Utf16, WritesMalformedBytesAsReplacements) {
  EXPECT_EQ(Utf8ToUtf16("a\xF1z"), u"a\uFFFDz");
  EXPECT_EQ(Utf8ToUtf16("\xE2\x82"), u"\uFFFD\uFFFD");
}

TEST(Utf8Length, CountsCharacters) {
  EXPECT_EQ(Utf8Length(""), 0U);
  EXPECT_EQ(Utf8Length("añ€😀"), 4U);
}

TEST(Utf8Length, CountsMalformedBytesOneByOne) { EXPECT_EQ(Utf8Length("a\xF1\xFFz"), 4U); }

TEST(Utf8Prefix, CutsBetweenCharacters) {
  EXPECT_EQ(Utf8Prefix("añ€😀", 0), "");
  EXPECT_EQ(Utf8Prefix("añ€😀", 2), "añ");
  EXPECT_EQ(Utf8Prefix("añ€😀", 3), "añ€");
  EXPECT_EQ(Utf8Prefix("añ€😀", 9), "añ€😀");
}

}  // namespace
}  // namespace ambrelio
