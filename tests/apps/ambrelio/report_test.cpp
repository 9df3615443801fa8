#include "report.h"

#include <gtest/gtest.h>

namespace ambrelio::cli {
namespace {

Report Tanks() {
  return {{{"numero", "Número"},
           {"nombre", "Nombre"},
           {"litros", "Litros", CellForm::kTwoDecimals},
           {"tipo", "Tipo", CellForm::kMovement}},
          {{int16_t{1}, "Ñu", 1234.5, int32_t{2}}, {int16_t{2}, "", Variant::Null(), Variant()}}};
}

Report State() {
  Report report = Tanks();
  report.rows.pop_back();
  report.single = true;
  return report;
}

TEST(RenderTable, PutsADashAmongNumbersToTheRight) {
  EXPECT_EQ(Render(Tanks(), OutputForm::kTable),
            "Número  Nombre   Litros  Tipo\n"
            "------  ------  -------  -------\n"
            "     1  Ñu      1234.50  Vaciado\n"
            "     2  -             -  -\n");
}

TEST(RenderTable, OfNoRowsIsItsHeadings) {
  EXPECT_EQ(Render({{{"a", "A"}}, {}}, OutputForm::kTable), "A\n-\n");
}

TEST(RenderTable, OfOneThingReadsFromTopToBottom) {
  EXPECT_EQ(Render(State(), OutputForm::kTable),
            "Número  1\n"
            "Nombre  Ñu\n"
            "Litros  1234.50\n"
            "Tipo    Vaciado\n");
}

TEST(RenderTable, OfOneThingHasDashesToo) {
  Report report = State();
  report.rows[0] = Tanks().rows[1];
  EXPECT_EQ(Render(report, OutputForm::kTable), "Número  2\nNombre  -\nLitros  -\nTipo    -\n");
}

TEST(RenderTable, AMovementThatIsUnknownStaysANumber) {
  EXPECT_EQ(Render({{{"t", "T", CellForm::kMovement}}, {{int32_t{4}}}}, OutputForm::kTable),
            "T\n-\n4\n");
}

TEST(RenderJson, IsAListOfObjectsWithTheValuesAsTheyAre) {
  EXPECT_EQ(Render(Tanks(), OutputForm::kJson),
            R"([{"numero":1,"nombre":"Ñu","litros":1234.5,"tipo":2},)"
            R"({"numero":2,"nombre":"","litros":null,"tipo":null}])"
            "\n");
  EXPECT_EQ(Render({{{"a", "A"}}, {}}, OutputForm::kJson), "[]\n");
}

TEST(RenderJson, OfOneThingIsOneObject) {
  EXPECT_EQ(Render(State(), OutputForm::kJson),
            R"({"numero":1,"nombre":"Ñu","litros":1234.5,"tipo":2})"
            "\n");
}

TEST(RenderCsv, HasALineOfKeys) {
  EXPECT_EQ(Render(Tanks(), OutputForm::kCsv),
            "numero,nombre,litros,tipo\r\n"
            "1,Ñu,1234.5,2\r\n"
            "2,\"\",,\r\n");
  EXPECT_EQ(Render(State(), OutputForm::kCsv), "numero,nombre,litros,tipo\r\n1,Ñu,1234.5,2\r\n");
}

TEST(CsvLine, QuotesWhatNeedsIt) {
  EXPECT_EQ(CsvLine({"a,b", "say \"so\"", "two\r\nlines", "plain", ""}),
            "\"a,b\",\"say \"\"so\"\"\",\"two\r\nlines\",plain,\"\"\r\n");
  EXPECT_EQ(CsvLine({Variant::Null(), Variant(), OleDate::FromDays(1)}),
            ",,1899-12-31 00:00:00\r\n");
}

}  // namespace
}  // namespace ambrelio::cli
