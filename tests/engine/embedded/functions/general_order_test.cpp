#include "ambrelio/engine/embedded/functions/general_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "ambrelio/platform/characters.h"
#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

using testing::ElementsAre;

int Sign(int number) { return number > 0 ? 1 : (number < 0 ? -1 : 0); }

std::vector<std::string> Sorted(std::vector<std::string> texts) {
  std::ranges::stable_sort(texts,
                           [](const auto& a, const auto& b) { return CompareText(a, b) < 0; });
  return texts;
}

TEST(CompareText, IgnoresCase) {
  EXPECT_EQ(CompareText("Almazara", "aLMAZARA"), 0);
  EXPECT_EQ(CompareText("JAÉN", "jaén"), 0);
  EXPECT_EQ(CompareText("Ÿ", "ÿ"), 0);
  EXPECT_EQ(CompareText("ΑΘΗΝΑ", "αθηνα"), 0);
  EXPECT_EQ(CompareText("МОСКВА", "москва"), 0);
}

TEST(CompareText, IgnoresTrailingBlanks) {
  EXPECT_EQ(CompareText("x", "x  "), 0);
  EXPECT_EQ(CompareText("", "   "), 0);
}

TEST(CompareText, MindsLeadingAndInnerBlanks) {
  EXPECT_LT(CompareText(" x", "x"), 0);
  EXPECT_NE(CompareText("a b", "ab"), 0);
  EXPECT_NE(CompareText("a  b", "a b"), 0);
}

TEST(CompareText, MindsOtherTrailingWhiteSpace) {
  EXPECT_NE(CompareText("x\t", "x"), 0);
  EXPECT_NE(CompareText("x\xC2\xA0", "x"), 0);
}

TEST(CompareText, TellsAccentsApart) {
  EXPECT_NE(CompareText("a", "á"), 0);
  EXPECT_NE(CompareText("à", "á"), 0);
  EXPECT_NE(CompareText("ano", "año"), 0);
  EXPECT_NE(CompareText("calco", "calço"), 0);
}

TEST(CompareText, PutsAccentsBehindAllLetters) {
  EXPECT_THAT(Sorted({"pez", "peñb", "pena", "peña", "Pená"}),
              ElementsAre("pena", "Pená", "peña", "peñb", "pez"));
}

TEST(CompareText, PutsTheEarlierAccentDecisivelyBehind) {
  EXPECT_THAT(Sorted({"cóte", "côté", "cote", "coté"}),
              ElementsAre("cote", "coté", "cóte", "côté"));
}

TEST(CompareText, OrdersBlanksThenSignsThenDigitsThenLetters) {
  EXPECT_THAT(Sorted({"z", "a", "9", "0", "+", "_", "@", "#", "", "\tx", " x"}),
              ElementsAre("", " x", "\tx", "#", "@", "_", "+", "0", "9", "a", "z"));
}

TEST(CompareText, PutsAStartBeforeTheWhole) {
  EXPECT_LT(CompareText("aceite", "aceites"), 0);
  EXPECT_GT(CompareText("aceites", "aceite"), 0);
  EXPECT_LT(CompareText("", "a"), 0);
}

TEST(CompareText, LetsHyphenAndApostropheWeighLeast) {
  EXPECT_THAT(Sorted({"co-op", "coop", "coos", "coof", "co'op", "Coöp"}),
              ElementsAre("coof", "coop", "co'op", "co-op", "Coöp", "coos"));
}

TEST(CompareText, TellsTextsApartThatDifferByAHyphenOnly) {
  EXPECT_NE(CompareText("01-012", "01012"), 0);
  EXPECT_NE(CompareText("0-1012", "01-012"), 0);
  EXPECT_NE(CompareText("-", ""), 0);
  EXPECT_NE(CompareText("a-", "a--"), 0);
}

TEST(CompareText, PutsTheLaterHyphenBehind) {
  EXPECT_LT(CompareText("0-1012", "01-012"), 0);
  EXPECT_LT(CompareText("01012", "0-1012"), 0);
}

TEST(CompareText, ReadsLigaturesAsTheirLetters) {
  EXPECT_EQ(CompareText("straße", "STRASSE"), 0);
  EXPECT_EQ(CompareText("Æ", "ae"), 0);
  EXPECT_LT(CompareText("ß", "st"), 0);
  EXPECT_GT(CompareText("ßa", "ss"), 0);
}

TEST(CompareText, CountsTheLettersOfALigatureAsPlaces) {
  // The hyphen stands behind two weights in both.
  EXPECT_EQ(CompareText("ß-a", "ss-a"), 0);
  EXPECT_NE(CompareText("ß-a", "s-sa"), 0);
}

TEST(CompareText, PutsOtherAlphabetsBehindTheLatinOne) {
  EXPECT_LT(CompareText("z", "α"), 0);
  EXPECT_LT(CompareText("α", "я"), 0);
  EXPECT_LT(CompareText("я", "油"), 0);
}

TEST(CompareText, KnowsTheAccentsOfLatinExtendedA) {
  EXPECT_THAT(Sorted({"Łz", "lb", "ła", "la"}), ElementsAre("la", "ła", "lb", "Łz"));
  EXPECT_EQ(CompareText("ŽIŽEK", "žižek"), 0);
}

TEST(CompareText, TakesAnyBytes) {
  EXPECT_NE(CompareText("\xFF", "\xFE"), 0);
  EXPECT_NE(CompareText("a\xC3", "a"), 0);
  EXPECT_EQ(CompareText("\xC3", "\xC3"), 0);
  EXPECT_NE(CompareText("\xE2\x82", "\xE2\x82\xAC"), 0);
  EXPECT_NE(CompareText("\xC3\xA1", "\xC3\xA2"), 0);
}

TEST(CompareText, GoesOnBehindANullCharacter) {
  using namespace std::string_view_literals;
  EXPECT_NE(CompareText("a\0b"sv, "a\0c"sv), 0);
}

// Texts that are often equal or nearly so: few letters, with the characters that have a level of
// their own, in valid UTF-8 and not.
std::vector<std::string> RandomTexts(size_t count) {
  std::mt19937 random(20240117);
  const std::vector<std::string> often = {"a", "A", "á", "b", "-", "'", " ", "s", "ß", "ss", "æ"};
  std::vector<std::string> texts;
  for (size_t i = 0; i < count; ++i) {
    std::string text;
    for (size_t length = random() % 5; length > 0; --length) {
      switch (random() % 8) {
        case 0:
          AppendCharacter(text, random() % 0x100);
          break;
        case 1:
          text += static_cast<char>(random() % 0x100);
          break;
        default:
          text += often[random() % often.size()];
      }
    }
    texts.push_back(text);
  }
  return texts;
}

TEST(CompareText, IsAntisymmetricForAnyTexts) {
  const auto texts = RandomTexts(700);
  for (const auto& a : texts) {
    for (const auto& b : texts) {
      ASSERT_EQ(Sign(CompareText(a, b)), -Sign(CompareText(b, a)))
          << testing::PrintToString(a) << " " << testing::PrintToString(b);
    }
  }
}

// When sorted texts compare as their places do, each with each, the order is transitive and so is
// its equality.
TEST(CompareText, IsTransitiveForAnyTexts) {
  const auto texts = Sorted(RandomTexts(700));
  std::vector<int> places(texts.size());
  for (size_t i = 1; i < texts.size(); ++i) {
    places[i] = places[i - 1] + (CompareText(texts[i - 1], texts[i]) == 0 ? 0 : 1);
  }
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < texts.size(); ++j) {
      ASSERT_EQ(Sign(CompareText(texts[i], texts[j])), Sign(places[i] - places[j]))
          << testing::PrintToString(texts[i]) << " " << testing::PrintToString(texts[j]);
    }
  }
}

TEST(CompareText, DoesNotDependOnACommonStart) {
  const auto texts = RandomTexts(300);
  for (const auto& a : texts) {
    for (const auto& b : texts) {
      // A letter keeps the bytes in front from joining those behind it.
      ASSERT_EQ(Sign(CompareText(a + "x", b + "x")),
                Sign(CompareText("é-q" + a + "x", "é-q" + b + "x")));
    }
  }
}

TEST(JetCollation, ServesComparisonsSortingAndUniqueKeys) {
  FunctionDb db;
  db.Run("create table t (x text collate JET unique)");
  db.Run("insert into t values ('b'), ('á'), ('A'), (null)");
  db.Run("insert or ignore into t values ('B  '), ('a'), ('Á ')");
  EXPECT_THAT(db.Rows("select x from t order by x"), ElementsAre("NULL", "A", "á", "b"));
  EXPECT_THAT(db.Rows("select count(*) from t where x = 'B '"), ElementsAre("1"));
}

}  // namespace
}  // namespace ambrelio::embedded
