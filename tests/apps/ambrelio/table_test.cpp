#include "table.h"

#include <gtest/gtest.h>

#include <memory>

namespace ambrelio::cli {
namespace {

TEST(DisplayWidth, CountsWhatATerminalShows) {
  EXPECT_EQ(DisplayWidth("Cañada"), 6U);
  EXPECT_EQ(DisplayWidth("Can\xCC\x83"
                         "ada"),
            6U);  // a combining tilde
  EXPECT_EQ(DisplayWidth("油"), 2U);
  EXPECT_EQ(DisplayWidth("🫒"), 2U);
  EXPECT_EQ(DisplayWidth(""), 0U);
}

TEST(Table, AlignsByDisplayWidth) {
  Table table({"Paraje", "Kg"});
  table.AddRow({{"Cañada"}, {"5", true}});
  table.AddRow({{"Ñ"}, {"1250", true}});
  EXPECT_EQ(table.Text(),
            "Paraje    Kg\n"
            "------  ----\n"
            "Cañada     5\n"
            "Ñ       1250\n");
}

TEST(Table, AHeadingStandsLeftWhenACellDoes) {
  Table table({"Valor"});
  table.AddRow({{"5", true}});
  table.AddRow({{"(nulo)"}});
  EXPECT_EQ(table.Text(), "Valor\n------\n     5\n(nulo)\n");
}

TEST(Table, PrintsNoHeadingsWhenAllAreEmpty) {
  Table table({"", ""});
  table.AddRow({{"Paraje"}, {"Cañada"}});
  table.AddRow({{"Kg"}, {"5"}});
  EXPECT_EQ(table.Text(), "Paraje  Cañada\nKg      5\n");
}

TEST(CellOf, KeepsControlCharactersFromTheTerminal) {
  EXPECT_EQ(CellOf(Variant("a\nb\x1b[2Jc")).text, "a b [2Jc");
}

TEST(CellOf, PrintsNumbersWithAPoint) {
  EXPECT_EQ(CellOf(Variant(1234.5), 2).text, "1234.50");
  EXPECT_EQ(CellOf(Variant(1234.5)).text, "1234.5");
  EXPECT_EQ(CellOf(Variant(0.1F)).text, "0.1");
  EXPECT_TRUE(CellOf(Variant(int16_t{3})).right);
  EXPECT_FALSE(CellOf(Variant("3")).right);
}

TEST(CellOf, PrintsListsAndTruth) {
  EXPECT_EQ(CellOf(Variant(Variant::Array{Variant(""), Variant(int32_t{2}), Variant::Null()})).text,
            "[, 2, (nulo)]");
  EXPECT_EQ(CellOf(Variant(false)).text, "no");
}

}  // namespace
}  // namespace ambrelio::cli
