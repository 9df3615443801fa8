#include <map>
#include <random>

#include "ambrelio/engine/embedded/sql/lexer.h"
#include "known_statements.h"
#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

std::string KeyOf(std::string_view text) { return ShapeOf(text).key; }

TEST(Shape, TakesLiteralsOutInTheOrderOfTheText) {
  const Shape shape = ShapeOf("select a from t where b=5 and c = 'x' or d>1.5 and e=#3/5/2003#");
  EXPECT_EQ(shape.key, "select a from t where b = ?l and c = ?t or d > ?d and e = ?D");
  ASSERT_EQ(shape.literals.size(), 4u);
  EXPECT_EQ(shape.literals[0], Variant(5));
  EXPECT_EQ(shape.literals[1], Variant("x"));
  EXPECT_EQ(shape.literals[2], Variant(1.5));
  EXPECT_EQ(shape.literals[3].as<OleDate>().Iso(), "2003-03-05 00:00:00");
}

TEST(Shape, IsTheSameForOtherLiteralsOfTheSameTypes) {
  EXPECT_EQ(KeyOf("update t set a='x', b=1 where c=2"),
            KeyOf("update t set a='y ''z''', b=77 where c=0"));
}

TEST(Shape, DiffersWithTheTypeOfALiteral) {
  EXPECT_NE(KeyOf("select 1"), KeyOf("select 1.0"));
  EXPECT_NE(KeyOf("select 1"), KeyOf("select '1'"));
  EXPECT_NE(KeyOf("select 2147483647"), KeyOf("select 2147483648"));
  EXPECT_NE(KeyOf("select #1/1/2003#"), KeyOf("select '#1/1/2003#'"));
}

TEST(Shape, FoldsCaseAndBlanks) {
  EXPECT_EQ(KeyOf("SELECT  A\r\n\tfrom T where [X y]=1"), KeyOf("select a from t where[x Y] = 1 "));
}

TEST(Shape, TellsQuotedNamesFromWords) {
  EXPECT_NE(KeyOf("select [null] from t"), KeyOf("select null from t"));
  EXPECT_NE(KeyOf("select `a] [b` from t"), KeyOf("select [a] [b] from t"));
}

TEST(Shape, DoesNotMistakeTextForMarks) {
  EXPECT_NE(KeyOf("select [?l] from t"), KeyOf("select 5 from t"));
  EXPECT_THROW(ShapeOf("select ?l from t"), AutomationError);
}

TEST(Shape, KeepsTheNumberOfTop) {
  EXPECT_NE(KeyOf("select top 5 a from t"), KeyOf("select top 6 a from t"));
  EXPECT_TRUE(ShapeOf("select top 5 a from t").literals.empty());
}

TEST(Shape, KeepsThePlacesOfAnOrderBy) {
  EXPECT_NE(KeyOf("select a, b from t order by 1"), KeyOf("select a, b from t order by 2"));
  EXPECT_NE(KeyOf("select a, b from t order by a, 1 desc"),
            KeyOf("select a, b from t order by a, 2 desc"));
  EXPECT_NE(KeyOf("select a, b from t order by (1)"), KeyOf("select a, b from t order by (2)"));
}

TEST(Shape, TakesOutTheOtherLiteralsOfAnOrderBy) {
  const Shape shape = ShapeOf("select a from t order by iif(a > 3, 1, 0), a + 4, 'x', 1.5, 2");
  EXPECT_EQ(shape.key, "select a from t order by iif ( a > ?l , ?l , ?l ) , a + ?l , ?t , ?d , 2");
  EXPECT_EQ(shape.literals.size(), 6u);
}

TEST(Shape, EndsTheListOfAnOrderByWithItsBracket) {
  const Shape shape =
      ShapeOf("select a from t where b in (select top 2 c from u order by 1, 2) or f(d, 3) = 4");
  EXPECT_EQ(
      shape.key,
      "select a from t where b in ( select top 2 c from u order by 1 , 2 ) or f ( d , ?l ) = ?l");
}

TEST(Shape, DoesNotTakeColumnsForKeywords) {
  EXPECT_EQ(ShapeOf("select [order], [by], 1, 2 from t").literals.size(), 2u);
  EXPECT_EQ(ShapeOf("insert into t (by, a) values (1, 2)").literals.size(), 2u);
}

TEST(Shape, KeepsEveryLiteralOfADefinition) {
  EXPECT_EQ(KeyOf("Create table t (a text(40) default 'Ab')"),
            "create table t ( a text ( 40 ) default 'Ab' )");
  EXPECT_TRUE(ShapeOf("alter table t add a text(40)").literals.empty());
}

TEST(Shape, KeepsNullTrueAndFalse) {
  EXPECT_EQ(KeyOf("update t set a=Null, b=TRUE"), "update t set a = null , b = true");
}

TEST(Shape, LeavesTheSignInTheKey) {
  EXPECT_NE(KeyOf("select -1"), KeyOf("select 1"));
  EXPECT_EQ(ShapeOf("select -1").literals[0], Variant(1));
}

TEST(Shape, RaisesWhatTheLexerRaises) {
  for (const char* text : {"select 'a", "select #13/13/2003#", "select 1E400", "select @"}) {
    EXPECT_THROW(ShapeOf(text), AutomationError) << text;
  }
}

// Every literal with a slot, by its slot, wherever it stands in the text's tokens.
std::map<int, Variant> SlotsOf(std::string_view text) {
  std::map<int, Variant> slots;
  for (const Token& token : Tokenize(text)) {
    if (token.slot >= 0) slots[token.slot] = token.value;
  }
  return slots;
}

TEST(Shape, AgreesWithTheSlotsOfTheTokens) {
  for (const std::string_view text : KnownStatements()) {
    const Shape shape = ShapeOf(text);
    const std::map<int, Variant> slots = SlotsOf(text);
    ASSERT_EQ(slots.size(), shape.literals.size()) << text;
    for (const auto& [slot, value] : slots) {
      EXPECT_EQ(value, shape.literals[static_cast<size_t>(slot)]) << text;
    }
  }
}

TEST(Shape, AgreesWithTheSlotsOfTheTree) {
  for (const std::string_view text : KnownStatements()) {
    const Shape shape = ShapeOf(text);
    const std::string tree = TreePrinter(Literals::kSlots).PrintStatement(Parse(text));
    for (size_t slot = 0; slot < shape.literals.size(); ++slot) {
      const std::string mark = "?" + std::to_string(slot) + TypeName(shape.literals[slot]);
      EXPECT_NE(tree.find(mark), std::string::npos) << text << "\n" << tree << "\n" << mark;
    }
    EXPECT_EQ(tree.find("?" + std::to_string(shape.literals.size())), std::string::npos) << text;
  }
}

// The text with every literal that is taken out replaced by another of its type, and with the case
// of letters and the blanks between words changed.
std::string Disguised(std::string_view text, std::mt19937& random) {
  std::string result;
  const std::vector<Token> tokens = Tokenize(text);
  for (size_t i = 0; i + 1 < tokens.size(); ++i) {
    const Token& token = tokens[i];
    const auto begin = static_cast<size_t>(token.offset);
    const auto end = static_cast<size_t>(tokens[i + 1].offset);
    std::string piece(text.substr(begin, end - begin));
    if (token.slot >= 0) {
      const std::string number = std::to_string(random() % 1000000);
      switch (token.value.type()) {
        case VariantType::kLong:
          piece = number;
          break;
        case VariantType::kDouble:
          piece = number + ".25";
          break;
        case VariantType::kDate:
          piece = "#1/1/" + std::to_string(1900 + random() % 100) + "#";
          break;
        default:
          piece = "'" + number + "'";
      }
    } else if (token.kind == TokenKind::kWord && random() % 2 == 0) {
      for (char& c : piece) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
      }
    }
    result += piece + (random() % 2 == 0 ? " " : "\r\n ");
  }
  return result;
}

std::string Folded(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

TEST(Shape, OfEqualKeyMeansEqualTreesButForLiterals) {
  std::mt19937 random(20261115);
  const TreePrinter printer(Literals::kSlots);
  for (const std::string_view text : KnownStatements()) {
    const std::string tree = Folded(printer.PrintStatement(Parse(text)));
    for (int round = 0; round < 20; ++round) {
      const std::string other = Disguised(text, random);
      ASSERT_EQ(KeyOf(other), KeyOf(text)) << other;
      EXPECT_EQ(Folded(printer.PrintStatement(Parse(other))), tree) << other;
    }
  }
}

TEST(Shape, OfDifferentStatementsDiffers) {
  std::map<std::string, std::string> trees;
  const TreePrinter printer(Literals::kSlots);
  for (const std::string_view text : KnownStatements()) {
    const std::string tree = Folded(printer.PrintStatement(Parse(text)));
    EXPECT_EQ(trees.emplace(KeyOf(text), tree).first->second, tree) << text;
  }
}

}  // namespace
}  // namespace ambrelio::embedded::sql
