#include "ambrelio/automation/path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"

namespace ambrelio::automation {
namespace {

using testing::HasSubstr;

// The position and the message of the error that a text gives; "" for a path.
std::string ProblemOf(const std::string& text) {
  try {
    ParsePath(text);
  } catch (const PathError& error) {
    return error.what();
  }
  return "";
}
size_t PositionOf(const std::string& text) {
  try {
    ParsePath(text);
  } catch (const PathError& error) {
    return error.position();
  }
  return 0;
}

std::optional<Variant> OnlyArgument(const std::string& literal) {
  const Path path = ParsePath("X(" + literal + ")");
  EXPECT_EQ(path.back().arguments.size(), 1U);
  return path.back().arguments.front();
}

TEST(ParsePath, ReadsSteps) {
  const Path path = ParsePath("Deposito(3).Nivel(4).Litros");
  ASSERT_EQ(path.size(), 3U);
  EXPECT_EQ(path[0].name, "Deposito");
  EXPECT_EQ(path[0].arguments, Arguments{Variant(int32_t{3})});
  EXPECT_EQ(path[1].name, "Nivel");
  EXPECT_EQ(path[2].name, "Litros");
  EXPECT_FALSE(path[2].has_arguments);
}

TEST(ParsePath, DropsTheRoot) {
  EXPECT_EQ(ParsePath("Trazabilidad.Trasegar").size(), 1U);
  EXPECT_EQ(ParsePath("TRAZABILIDAD.Tolva(2).Partidas").front().name, "Tolva");
}

TEST(ParsePath, AllowsBlanks) {
  const Path path = ParsePath("  Tolva ( 2 ) . Descargar( 3 , 1 ) ");
  ASSERT_EQ(path.size(), 2U);
  EXPECT_EQ(path[1].arguments.size(), 2U);
}

TEST(ParsePath, ReadsNamesBeyondAscii) {
  EXPECT_EQ(ParsePath("IniciarCampaña").front().name, "IniciarCampaña");
}

TEST(ParsePath, ReadsEmptyParentheses) {
  const Path path = ParsePath("Cerrar()");
  EXPECT_TRUE(path.front().has_arguments);
  EXPECT_TRUE(path.front().arguments.empty());
}

TEST(ParsePath, ReadsWholeNumbersAsLong) {
  EXPECT_EQ(OnlyArgument("-12"), Variant(int32_t{-12}));
  EXPECT_EQ(OnlyArgument("+12"), Variant(int32_t{12}));
  EXPECT_EQ(OnlyArgument("2147483647"), Variant(int32_t{2147483647}));
}

TEST(ParsePath, ReadsOtherNumbersAsDouble) {
  EXPECT_EQ(OnlyArgument("0.6"), Variant(0.6));
  EXPECT_EQ(OnlyArgument("1e3"), Variant(1000.0));
  EXPECT_EQ(OnlyArgument("2147483648"), Variant(2147483648.0));
}

TEST(ParsePath, ReadsText) {
  EXPECT_EQ(OnlyArgument("\"Lote, 5)\""), Variant("Lote, 5)"));
  EXPECT_EQ(OnlyArgument("\"el \"\"bueno\"\"\""), Variant("el \"bueno\""));
  EXPECT_EQ(OnlyArgument("\"\""), Variant(""));
}

TEST(ParsePath, ReadsDates) {
  EXPECT_EQ(OnlyArgument("#2025-11-03 08:04:09#"), Variant(test::At("2025-11-03 08:04:09")));
}

TEST(ParsePath, ReadsTruth) {
  EXPECT_EQ(OnlyArgument("True"), Variant(true));
  EXPECT_EQ(OnlyArgument("false"), Variant(false));
}

TEST(ParsePath, ReadsAnArgumentLeftOut) {
  const Path path = ParsePath("EntradaNivel(,3764,)");
  EXPECT_EQ(path.back().arguments, (Arguments{std::nullopt, Variant(int32_t{3764}), std::nullopt}));
}

TEST(ParsePath, NamesThePositionOfAProblem) {
  EXPECT_EQ(PositionOf(""), 1U);
  EXPECT_EQ(PositionOf("Tolva(2)."), 10U);
  EXPECT_EQ(PositionOf("Tolva(2"), 8U);
  EXPECT_EQ(PositionOf("Tolva(2 3)"), 9U);
  EXPECT_EQ(PositionOf("Tolva)"), 6U);
  EXPECT_EQ(PositionOf("2Tolva"), 1U);
  EXPECT_EQ(PositionOf("Tolva(*)"), 7U);
  EXPECT_EQ(PositionOf("Ñ(\"é\",*)"), 7U);  // characters, not bytes
}

TEST(ParsePath, SaysWhatIsWrong) {
  EXPECT_THAT(ProblemOf("X(\"abc)"),
              HasSubstr("at position 3 of the path: the text is not closed"));
  EXPECT_THAT(ProblemOf("X(#2025-11-03#)"), HasSubstr("#YYYY-MM-DD HH:MM:SS#"));
  EXPECT_THAT(ProblemOf("X(#2025)"), HasSubstr("the date is not closed"));
  EXPECT_THAT(ProblemOf("X(Norte)"), HasSubstr("'Norte' is no value; text stands in quotes"));
  EXPECT_THAT(ProblemOf("X(1e999)"), HasSubstr("out of range"));
  EXPECT_THAT(ProblemOf("Trazabilidad"), HasSubstr("a member is missing"));
  EXPECT_THAT(ProblemOf("Trazabilidad(1).Tolva"), HasSubstr("takes no arguments"));
}

TEST(ParsePath, RefusesNumbersThatAreNone) {
  for (const char* text : {"X(+)", "X(-)", "X(inf)", "X(nan)", "X(-inf)", "X(+-1)", "X(0x10)"}) {
    EXPECT_NE(ProblemOf(text), "") << text;
  }
}

class PathOfAMill : public test::MillTest {
 protected:
  // The fixture's root, as callers hold it.
  std::shared_ptr<Object> shared_root{&root, [](Object*) {}};

  Variant Read(const std::string& path) {
    Path parsed = ParsePath(path);
    Arguments arguments = parsed.back().arguments;
    return CallPath(shared_root, parsed, Access::kCall, std::move(arguments)).result;
  }
};

TEST_F(PathOfAMill, ReachesAMemberOfAMember) {
  root.Tolva(2)->DescargaEnCurso();
  EXPECT_EQ(Read("tolva(2).descarga(1).codigo"), Variant(int32_t{1}));
}

TEST_F(PathOfAMill, SetsAProperty) {
  CallPath(shared_root, ParsePath("Deposito(3).Nombre"), Access::kLet, {Variant("Norte")});
  EXPECT_EQ(Read("Deposito(3).Nombre"), Variant("Norte"));
}

TEST_F(PathOfAMill, AStepOnNothingIs91) {
  EXPECT_EQ(ErrorOf([this] { Read("Deposito(99).Nombre"); }), 91);
  EXPECT_EQ(ErrorOf([this] { Read("Deposito(1).Nivel(7).Litros"); }), 91);
}

TEST_F(PathOfAMill, AStepOnAValueIs424) {
  EXPECT_EQ(ErrorOf([this] { Read("Deposito(1).Nombre.Largo"); }), 424);
}

TEST_F(PathOfAMill, AnUnknownStepIs438) {
  EXPECT_EQ(ErrorOf([this] { Read("Almacen(1).Nombre"); }), 438);
}

TEST_F(PathOfAMill, TheObjectsOfAPathLiveAsLongAsNeeded) {
  const auto owner = Owner(shared_root, ParsePath("Tolva(2).Partidas"));
  EXPECT_STREQ(owner->ClassName(), "Tolva");
  EXPECT_EQ(Call(*owner, "Partidas", Access::kCall, {}).result, Variant(int32_t{0}));
}

}  // namespace
}  // namespace ambrelio::automation
