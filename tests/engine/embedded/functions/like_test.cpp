#include <gtest/gtest.h>

#include <string>

#include "ambrelio/engine/embedded/functions/functions.h"

namespace ambrelio::embedded {
namespace {

TEST(MatchesLike, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(MatchesLike("Tolva", "tOLVA"));
  EXPECT_TRUE(MatchesLike("JAÉN", "jaén"));
  EXPECT_FALSE(MatchesLike("Tolva", "Tolvas"));
}

TEST(MatchesLike, MindsAccents) { EXPECT_FALSE(MatchesLike("jaén", "jaen")); }

TEST(MatchesLike, MindsTrailingBlanks) {
  EXPECT_FALSE(MatchesLike("x ", "x"));
  EXPECT_FALSE(MatchesLike("x", "x "));
}

TEST(MatchesLike, TakesOneCharacterForAQuestionMark) {
  EXPECT_TRUE(MatchesLike("año", "a?o"));
  EXPECT_FALSE(MatchesLike("ao", "a?o"));
  EXPECT_FALSE(MatchesLike("", "?"));
}

TEST(MatchesLike, TakesAnyCharactersForAStar) {
  EXPECT_TRUE(MatchesLike("", "*"));
  EXPECT_TRUE(MatchesLike("aceite de oliva", "a*oliva"));
  EXPECT_TRUE(MatchesLike("ab", "a**b"));
  EXPECT_FALSE(MatchesLike("aceite", "*x*"));
}

TEST(MatchesLike, TriesLaterPlacesForAStar) {
  EXPECT_TRUE(MatchesLike("abcabd", "*abd"));
  EXPECT_TRUE(MatchesLike("aXbXc", "a*b*c"));
  EXPECT_FALSE(MatchesLike("abcab", "*abd"));
}

TEST(MatchesLike, StaysQuickWithManyStars) {
  EXPECT_FALSE(MatchesLike(std::string(2000, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*b"));
}

TEST(MatchesLike, TakesADigitForAHash) {
  EXPECT_TRUE(MatchesLike("A7", "a#"));
  EXPECT_FALSE(MatchesLike("Ab", "a#"));
}

TEST(MatchesLike, TakesACharacterOfAList) {
  EXPECT_TRUE(MatchesLike("b1", "[abc]1"));
  EXPECT_TRUE(MatchesLike("B1", "[abc]1"));
  EXPECT_FALSE(MatchesLike("d1", "[abc]1"));
}

TEST(MatchesLike, TakesACharacterOfARange) {
  EXPECT_TRUE(MatchesLike("M", "[a-z]"));
  EXPECT_TRUE(MatchesLike("5", "[0-9x]"));
  EXPECT_TRUE(MatchesLike("x", "[0-9x]"));
  EXPECT_FALSE(MatchesLike("y", "[0-9x]"));
}

TEST(MatchesLike, CountsAccentedLettersIntoARange) { EXPECT_TRUE(MatchesLike("ñ", "[a-z]")); }

TEST(MatchesLike, FindsNothingInARangeBackwards) { EXPECT_FALSE(MatchesLike("m", "[z-a]")); }

TEST(MatchesLike, TakesAnyOtherCharacterForANegatedList) {
  EXPECT_TRUE(MatchesLike("d", "[!abc]"));
  EXPECT_FALSE(MatchesLike("B", "[!abc]"));
  EXPECT_FALSE(MatchesLike("", "[!abc]"));
  EXPECT_FALSE(MatchesLike("m", "[!a-z]"));
}

TEST(MatchesLike, TakesSpecialCharactersInBracketsForThemselves) {
  EXPECT_TRUE(MatchesLike("5*3?#[", "5[*]3[?][#][[]"));
  EXPECT_FALSE(MatchesLike("5x3", "5[*]3"));
  EXPECT_TRUE(MatchesLike("{tva}12", "[{]tva[}]*"));
}

TEST(MatchesLike, TakesAHyphenAtEitherEndOfAListForItself) {
  EXPECT_TRUE(MatchesLike("-", "[-a]"));
  EXPECT_TRUE(MatchesLike("-", "[a-]"));
  EXPECT_FALSE(MatchesLike("b", "[a-]"));
}

TEST(MatchesLike, TakesAnExclamationMarkAloneForItself) {
  EXPECT_TRUE(MatchesLike("!", "!"));
  EXPECT_TRUE(MatchesLike("!", "[!]"));
  EXPECT_TRUE(MatchesLike("!", "[a!]"));
}

TEST(MatchesLike, TakesAnEmptyListForNothing) { EXPECT_TRUE(MatchesLike("ab", "a[]b")); }

TEST(MatchesLike, TakesABracketWithoutEndForItself) {
  EXPECT_TRUE(MatchesLike("a[b", "a[b"));
  EXPECT_TRUE(MatchesLike("a]b", "a]b"));
}

TEST(MatchesLike, MatchesEmptyTextWithEmptyPattern) {
  EXPECT_TRUE(MatchesLike("", ""));
  EXPECT_FALSE(MatchesLike("a", ""));
}

TEST(MatchesLike, TakesAnyBytes) {
  EXPECT_TRUE(MatchesLike("\xFF\xC3", "??"));
  EXPECT_FALSE(MatchesLike("\xFF", "\xFE"));
}

}  // namespace
}  // namespace ambrelio::embedded
