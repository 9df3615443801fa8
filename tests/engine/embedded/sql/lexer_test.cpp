#include "ambrelio/engine/embedded/sql/lexer.h"

#include <gtest/gtest.h>

#include "ambrelio/value/automation_error.h"

namespace ambrelio::embedded::sql {
namespace {

Variant Literal(std::string_view text) {
  const std::vector<Token> tokens = Tokenize(text);
  EXPECT_EQ(tokens.size(), 2u) << text;
  EXPECT_EQ(tokens.front().kind, TokenKind::kLiteral) << text;
  return tokens.front().value;
}

std::string Date(std::string_view text) { return Literal(text).as<OleDate>().Iso(); }

AutomationError LexerErrorOf(std::string_view text) {
  try {
    Tokenize(text);
  } catch (const AutomationError& error) {
    return error;
  }
  return AutomationError(0, "", "");
}

TEST(Lexer, GivesOnlyTheEndForAnEmptyText) {
  const std::vector<Token> tokens = Tokenize(" \t\r\n ");
  ASSERT_EQ(tokens.size(), 1u);
  EXPECT_EQ(tokens[0].kind, TokenKind::kEnd);
  EXPECT_EQ(tokens[0].offset, 5);
}

TEST(Lexer, KeepsTheSpellingAndTheOffsetOfWords) {
  const std::vector<Token> tokens = Tokenize("Select  a_1 ");
  ASSERT_EQ(tokens.size(), 3u);
  EXPECT_EQ(tokens[0].kind, TokenKind::kWord);
  EXPECT_EQ(tokens[0].text, "Select");
  EXPECT_EQ(tokens[1].text, "a_1");
  EXPECT_EQ(tokens[1].offset, 8);
}

TEST(Lexer, AllowsLettersBeyondAsciiInWords) {
  const std::vector<Token> tokens = Tokenize("año=Ñu");
  ASSERT_EQ(tokens.size(), 4u);
  EXPECT_EQ(tokens[0].text, "año");
  EXPECT_EQ(tokens[0].kind, TokenKind::kWord);
  EXPECT_EQ(tokens[2].text, "Ñu");
}

TEST(Lexer, TakesTheQuotesOffNames) {
  const std::vector<Token> tokens = Tokenize("[order by]`a b`");
  ASSERT_EQ(tokens.size(), 3u);
  EXPECT_EQ(tokens[0].kind, TokenKind::kName);
  EXPECT_EQ(tokens[0].text, "order by");
  EXPECT_EQ(tokens[1].kind, TokenKind::kName);
  EXPECT_EQ(tokens[1].text, "a b");
}

TEST(Lexer, TakesTheLongestSymbol) {
  std::string seen;
  for (const Token& token : Tokenize("<=>=<><>=.,;!()*+-/\\^&")) seen += token.text + " ";
  EXPECT_EQ(seen, "<= >= <> <> = . , ; ! ( ) * + - / \\ ^ &  ");
}

TEST(Lexer, ReadsWholeNumbersThatFitAsLong) {
  EXPECT_EQ(Literal("0"), Variant(0));
  EXPECT_EQ(Literal("2147483647"), Variant(2147483647));
}

TEST(Lexer, ReadsWholeNumbersBeyondLongAsDouble) {
  EXPECT_EQ(Literal("2147483648"), Variant(2147483648.0));
  EXPECT_EQ(Literal("123456789012345678901234567890"), Variant(123456789012345678901234567890.0));
}

TEST(Lexer, ReadsDecimalsAndExponentsAsDouble) {
  EXPECT_EQ(Literal("0.25000000"), Variant(0.25));
  EXPECT_EQ(Literal(".5"), Variant(0.5));
  EXPECT_EQ(Literal("1."), Variant(1.0));
  EXPECT_EQ(Literal("1E-05"), Variant(0.00001));
  EXPECT_EQ(Literal("2e3"), Variant(2000.0));
  EXPECT_EQ(Literal("2.5E+3"), Variant(2500.0));
}

TEST(Lexer, EndsANumberBeforeAnythingThatIsNoExponent) {
  const std::vector<Token> tokens = Tokenize("1-2 3e x");
  ASSERT_EQ(tokens.size(), 7u);
  EXPECT_EQ(tokens[0].value, Variant(1));
  EXPECT_EQ(tokens[1].text, "-");
  EXPECT_EQ(tokens[2].value, Variant(2));
  EXPECT_EQ(tokens[3].value, Variant(3));
  EXPECT_EQ(tokens[4].text, "e");
}

TEST(Lexer, RefusesANumberBeyondDouble) { EXPECT_EQ(LexerErrorOf("1E400").number(), 3075); }

TEST(Lexer, ReadsTextInEitherQuote) {
  EXPECT_EQ(Literal("'abc'"), Variant("abc"));
  EXPECT_EQ(Literal("\"abc\""), Variant("abc"));
  EXPECT_EQ(Literal("''"), Variant(""));
}

TEST(Lexer, MakesDoubledQuotesSingle) {
  EXPECT_EQ(Literal("'it''s'"), Variant("it's"));
  EXPECT_EQ(Literal("''''"), Variant("'"));
  EXPECT_EQ(Literal("\"say \"\"hi\"\"\""), Variant("say \"hi\""));
}

TEST(Lexer, KeepsTheOtherQuoteAndBarsInText) {
  EXPECT_EQ(Literal("'a \"\" b'"), Variant("a \"\" b"));
  EXPECT_EQ(Literal("\"it''s\""), Variant("it''s"));
  EXPECT_EQ(Literal("'a|b'"), Variant("a|b"));
}

TEST(Lexer, KeepsAnyBytesInText) {
  EXPECT_EQ(Literal(std::string("'\xFF\xC3\n\x01'")), Variant(std::string("\xFF\xC3\n\x01")));
  EXPECT_EQ(Literal(std::string_view("'a\0b'", 5)), Variant(std::string("a\0b", 3)));
}

TEST(DateLiteral, HasTheMonthFirst) {
  EXPECT_EQ(Date("#3/5/2003 8:4:9#"), "2003-03-05 08:04:09");
  EXPECT_EQ(Date("#03/05/2003 08:04:09#"), "2003-03-05 08:04:09");
}

TEST(DateLiteral, SwapsMonthAndDayWhereTheMonthIsImpossible) {
  EXPECT_EQ(Date("#13/5/2003#"), "2003-05-13 00:00:00");
  EXPECT_EQ(Date("#12/5/2003#"), "2003-12-05 00:00:00");
}

TEST(DateLiteral, TakesTheYearFirstWhenItCanBeNothingElse) {
  EXPECT_EQ(Date("#2003-03-05#"), "2003-03-05 00:00:00");
  EXPECT_EQ(Date("#2003-03-05 17:30:00#"), "2003-03-05 17:30:00");
  EXPECT_EQ(Date("#2003/3/5#"), "2003-03-05 00:00:00");
}

TEST(DateLiteral, AllowsHyphensAndBlanksAroundTheParts) {
  EXPECT_EQ(Date("#3-5-2003#"), "2003-03-05 00:00:00");
  EXPECT_EQ(Date("#  3 / 5 / 2003   8 : 4  #"), "2003-03-05 08:04:00");
}

TEST(DateLiteral, PlacesTwoDigitYearsBetween1930And2029) {
  EXPECT_EQ(Date("#1/2/29#"), "2029-01-02 00:00:00");
  EXPECT_EQ(Date("#1/2/30#"), "1930-01-02 00:00:00");
}

TEST(DateLiteral, ReadsATimeAloneOnTheZeroDate) {
  EXPECT_EQ(Literal("#6:0#"), Variant(OleDate::FromDays(0.25)));
  EXPECT_EQ(Literal("#12/30/1899 0:0:0#"), Variant(OleDate()));
}

TEST(DateLiteral, ReadsHalfDays) {
  EXPECT_EQ(Date("#1/2/2003 1:30 PM#"), "2003-01-02 13:30:00");
  EXPECT_EQ(Date("#1/2/2003 12:30:15am#"), "2003-01-02 00:30:15");
  EXPECT_EQ(Date("#1/2/2003 12 pm#"), "2003-01-02 12:00:00");
}

TEST(DateLiteral, KnowsTheLimitsOfTheCalendar) {
  EXPECT_EQ(Date("#1/1/100#"), "0100-01-01 00:00:00");
  EXPECT_EQ(Date("#12/31/9999 23:59:59#"), "9999-12-31 23:59:59");
  EXPECT_EQ(Date("#2/29/2004#"), "2004-02-29 00:00:00");
}

TEST(DateLiteral, RefusesWhatIsNoDate) {
  for (const char* text :
       {"##",         "# #",          "#hello#",    "#2/29/2003#", "#13/13/2003#",
        "#0/1/2003#", "#1/2#",        "#1/2/3/4#",  "#1/2/10000#", "#24:00#",
        "#1:60#",     "#1:2:60#",     "#5#",        "#13 pm#",     "#0:30 am#",
        "#1:2 xm#",   "#1:2 pm x#",   "#1/2-2003#", "#-1/2/2003#", "#1/2/99999999999#",
        "#ORG#",      "#1/2/2003 8:#"}) {
    EXPECT_EQ(LexerErrorOf(text).number(), 3075) << text;
  }
}

TEST(Lexer, RefusesWhatIsNotClosed) {
  for (const char* text : {"'abc", "'abc''", "\"abc'", "[abc", "`abc", "#1/2/2003", "a '"}) {
    EXPECT_EQ(LexerErrorOf(text).number(), 3075) << text;
  }
}

TEST(Lexer, RefusesAnEmptyQuotedName) {
  EXPECT_EQ(LexerErrorOf("[]").number(), 3075);
  EXPECT_EQ(LexerErrorOf("``").number(), 3075);
}

TEST(Lexer, RefusesCharactersThatBeginNothing) {
  for (const char* text : {"?", "@a", "$", "{", "}", "|", "~", "]", ":", "%", "\x01"}) {
    EXPECT_EQ(LexerErrorOf(text).number(), 3075) << text;
  }
  EXPECT_EQ(LexerErrorOf(std::string_view("a\0b", 3)).number(), 3075);
}

TEST(Lexer, TellsWhereTheFaultIs) {
  const AutomationError error = LexerErrorOf("select a from t where b = 'unclosed");
  EXPECT_EQ(error.source(), "DAO.Database");
  EXPECT_NE(error.description().find("'unclosed"), std::string::npos) << error.description();
}

TEST(Lexer, CutsTheTextOfAnErrorAtTheEndOfACharacter) {
  std::string text = "@ ";
  for (int i = 0; i < 40; ++i) text += "ñ";
  const std::string description = LexerErrorOf(text).description();
  EXPECT_NE(description.find("ñ"), std::string::npos);
  EXPECT_EQ(description.find("\xC3'"), std::string::npos);
}

TEST(Lexer, AcceptsTheLongestStatementAndNoLonger) {
  const std::string longest = "'" + std::string(64 * 1024 - 2, 'x') + "'";
  EXPECT_EQ(LexerErrorOf(longest).number(), 0);
  EXPECT_EQ(LexerErrorOf(longest + " ").number(), 3075);
}

TEST(Lexer, CountsCharactersAndNotBytes) {
  std::string text = "'";
  for (int i = 0; i < 40000; ++i) text += "ñ";
  EXPECT_EQ(LexerErrorOf(text + "'").number(), 0);
}

}  // namespace
}  // namespace ambrelio::embedded::sql
