// The commands tolva and descarga.
#include "small_mill.h"

namespace ambrelio::cli {
namespace {

class TolvaCommand : public test::SmallMillTest {};

TEST_F(TolvaCommand, PrintsEveryHopper) {
  const auto lines = test::LinesOf(Out({"tolva"}));
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_EQ(lines[0], "Tolva  Descarga  Desde                Pesadas   Kilos");
  EXPECT_EQ(lines[2], "    1         2  2025-11-03 09:00:00        0    0.00");
  EXPECT_EQ(lines[3], "    2         1  2025-11-03 08:20:00        1  500.00");
  EXPECT_THAT(lines[4], testing::StartsWith("    3         1  20")) << "asked for the first time";
}

TEST_F(TolvaCommand, PrintsTheStateOfAHopper) {
  EXPECT_EQ(Out({"tolva", "2"}),
            "Tolva     2\n"
            "Descarga  1\n"
            "Desde     2025-11-03 08:20:00\n"
            "Pesadas   1\n"
            "Kilos     500.00\n");
  EXPECT_EQ(Out({"tolva", "2", "--json"}),
            R"({"tolva":2,"descarga":1,"desde":"2025-11-03 08:20:00","pesadas":1,"kilos":500.0})"
            "\n");
}

TEST_F(TolvaCommand, PrintsTheDischargesOfAHopper) {
  const std::string discharges =
      "Momento              Número  Tolva  Depósito    Kilos\n"
      "-------------------  ------  -----  --------  -------\n"
      "2025-11-03 09:00:00       1      1         3  4000.00\n"
      "2025-11-03 09:00:00       1      1         4  4000.00\n";
  EXPECT_EQ(Out({"tolva", "1", "--historia"}), discharges);
  EXPECT_EQ(Out({"descarga", "1"}), discharges);
  EXPECT_EQ(Out({"descarga", "2", "--json"}), "[]\n");
}

TEST_F(TolvaCommand, PrintsTheCompositionOfAHopper) {
  EXPECT_EQ(Out({"tolva", "2", "--por", "socio", "--csv"}),
            "clave,nombre,porcentaje,kilos\r\n12,Ana,100,500\r\n");
}

TEST_F(TolvaCommand, PrintsADischarge) {
  EXPECT_EQ(Out({"descarga", "1", "1"}),
            "Tolva   1\n"
            "Número  1\n"
            "Desde   2025-11-03 08:00:00\n"
            "Hasta   2025-11-03 09:00:00\n"
            "Kilos   4000.00\n");
}

TEST_F(TolvaCommand, ADischargeThatIsOpenHasNoEnd) {
  EXPECT_EQ(Out({"descarga", "1", "2", "--json"}),
            R"({"tolva":1,"numero":2,"desde":"2025-11-03 09:00:00","hasta":null,"kilos":0.0})"
            "\n");
}

TEST_F(TolvaCommand, PrintsTheCompositionOfADischarge) {
  EXPECT_EQ(Out({"descarga", "1", "1", "--por", "socio"}),
            "Clave  Nombre      %    Kilos\n"
            "-----  ------  -----  -------\n"
            "    7  Núñez   75.00  3000.00\n"
            "   12  Ana     25.00  1000.00\n");
}

TEST_F(TolvaCommand, OlivesHaveNoMillLine) {
  const char* const refusal = "ambrelio: --por: molino not in {socio,producto,municipio,paraje}";
  EXPECT_EQ(Refusal({"tolva", "1", "--por", "molino"}), refusal);
  EXPECT_EQ(Refusal({"descarga", "1", "1", "--por", "molino"}), refusal);
}

TEST_F(TolvaCommand, RefusesWhatTheMillDoesNotHave) {
  EXPECT_EQ(Refusal({"tolva", "4"}),
            "ambrelio: the mill has no hopper 4 (N); its hoppers are 1 to 3");
  EXPECT_EQ(Refusal({"descarga", "0"}),
            "ambrelio: the mill has no hopper 0 (TOLVA); its hoppers are 1 to 3");
  EXPECT_EQ(Refusal({"descarga", "1", "7"}),
            "ambrelio: the hopper has no discharge 7 (N); its discharges are 1 to 2");
  EXPECT_EQ(Refusal({"descarga", "2", "7"}),
            "ambrelio: the hopper has no discharge 7 (N); its only discharge is 1");
}

TEST_F(TolvaCommand, AMillWithoutHoppersHasAnEmptyList) {
  SetUpIni("MaxTolvas", "0,0,1");
  EXPECT_EQ(Out({"tolva", "--json"}), "[]\n");
  EXPECT_EQ(Refusal({"tolva", "1"}), "ambrelio: the mill has no hopper 1 (N); it has none at all");
}

TEST_F(TolvaCommand, RefusesOptionsThatDoNotGoTogether) {
  EXPECT_EQ(Refusal({"tolva", "--historia"}), "ambrelio: --historia requires N");
  EXPECT_EQ(Refusal({"tolva", "1", "--historia", "--por", "socio"}),
            "ambrelio: --historia excludes --por");
  EXPECT_EQ(Refusal({"descarga"}), "ambrelio: TOLVA is required");
  EXPECT_EQ(Refusal({"descarga", "1", "--por", "socio"}), "ambrelio: --por requires N");
}

}  // namespace
}  // namespace ambrelio::cli
