#include <gtest/gtest.h>

#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

class TextFunctions : public testing::Test {
 protected:
  FunctionDb db_;
};

TEST_F(TextFunctions, LeftCountsCharacters) {
  EXPECT_EQ(db_.Text("jet_left('ñandú', 2)"), "ña");
  EXPECT_EQ(db_.Text("jet_left('ab', 9)"), "ab");
  EXPECT_EQ(db_.Text("jet_left('ab', 0)"), "");
}

TEST_F(TextFunctions, RightCountsCharacters) {
  EXPECT_EQ(db_.Text("jet_right('ñandú', 2)"), "dú");
  EXPECT_EQ(db_.Text("jet_right('ab', 9)"), "ab");
  EXPECT_EQ(db_.Text("jet_right('ab', 0)"), "");
}

TEST_F(TextFunctions, MidStartsAtOne) {
  EXPECT_EQ(db_.Text("jet_mid('ñandú', 2)"), "andú");
  EXPECT_EQ(db_.Text("jet_mid('ñandú', 2, 3)"), "and");
  EXPECT_EQ(db_.Text("jet_mid('ab', 3)"), "");
  EXPECT_EQ(db_.Text("jet_mid('ab', 1, 99)"), "ab");
}

TEST_F(TextFunctions, RefusePlacesAndCountsThatAreNone) {
  EXPECT_EQ(db_.ErrorOf("jet_left('ab', -1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_right('ab', -1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_mid('ab', 0)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_mid('ab', 1, -1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_space(-1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_instr(0, 'ab', 'a')"), 5);
}

TEST_F(TextFunctions, LenCountsCharacters) {
  EXPECT_EQ(db_.Eval("jet_len('ñandú ')"), "6");
  EXPECT_EQ(db_.Eval("jet_len('')"), "0");
  EXPECT_EQ(db_.Eval("jet_len(12.5)"), "4");
}

TEST_F(TextFunctions, TrimTakesBlanksOnly) {
  EXPECT_EQ(db_.Text("jet_trim('  a b ')"), "a b");
  EXPECT_EQ(db_.Text("jet_ltrim('  a ')"), "a ");
  EXPECT_EQ(db_.Text("jet_rtrim('  a ')"), "  a");
  EXPECT_EQ(db_.Text("jet_trim('   ')"), "");
  EXPECT_EQ(db_.Text("jet_trim(char(9) || 'a')"), "\ta");
}

TEST_F(TextFunctions, CaseKnowsAccentedLetters) {
  EXPECT_EQ(db_.Text("jet_ucase('ñandú')"), "ÑANDÚ");
  EXPECT_EQ(db_.Text("jet_lcase('ÁRBOL')"), "árbol");
  EXPECT_EQ(db_.Text("jet_ucase('straße')"), "STRAßE");
}

TEST_F(TextFunctions, InStrCountsPlacesFromOne) {
  EXPECT_EQ(db_.Eval("jet_instr('ñandú', 'd')"), "4");
  EXPECT_EQ(db_.Eval("jet_instr('ñandú', 'x')"), "0");
}

TEST_F(TextFunctions, InStrIgnoresCase) {
  EXPECT_EQ(db_.Eval("jet_instr('aceite ÑAME', 'ñame')"), "8");
}

TEST_F(TextFunctions, InStrFindsBehindItsStart) {
  EXPECT_EQ(db_.Eval("jet_instr(2, 'añaña', 'ña')"), "2");
  EXPECT_EQ(db_.Eval("jet_instr(3, 'añaña', 'ña')"), "4");
  EXPECT_EQ(db_.Eval("jet_instr(6, 'añaña', 'ña')"), "0");
}

TEST_F(TextFunctions, InStrMindsCaseWhenTold) {
  EXPECT_EQ(db_.Eval("jet_instr(1, 'aA', 'A', 0)"), "2");
  EXPECT_EQ(db_.Eval("jet_instr(1, 'aA', 'A', 1)"), "1");
}

TEST_F(TextFunctions, InStrFindsNothingWhereItStarts) {
  EXPECT_EQ(db_.Eval("jet_instr('abc', '')"), "1");
  EXPECT_EQ(db_.Eval("jet_instr(2, 'abc', '')"), "2");
  EXPECT_EQ(db_.Eval("jet_instr('', '')"), "0");
}

TEST_F(TextFunctions, InStrKeepsPlacesWhenCaseChangesTheBytes) {
  // A stray byte and letters of different length in front.
  EXPECT_EQ(db_.Eval("jet_instr('ŸŸx', 'X')"), "3");
}

TEST_F(TextFunctions, ReplaceMindsCase) {
  EXPECT_EQ(db_.Text("jet_replace('a-b-A', 'a', 'xx')"), "xx-b-A");
  EXPECT_EQ(db_.Text("jet_replace('aaa', 'aa', 'b')"), "ba");
  EXPECT_EQ(db_.Text("jet_replace('abc', '', 'x')"), "abc");
  EXPECT_EQ(db_.Text("jet_replace('abc', 'b', '')"), "ac");
}

TEST_F(TextFunctions, RepeatCharacters) {
  EXPECT_EQ(db_.Text("jet_space(3)"), "   ");
  EXPECT_EQ(db_.Text("jet_string(3, 'ñb')"), "ñññ");
  EXPECT_EQ(db_.Text("jet_string(2, 65)"), "AA");
  EXPECT_EQ(db_.ErrorOf("jet_string(2, '')"), 5);
}

TEST_F(TextFunctions, RefuseToRepeatBeyondTheLimitOfText) {
  EXPECT_THROW(db_.Eval("jet_space(2147483647)"), std::runtime_error);
}

TEST_F(TextFunctions, ChrAndAscUseWindowsCodes) {
  EXPECT_EQ(db_.Text("jet_chr(241)"), "ñ");
  EXPECT_EQ(db_.Text("jet_chr(128)"), "€");
  EXPECT_EQ(db_.Eval("jet_asc('ñu')"), "241");
  EXPECT_EQ(db_.Eval("jet_asc('€')"), "128");
  EXPECT_EQ(db_.ErrorOf("jet_chr(256)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_chr(-1)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_asc('')"), 5);
}

TEST_F(TextFunctions, GiveNullForNull) {
  for (const char* call :
       {"left(null, 1)", "right('a', null)", "mid(null, 1)", "len(null)", "trim(null)",
        "ucase(null)", "instr('a', null)", "replace('a', null, 'b')", "space(null)",
        "string(2, null)", "chr(null)", "asc(null)"}) {
    EXPECT_EQ(db_.Eval(std::string("jet_") + call), "NULL") << call;
  }
}

TEST_F(TextFunctions, TakeTextThatIsNoUtf8) {
  EXPECT_EQ(db_.Eval("jet_len(cast(x'ff61' as text))"), "2");
  EXPECT_EQ(db_.Eval("hex(jet_ucase(cast(x'ff61' as text)))"), "'FF41'");
  EXPECT_EQ(db_.Eval("hex(jet_left(cast(x'ff61' as text), 1))"), "'FF'");
}

}  // namespace
}  // namespace ambrelio::embedded
