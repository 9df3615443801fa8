// Whatever the text, parsing ends with a tree or an AutomationError of the data access numbers.
#include <random>

#include "ambrelio/engine/embedded/sql/lexer.h"
#include "known_statements.h"
#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

// Parses and takes the shape; fails the test for any other exception than the expected one.
void Survive(const std::string& text) {
  try {
    const std::string tree = TreePrinter().PrintStatement(Parse(text));
    EXPECT_FALSE(tree.empty());
  } catch (const AutomationError& error) {
    EXPECT_GE(error.number(), 3000) << text;
  }
  try {
    const Shape shape = ShapeOf(text);
    EXPECT_LE(shape.literals.size(), text.size());
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 3075) << text;
  }
}

std::string Repeated(std::string_view piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(Robustness, ParsesEveryKnownStatement) {
  for (const std::string_view text : KnownStatements()) {
    const AutomationError error = ErrorOf(text);
    EXPECT_EQ(error.number(), 0) << text << "\n" << error.description();
  }
}

TEST(Robustness, SurvivesEveryTruncation) {
  for (const std::string_view text : KnownStatements()) {
    for (size_t size = 0; size < text.size(); ++size) Survive(std::string(text.substr(0, size)));
  }
}

TEST(Robustness, SurvivesTheLossOfAnyToken) {
  for (const std::string_view text : KnownStatements()) {
    const std::vector<Token> tokens = Tokenize(text);
    for (size_t i = 0; i + 1 < tokens.size(); ++i) {
      std::string cut(text);
      const auto begin = static_cast<size_t>(tokens[i].offset);
      cut.erase(begin, static_cast<size_t>(tokens[i + 1].offset) - begin);
      Survive(cut);
    }
  }
}

TEST(Robustness, SurvivesTokenSoup) {
  std::vector<std::string> pieces = {"(", ")", ",", ";", "[x]", "'", "#", "[", "\xFF", "?"};
  for (const std::string_view text : KnownStatements()) {
    const std::vector<Token> tokens = Tokenize(text);
    for (size_t i = 0; i + 1 < tokens.size(); ++i) {
      const auto begin = static_cast<size_t>(tokens[i].offset);
      const auto end = static_cast<size_t>(tokens[i + 1].offset);
      pieces.emplace_back(text.substr(begin, end - begin));
    }
  }
  std::mt19937 random(1234);
  const char* starts[] = {
      "select ",          "insert into t ",         "update t set ", "delete from ",
      "create table t (", "select a from t where ", "((select ",     ""};
  for (int round = 0; round < 20000; ++round) {
    std::string text = starts[random() % std::size(starts)];
    for (size_t length = random() % 25; length > 0; --length) {
      text += pieces[random() % pieces.size()] + " ";
    }
    Survive(text);
  }
}

TEST(Robustness, SurvivesRandomBytes) {
  std::mt19937 random(99);
  for (int round = 0; round < 5000; ++round) {
    std::string text = round % 2 == 0 ? "select " : "";
    for (size_t length = random() % 60; length > 0; --length) {
      text += static_cast<char>(random() % 256);
    }
    Survive(text);
  }
}

TEST(Robustness, ParsesReasonableDepths) {
  EXPECT_EQ(ErrorNumberOf("select " + Repeated("(", 90) + "a" + Repeated(")", 90)), 0);
  EXPECT_EQ(ErrorNumberOf("select a from t where a = 1" + Repeated(" and a = 1", 99)), 0);
  EXPECT_EQ(ErrorNumberOf("select 1" + Repeated(" union select 1", 99)), 0);
}

TEST(Robustness, ParsesLongFlatLists) {
  EXPECT_EQ(ErrorNumberOf("select a from t where a in (1" + Repeated(",1", 20000) + ")"), 0);
  EXPECT_EQ(ErrorNumberOf("select a" + Repeated(", -a + 1", 5000) + " from t"), 0);
}

TEST(Robustness, RefusesWhatIsNestedTooDeeply) {
  for (const std::string& text : std::vector<std::string>{
           "select " + Repeated("(", 30000) + "a" + Repeated(")", 30000),
           "select " + Repeated("(", 60000),
           "select " + Repeated("-", 60000) + "a",
           "select " + Repeated("not ", 15000) + "a",
           "select a" + Repeated(" and a", 10000),
           "select a" + Repeated("+a", 30000),
           "select a" + Repeated("^a", 30000),
           "select a" + Repeated("=not a", 9000),
           "select a" + Repeated(" is null", 8000),
           "select a" + Repeated(" like a", 8000),
           "select a" + Repeated(" in (a)", 8000),
           "select a" + Repeated(" between a and a", 4000),
           "select " + Repeated("f(", 20000) + "a" + Repeated(")", 20000),
           "select " + Repeated("(select ", 7000) + "a" + Repeated(")", 7000),
           Repeated("(", 30000) + "select a" + Repeated(")", 30000),
           "select a" + Repeated(" union select a", 4000),
           "select * from " + Repeated("(", 30000) + "t" + Repeated(")", 30000),
           "select * from " + Repeated("(select * from ", 4000) + "t" + Repeated(")", 4000),
           "select * from " + Repeated("(", 2000) + "t" + Repeated(" inner join t on a)", 2000),
           "select a where a in " + Repeated("(select a where a in ", 2500) + "(1" +
               Repeated(")", 2500)}) {
    EXPECT_EQ(ErrorNumberOf(text), 3075) << text.substr(0, 40);
  }
}

TEST(Robustness, RefusesAFloodOfOpenBrackets) {
  EXPECT_EQ(ErrorNumberOf(Repeated("(", 60000)), 3129);
  EXPECT_EQ(ErrorNumberOf(Repeated("(", 60000) + "select a"), 3129);
  EXPECT_EQ(ErrorNumberOf("select * from t where a in " + Repeated("(", 60000)), 3075);
}

// `seed` put twenty times between `before` and `after`.
std::string Wrapped(const std::string& before, std::string seed, const std::string& after) {
  for (int level = 0; level < 20; ++level) seed.insert(0, before).append(after);
  return seed;
}

// Each level alone stays below the limit, and so does the parser's own recursion.
TEST(Robustness, BoundsTheHeightOfTreesWhoseDepthAddsUp) {
  const std::string sum = Repeated("+1", 100);
  EXPECT_EQ(ErrorNumberOf("select " + Wrapped("(", "a", sum + ")")), 3075);
  EXPECT_EQ(ErrorNumberOf(Wrapped("select a from t where b = (", "select a from t", ")" + sum)),
            3075);
  EXPECT_EQ(ErrorNumberOf(Wrapped("select a from (", "select a from t",
                                  ")" + Repeated(" union select a from t", 50))),
            3075);
}

TEST(Robustness, SaysThatAStatementIsTooComplex) {
  const AutomationError error = ErrorOf("select a" + Repeated("+a", 1000));
  EXPECT_NE(error.description().find("too complex"), std::string::npos) << error.description();
}

TEST(Robustness, RefusesAStatementThatIsTooLong) {
  const AutomationError error = ErrorOf("select a" + Repeated(", a", 30000));
  EXPECT_EQ(error.number(), 3075);
  EXPECT_NE(error.description().find("too complex"), std::string::npos) << error.description();
}

}  // namespace
}  // namespace ambrelio::embedded::sql
