#include "small_mill.h"

namespace ambrelio::cli {
namespace {

class VaciadoCommand : public test::SmallMillTest {};

TEST_F(VaciadoCommand, PrintsTheEmptyingsOfATank) {
  EXPECT_EQ(Out({"vaciado", "3", "--csv"}),
            "momento,numero,deposito,litros,destino,lote,uso,cliente,nombre_cliente,transportista,"
            "nombre_transportista,destino_venta\r\n"
            "2025-11-03 11:00:00,1,3,100,0,L-1,2,5,\"Sur, S.A.\",3,Rápido,Jaén\r\n"
            "2025-11-03 12:00:00,2,3,50,4,,0,,,,,\r\n");
  EXPECT_EQ(Out({"vaciado", "4", "--json"}), "[]\n");
}

TEST_F(VaciadoCommand, PrintsTheEmptyingsOfATankAsATable) {
  const auto lines = test::LinesOf(Out({"vaciado", "3"}));
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_THAT(lines[0],
              testing::StartsWith("Momento              Número  Depósito  Litros  Destino"));
  EXPECT_THAT(lines[3],
              testing::MatchesRegex("2025-11-03 12:00:00 +2 +3 +50.00 +4  - +0 +-  - +-  - +-"));
}

TEST_F(VaciadoCommand, PrintsASale) {
  EXPECT_EQ(Out({"vaciado", "3", "1"}),
            "Momento                   2025-11-03 11:00:00\n"
            "Número                    1\n"
            "Depósito                  3\n"
            "Litros                    100.00\n"
            "Destino                   0\n"
            "Lote                      L-1\n"
            "Uso                       2\n"
            "Cliente                   5\n"
            "Nombre del cliente        Sur, S.A.\n"
            "Transportista             3\n"
            "Nombre del transportista  Rápido\n"
            "Destino de venta          Jaén\n");
}

TEST_F(VaciadoCommand, PrintsAnEmptyingIntoATank) {
  EXPECT_EQ(Out({"vaciado", "3", "2", "--json"}),
            R"({"momento":"2025-11-03 12:00:00","numero":2,"deposito":3,"litros":50.0,"destino":4,)"
            R"("lote":"","uso":0,"cliente":null,"nombre_cliente":null,"transportista":null,)"
            R"("nombre_transportista":null,"destino_venta":""})"
            "\n");
}

TEST_F(VaciadoCommand, AClientThatWasDeletedHasNoName) {
  Journal("{\"sql\":\"delete from Clientes\"}\n");
  EXPECT_THAT(Out({"vaciado", "3", "1", "--json"}),
              testing::HasSubstr(R"("cliente":5,"nombre_cliente":null,)"));
}

TEST_F(VaciadoCommand, PrintsTheCompositionOfAnEmptying) {
  EXPECT_EQ(Out({"vaciado", "3", "1", "--por", "socio"}),
            "Clave  Nombre      %  Litros\n"
            "-----  ------  -----  ------\n"
            "    7  Núñez   75.00   75.00\n"
            "   12  Ana     25.00   25.00\n");
  EXPECT_EQ(Out({"vaciado", "3", "1", "--por", "molino", "--csv"}),
            "clave,nombre,porcentaje,litros\r\n1,1,100,100\r\n");
}

TEST_F(VaciadoCommand, RefusesWhatTheMillDoesNotHave) {
  EXPECT_EQ(Refusal({"vaciado", "5"}),
            "ambrelio: the mill has no tank 5 (DEPOSITO); its tanks are 1 to 4");
  EXPECT_EQ(Refusal({"vaciado", "3", "9"}),
            "ambrelio: the tank has no emptying 9 (N); its emptyings are 1 to 2");
  EXPECT_EQ(Refusal({"vaciado", "3", "0"}),
            "ambrelio: the tank has no emptying 0 (N); its emptyings are 1 to 2");
  EXPECT_EQ(Refusal({"vaciado", "4", "1"}),
            "ambrelio: the tank has no emptying 1 (N); it has none at all");
}

TEST_F(VaciadoCommand, RefusesWhatIsIncomplete) {
  EXPECT_EQ(Refusal({"vaciado"}), "ambrelio: DEPOSITO is required");
  EXPECT_EQ(Refusal({"vaciado", "3", "--por", "socio"}), "ambrelio: --por requires N");
}

}  // namespace
}  // namespace ambrelio::cli
