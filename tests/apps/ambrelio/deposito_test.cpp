#include "small_mill.h"

namespace ambrelio::cli {
namespace {

class DepositoCommand : public test::SmallMillTest {};

TEST_F(DepositoCommand, PrintsEveryTank) {
  EXPECT_EQ(Out({"deposito"}),
            "Depósito  Nombre  Nivel  Litros  Kilos de aceituna\n"
            "--------  ------  -----  ------  -----------------\n"
            "       1  -       -           -               0.00\n"
            "       2  -       -           -               0.00\n"
            "       3  Norte   -      350.00            2800.00\n"
            "       4  -       -        0.00             400.00\n");
}

TEST_F(DepositoCommand, PrintsEveryTankForPrograms) {
  EXPECT_EQ(Out({"deposito", "--csv"}),
            "deposito,nombre,nivel,litros,kilos\r\n"
            "1,\"\",,,0\r\n"
            "2,\"\",,,0\r\n"
            "3,Norte,,350,2800\r\n"
            "4,\"\",,0,400\r\n");
  EXPECT_THAT(Out({"deposito", "--json"}),
              testing::StartsWith(
                  R"([{"deposito":1,"nombre":"","nivel":null,"litros":null,"kilos":0.0},)"));
}

TEST_F(DepositoCommand, PrintsTheStateOfATank) {
  EXPECT_EQ(Out({"deposito", "3"}),
            "Depósito           3\n"
            "Nombre             Norte\n"
            "Nivel              -\n"
            "Litros             350.00\n"
            "Kilos de aceituna  2800.00\n"
            "Último vaciado     2\n"
            "Último movimiento  Vaciado\n"
            "Momento            2025-11-03 12:00:00\n");
}

TEST_F(DepositoCommand, PrintsTheStateOfATankForPrograms) {
  EXPECT_EQ(Out({"deposito", "3", "--json"}),
            R"({"deposito":3,"nombre":"Norte","nivel":null,"litros":350.0,"kilos":2800.0,)"
            R"("ultimo_vaciado":2,"ultimo_movimiento":2,"momento":"2025-11-03 12:00:00"})"
            "\n");
}

TEST_F(DepositoCommand, ATankThatWasNeverUsedHasNoMovement) {
  EXPECT_EQ(Out({"deposito", "1", "--json"}),
            R"({"deposito":1,"nombre":"","nivel":null,"litros":null,"kilos":0.0,)"
            R"("ultimo_vaciado":null,"ultimo_movimiento":null,"momento":null})"
            "\n");
}

TEST_F(DepositoCommand, PrintsTheHistoryOfATank) {
  EXPECT_EQ(Out({"deposito", "4", "--historia"}),
            "Momento              Tipo      Depósito/Tolva  Número\n"
            "-------------------  --------  --------------  ------\n"
            "2025-11-03 09:00:00  Descarga               1       1\n"
            "2025-11-03 12:00:00  Vaciado                3       2\n");
  EXPECT_EQ(Out({"deposito", "4", "--historia", "--csv"}),
            "momento,tipo,deposito_tolva,numero\r\n"
            "2025-11-03 09:00:00,1,1,1\r\n"
            "2025-11-03 12:00:00,2,3,2\r\n");
  EXPECT_EQ(Out({"deposito", "1", "--historia", "--json"}), "[]\n");
}

TEST_F(DepositoCommand, PrintsTheCapacityTableOfATank) {
  EXPECT_EQ(Out({"deposito", "3", "--formula"}),
            "Nivel  A0    A1  A2  A3\n"
            "-----  --  ----  --  --\n"
            "  100   0  5.25   0   0\n");
  EXPECT_EQ(Out({"deposito", "2", "--formula"}), "Nivel  A0  A1  A2  A3\n-----  --  --  --  --\n");
}

TEST_F(DepositoCommand, PrintsTheCompositionOfATank) {
  EXPECT_EQ(Out({"deposito", "3", "--por", "socio"}),
            "Clave  Nombre      %  Litros\n"
            "-----  ------  -----  ------\n"
            "    7  Núñez   75.00  262.50\n"
            "   12  Ana     25.00   87.50\n");
  EXPECT_EQ(Out({"deposito", "3", "--por", "molino", "--json"}),
            R"([{"clave":1,"nombre":"1","porcentaje":100.0,"litros":350.0}])"
            "\n");
}

TEST_F(DepositoCommand, ReadsAsTheObjectModelDoes) {
  for (const char* const name : {"producto", "municipio", "paraje", "molino"}) {
    EXPECT_EQ(test::LinesOf(Out({"deposito", "3", "--por", name})).size(), 3U) << name;
  }
  EXPECT_EQ(Out({"deposito", "3", "--por", "producto", "--csv"}),
            Out({"call", "Deposito(3).Composicion", "2", "--csv"}));
}

TEST_F(DepositoCommand, RefusesATankThatTheMillDoesNotHave) {
  EXPECT_EQ(Refusal({"deposito", "9"}),
            "ambrelio: the mill has no tank 9 (N); its tanks are 1 to 4");
  EXPECT_EQ(Refusal({"deposito", "0"}),
            "ambrelio: the mill has no tank 0 (N); its tanks are 1 to 4");
  EXPECT_EQ(Refusal({"deposito", "-1"}),
            "ambrelio: the mill has no tank -1 (N); its tanks are 1 to 4");
  EXPECT_EQ(Refusal({"deposito", "65539"}),
            "ambrelio: the mill has no tank 65539 (N); its tanks are 1 to 4");
  SetUpIni("MaxTolvas", "3,1,1");
  EXPECT_EQ(Refusal({"deposito", "2"}), "ambrelio: the mill has no tank 2 (N); its only tank is 1");
}

TEST_F(DepositoCommand, RefusesOptionsThatDoNotGoTogether) {
  EXPECT_EQ(Refusal({"deposito", "--historia"}), "ambrelio: --historia requires N");
  EXPECT_EQ(Refusal({"deposito", "--formula"}), "ambrelio: --formula requires N");
  EXPECT_EQ(Refusal({"deposito", "--por", "socio"}), "ambrelio: --por requires N");
  EXPECT_EQ(Refusal({"deposito", "3", "--historia", "--formula"}),
            "ambrelio: --historia excludes --formula");
  EXPECT_EQ(Refusal({"deposito", "3", "--por", "socio", "--formula"}),
            "ambrelio: --formula excludes --por");
  EXPECT_EQ(Refusal({"deposito", "3", "--json", "--csv"}), "ambrelio: --json excludes --csv");
  EXPECT_EQ(Refusal({"deposito", "3", "--por", "color"}),
            "ambrelio: --por: color not in {socio,producto,municipio,paraje,molino}");
  EXPECT_EQ(Refusal({"deposito", "tres"}), "ambrelio: Could not convert: N = tres");
}

TEST_F(DepositoCommand, AnErrorOfTheLibraryIsCodeOne) {
  Journal("{\"sql\":\"drop table Capacidad\"}\n");
  const auto outcome = Ask({"deposito", "3", "--formula"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, testing::StartsWith("ambrelio: error 3078: "));
}

TEST_F(DepositoCommand, ADatabaseThatDoesNotOpenIsCodeThree) {
  std::filesystem::remove(database());
  const auto outcome = Ask({"deposito"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, testing::HasSubstr("cannot be opened: error 3024: "));
}

TEST_F(DepositoCommand, WritesItsStatementsToTheTrace) {
  const std::string trace = folder.File("trace.jsonl");
  Out({"deposito", "2", "--trace", trace});
  EXPECT_THAT(test::ReadText(trace),
              testing::HasSubstr("\"select Nombre from Depositos where Codigo=2\""));
}

}  // namespace
}  // namespace ambrelio::cli
