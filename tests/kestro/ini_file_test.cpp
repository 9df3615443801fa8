#include "ambrelio/kestro/ini_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "ambrelio/platform/atomic_file.h"
#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::kestro {
namespace {

using test::ErrorOf;

std::string Utf16Little(std::u16string_view text) {
  std::string bytes;
  for (char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string Utf16Big(std::u16string_view text) {
  std::string bytes = Utf16Little(text);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

class IniFileTest : public testing::Test {
 protected:
  void Given(std::string_view bytes) const { WriteFileAtomically(path_, bytes); }
  std::string Bytes() const { return ReadWholeFile(path_).value_or("no file"); }
  std::string Read(std::string_view key, const char* section = "GENERAL") const {
    return IniFile(path_, section).Read(key);
  }
  void Write(std::string_view key, std::string_view value, const char* section = "GENERAL") const {
    IniFile(path_, section).Write(key, value);
  }

  test::TempFolder folder_;
  std::string path_ = folder_.File("Vardex.ini");
};

using IniFileReadTest = IniFileTest;
using IniFileWriteTest = IniFileTest;

TEST_F(IniFileReadTest, GivesTheValueOfAKeyInItsSection) {
  Given("[OTHER]\r\nMaxTolvas=9\r\n[GENERAL]\r\nMaxTolvas=4,2,12\r\n[SENSORES]\r\nTimeOut=5\r\n");
  EXPECT_EQ(Read("MaxTolvas"), "4,2,12");
  EXPECT_EQ(Read("TimeOut", "SENSORES"), "5");
}

TEST_F(IniFileReadTest, IsEmptyWhenFileSectionOrKeyIsMissing) {
  EXPECT_EQ(Read("MaxTolvas"), "");
  Given("[GENERAL]\r\nBaseDatos=\r\n");
  EXPECT_EQ(Read("MaxTolvas"), "");
  EXPECT_EQ(Read("BaseDatos"), "");
  EXPECT_EQ(Read("BaseDatos", "SENSORES"), "");
}

TEST_F(IniFileReadTest, IsEmptyForAFolder) {
  EXPECT_EQ(IniFile(folder_.path(), "GENERAL").Read("MaxTolvas"), "");
}

TEST_F(IniFileReadTest, ComparesNamesWithoutRegardToCase) {
  Given("[General]\r\nmaxtolvas=4\r\nTAMAÑO=7\r\n");
  EXPECT_EQ(Read("MaxTolvas"), "4");
  EXPECT_EQ(Read("Tamaño"), "7");
}

TEST_F(IniFileReadTest, PassesOverBlanksAroundNamesAndValues) {
  Given(" [ GENERAL ] \r\n\t MaxTolvas \t= 4,2 \t\r\n");
  EXPECT_EQ(Read("MaxTolvas"), "4,2");
}

TEST_F(IniFileReadTest, KeepsFurtherEqualSignsInTheValue) {
  Given("[GENERAL]\nConnect=;pwd=x\n");
  EXPECT_EQ(Read("Connect"), ";pwd=x");
}

TEST_F(IniFileReadTest, TakesOnePairOfQuotationMarksOff) {
  Given("[GENERAL]\na=\" x \"\nb='y'\nc=\"\"z\"\"\nd=\"open\ne=\"\n");
  EXPECT_EQ(Read("a"), " x ");
  EXPECT_EQ(Read("b"), "y");
  EXPECT_EQ(Read("c"), "\"z\"");
  EXPECT_EQ(Read("d"), "\"open");
  EXPECT_EQ(Read("e"), "\"");
}

TEST_F(IniFileReadTest, PassesOverCommentsAndOtherLines) {
  Given("[GENERAL]\n;MaxTolvas=1\n ; MaxTolvas=2\nMaxTolvas\n[broken\nMaxTolvas=3\n");
  EXPECT_EQ(Read("MaxTolvas"), "3");
}

TEST_F(IniFileReadTest, TakesTheFirstOfEqualKeys) {
  Given("[GENERAL]\na=1\nA=2\n[SENSORES]\n[GENERAL]\na=3\nb=4\n");
  EXPECT_EQ(Read("a"), "1");
  EXPECT_EQ(Read("b"), "4");
}

TEST_F(IniFileReadTest, ReadsLinesBeforeTheFirstSectionUnderNoName) {
  Given("a=1\n[GENERAL]\na=2\n");
  EXPECT_EQ(Read("a", ""), "1");
  EXPECT_EQ(Read("a"), "2");
}

TEST_F(IniFileReadTest, KnowsEveryLineEnd) {
  Given("[GENERAL]\ra=1\rb=2\n\rc=3\r\nd=4");
  EXPECT_EQ(Read("a"), "1");
  EXPECT_EQ(Read("b"), "2");
  EXPECT_EQ(Read("c"), "3");
  EXPECT_EQ(Read("d"), "4");
}

TEST_F(IniFileReadTest, ReadsWindows1252) {
  Given("[GENERAL]\r\nNetPath=C:\\Almaz\xE1ra \x80\r\n");
  EXPECT_EQ(Read("NetPath"), "C:\\Almazára €");
}

TEST_F(IniFileReadTest, ReadsUtf8WithAndWithoutMark) {
  Given("[GENERAL]\r\nNetPath=Almazára\r\n");
  EXPECT_EQ(Read("NetPath"), "Almazára");
  Given("\xEF\xBB\xBF[GENERAL]\r\nNetPath=Almazára\r\n");
  EXPECT_EQ(Read("NetPath"), "Almazára");
}

TEST_F(IniFileReadTest, ReadsUtf16OfBothByteOrders) {
  Given(Utf16Little(u"\uFEFF[GENERAL]\r\nNetPath=Almazára 😀\r\n"));
  EXPECT_EQ(Read("NetPath"), "Almazára 😀");
  Given(Utf16Big(u"\uFEFF[GENERAL]\r\nNetPath=Almazára 😀\r\n"));
  EXPECT_EQ(Read("NetPath"), "Almazára 😀");
}

TEST_F(IniFileReadTest, TellsALineEndFromACharacterThatHoldsItsByte) {
  Given(Utf16Little(u"\uFEFF[GENERAL]\na=\u0A0D\u0D0A\u3D0A\n"));
  EXPECT_EQ(Read("a"), "\u0A0D\u0D0A\u3D0A");
}

TEST_F(IniFileReadTest, OpensTheFileAnewEachTime) {
  IniFile file(path_, "GENERAL");
  Given("[GENERAL]\na=1\n");
  EXPECT_EQ(file.Read("a"), "1");
  Given("[GENERAL]\na=2\n");
  EXPECT_EQ(file.Read("a"), "2");
}

TEST_F(IniFileReadTest, LooksWhereItWasLastSet) {
  IniFile file;
  EXPECT_EQ(file.Read("a"), "");
  Given("[GENERAL]\na=1\n[SENSORES]\na=2\n");
  file.SetFile(path_);
  file.SetSection("GENERAL");
  EXPECT_EQ(file.Read("a"), "1");
  file.SetSection("SENSORES");
  EXPECT_EQ(file.Read("a"), "2");
}

TEST_F(IniFileReadTest, SurvivesNulBytesAndHalfACharacter) {
  Given(
      std::string("[GENERAL]\na=1\0"
                  "2\n\0\nb=3\n",
                  22));
  EXPECT_EQ(Read("b"), "3");
  Given(Utf16Little(u"\uFEFF[GENERAL]\na=1") + "x");
  EXPECT_EQ(Read("a"), "1");
  Given("\xFF\xFE");
  EXPECT_EQ(Read("a"), "");
  Given("\xFF\xFE[");
  EXPECT_EQ(Read("a"), "");
}

TEST_F(IniFileReadTest, SurvivesALargeFileOfJunk) {
  std::string junk(size_t{8} << 20, '\0');
  uint32_t state = 1;
  for (char& c : junk) {
    state = state * 1664525 + 1013904223;
    c = static_cast<char>(state >> 24);
  }
  Given(junk);
  EXPECT_EQ(Read("MaxTolvas"), "");
}

TEST_F(IniFileWriteTest, ChangesOnlyTheValuesLine) {
  Given("; top\r\n[General]\r\n  maxTolvas\t =  4,2  \r\n\r\n; next\r\n[SENSORES]\r\nx = 1\r\n");
  Write("MaxTolvas", "6,3,9");
  EXPECT_EQ(
      Bytes(),
      "; top\r\n[General]\r\n  maxTolvas\t =  6,3,9\r\n\r\n; next\r\n[SENSORES]\r\nx = 1\r\n");
}

TEST_F(IniFileWriteTest, ChangesAnEmptyValue) {
  Given("[GENERAL]\na=\nb=2");
  Write("a", "1");
  EXPECT_EQ(Bytes(), "[GENERAL]\na=1\nb=2");
}

TEST_F(IniFileWriteTest, ChangesTheLastLineWithoutALineEnd) {
  Given("[GENERAL]\na=1");
  Write("a", "");
  EXPECT_EQ(Bytes(), "[GENERAL]\na=");
}

TEST_F(IniFileWriteTest, ChangesTheKeyThatCounts) {
  Given("[GENERAL]\na=1\na=2\n");
  Write("a", "3");
  EXPECT_EQ(Bytes(), "[GENERAL]\na=3\na=2\n");
}

TEST_F(IniFileWriteTest, AddsAKeyBeforeTheBlankLinesOfItsSection) {
  Given("[GENERAL]\r\na=1\r\n\r\n \r\n[SENSORES]\r\n");
  Write("b", "2");
  EXPECT_EQ(Bytes(), "[GENERAL]\r\na=1\r\nb=2\r\n\r\n \r\n[SENSORES]\r\n");
}

TEST_F(IniFileWriteTest, AddsAKeyToAnEmptySection) {
  Given("[GENERAL]\n[SENSORES]\n");
  Write("b", "2");
  EXPECT_EQ(Bytes(), "[GENERAL]\nb=2\n[SENSORES]\n");
}

TEST_F(IniFileWriteTest, AddsAKeyToTheFirstOfEqualSections) {
  Given("[GENERAL]\na=1\n[X]\n[GENERAL]\nc=3\n");
  Write("b", "2");
  EXPECT_EQ(Bytes(), "[GENERAL]\na=1\nb=2\n[X]\n[GENERAL]\nc=3\n");
}

TEST_F(IniFileWriteTest, EndsTheLastLineBeforeItAddsOne) {
  Given("[GENERAL]\na=1");
  Write("b", "2");
  EXPECT_EQ(Bytes(), "[GENERAL]\na=1\nb=2\n");
}

TEST_F(IniFileWriteTest, AddsALineBeforeTheFirstSection) {
  Given("[GENERAL]\na=1\n");
  Write("b", "2", "");
  EXPECT_EQ(Bytes(), "b=2\n[GENERAL]\na=1\n");
}

TEST_F(IniFileWriteTest, AddsAMissingSection) {
  Given("[GENERAL]\r\na=1");
  Write("TimeOut", "5", "SENSORES");
  EXPECT_EQ(Bytes(), "[GENERAL]\r\na=1\r\n\r\n[SENSORES]\r\nTimeOut=5\r\n");
}

TEST_F(IniFileWriteTest, MakesAMissingFile) {
  Write("TimeOut", "5", "SENSORES");
  EXPECT_EQ(Bytes(), "[SENSORES]\r\nTimeOut=5\r\n");
}

TEST_F(IniFileWriteTest, FillsAnEmptyFile) {
  Given("");
  Write("a", "1");
  EXPECT_EQ(Bytes(), "[GENERAL]\r\na=1\r\n");
}

TEST_F(IniFileWriteTest, KeepsTheLineEndsOfTheFile) {
  Given("[GENERAL]\ra=1\r");
  Write("b", "2");
  Write("c", "3", "SENSORES");
  EXPECT_EQ(Bytes(), "[GENERAL]\ra=1\rb=2\r\r[SENSORES]\rc=3\r");
}

TEST_F(IniFileWriteTest, KeepsWindows1252) {
  Given("[GENERAL]\r\na=\xF1\r\nb=1\r\n");
  Write("b", "ñ€");
  EXPECT_EQ(Bytes(), "[GENERAL]\r\na=\xF1\r\nb=\xF1\x80\r\n");
}

TEST_F(IniFileWriteTest, KeepsUtf8AndItsMark) {
  Given("\xEF\xBB\xBF[GENERAL]\r\na=1\r\n");
  Write("a", "ñ");
  Write("b", "Ω", "");
  EXPECT_EQ(Bytes(),
            "\xEF\xBB\xBF"
            "b=Ω\r\n[GENERAL]\r\na=ñ\r\n");
}

TEST_F(IniFileWriteTest, KeepsUtf16OfBothByteOrders) {
  Given(Utf16Little(u"\uFEFF[GENERAL]\r\na=1\r\n"));
  Write("a", "ñ😀");
  Write("b", "2");
  EXPECT_EQ(Bytes(), Utf16Little(u"\uFEFF[GENERAL]\r\na=ñ😀\r\nb=2\r\n"));
  Given(Utf16Big(u"\uFEFF[GENERAL]\na=1"));
  Write("b", "2");
  EXPECT_EQ(Bytes(), Utf16Big(u"\uFEFF[GENERAL]\na=1\nb=2\n"));
}

TEST_F(IniFileWriteTest, RefusesTextThatTheEncodingCannotHold) {
  const std::string bytes = "[GENERAL]\r\na=\xF1\r\nb=1\r\n";
  Given(bytes);
  try {
    Write("b", "Ω");
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
    EXPECT_NE(error.description().find(path_), std::string::npos);
    EXPECT_NE(error.description().find("[GENERAL] b"), std::string::npos);
  }
  EXPECT_EQ(Bytes(), bytes);
}

TEST_F(IniFileWriteTest, RefusesTextThatWouldReadBackInAnotherEncoding) {
  Given("[GENERAL]\r\na=\xF1\r\n");
  EXPECT_EQ(ErrorOf([&] { Write("a", "Ã±"); }), 5);  // its bytes are the UTF-8 of another letter
  EXPECT_EQ(Bytes(), "[GENERAL]\r\na=\xF1\r\n");
}

TEST_F(IniFileWriteTest, RefusesMalformedText) {
  Given("[GENERAL]\r\na=1\r\n");
  EXPECT_EQ(ErrorOf([&] { Write("a", "\xF1"); }), 5);
  EXPECT_EQ(Bytes(), "[GENERAL]\r\na=1\r\n");
}

TEST_F(IniFileWriteTest, ReadsBackExactlyWhatWasWritten) {
  for (const char* value : {"", "plain", " blanks ", "\ttab", "\"quoted\"", "'", "\"", "''",
                            "a=b;c[d]", ";x", "[x]", "\" \""}) {
    Write("a", value);
    EXPECT_EQ(Read("a"), value);
  }
}

TEST_F(IniFileWriteTest, RefusesValuesOfMoreThanOneLine) {
  Given("[GENERAL]\na=1\n");
  for (const std::string& value : {std::string("x\ny"), std::string("x\r"), std::string("\0", 1)}) {
    EXPECT_EQ(ErrorOf([&] { Write("a", value); }), 5);
  }
  EXPECT_EQ(Bytes(), "[GENERAL]\na=1\n");
}

TEST_F(IniFileWriteTest, RefusesNamesThatWouldReadAsSomethingElse) {
  for (const char* key : {"", "a=b", ";a", "[a", " a", "a\nb"}) {
    EXPECT_EQ(ErrorOf([&] { Write(key, "1"); }), 5) << key;
  }
  for (const char* section : {"a]b", " a", "a\nb"}) {
    EXPECT_EQ(ErrorOf([&] { Write("a", "1", section); }), 5) << section;
  }
  EXPECT_EQ(Bytes(), "no file");
}

TEST_F(IniFileWriteTest, WritesThroughALink) {
  Given("[GENERAL]\na=1\n");
  std::string link = folder_.File("link.ini");
  std::error_code refused;
  std::filesystem::create_symlink(path_, link, refused);
  if (refused) GTEST_SKIP() << "no links here: " << refused.message();
  IniFile(link, "GENERAL").Write("a", "2");
  EXPECT_EQ(Bytes(), "[GENERAL]\na=2\n");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST_F(IniFileWriteTest, RaisesAnAccessErrorWhenTheFileCannotBeWritten) {
  EXPECT_EQ(ErrorOf([&] { IniFile(folder_.path(), "GENERAL").Write("a", "1"); }), 75);
  EXPECT_EQ(ErrorOf([&] { IniFile(folder_.File("no/a.ini"), "GENERAL").Write("a", "1"); }), 75);
  EXPECT_EQ(ErrorOf([&] { IniFile("", "GENERAL").Write("a", "1"); }), 75);
}

}  // namespace
}  // namespace ambrelio::kestro
