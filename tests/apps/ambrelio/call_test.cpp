#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CallCommand : public test::MillCliTest {
 protected:
  test::Outcome Call(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"call", "--app", app});
    return test::RunCli(std::move(arguments));
  }
  std::string Out(std::vector<std::string> arguments) {
    const auto outcome = Call(std::move(arguments));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.out;
  }
  // Two members' olives, 3:1, discharged into tank 3, which then holds 500 litres.
  void Season() {
    const auto outcome = Journal(
        R"j({"sql":"insert into SOCIO (CODSOC, NOMSOC) values (7, 'Núñez')"}
{"sql":"insert into SOCIO (CODSOC, NOMSOC) values (12, 'Ana')"}
{"m":"2025-11-03 08:00:00","pesada":{"COOPERATIVA":1,"PARTIDA":1,"MEDIANA":0,"CODPRO":1,"CODSOC":7,"TOLVA":1,"PARCIALPESO":3000}}
{"m":"2025-11-03 08:10:00","pesada":{"COOPERATIVA":1,"PARTIDA":2,"MEDIANA":0,"CODPRO":1,"CODSOC":12,"TOLVA":1,"PARCIALPESO":1000}}
{"m":"2025-11-03 09:00:00","call":"Tolva(1).Descargar","args":[3,1]}
{"m":"2025-11-03 10:00:00","call":"Deposito(3).EntradaNivel","args":[null,null,500]}
)j");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
  }
};

TEST_F(CallCommand, PrintsACompositionAsATable) {
  Season();
  EXPECT_EQ(Out({"Deposito(3).Composicion", "1"}),
            "Clave  Nombre      %  Litros\n"
            "-----  ------  -----  ------\n"
            "    7  Núñez   75.00  375.00\n"
            "   12  Ana     25.00  125.00\n");
  EXPECT_THAT(Out({"Tolva(1).Descarga(1).Composicion", "1"}),
              StartsWith("Clave  Nombre      %    Kilos\n"));
}

TEST_F(CallCommand, PrintsAHistoryAsATable) {
  Season();
  EXPECT_EQ(Out({"Deposito(3).Historial"}),
            "Momento              Tipo      Depósito/Tolva  Número\n"
            "-------------------  --------  --------------  ------\n"
            "2025-11-03 09:00:00  Descarga               1       1\n"
            "2025-11-03 10:00:00  Nivel                  3       1\n");
}

TEST_F(CallCommand, PrintsACapacityTable) {
  Journal(R"({"let":"Deposito(1).Formula","value":[[100,0,5.25]]})"
          "\n");
  EXPECT_EQ(Out({"Deposito(1).Formula"}),
            "Nivel  A0    A1  A2  A3\n"
            "-----  --  ----  --  --\n"
            "  100   0  5.25   0   0\n");
}

TEST_F(CallCommand, PrintsPlainValues) {
  Season();
  EXPECT_EQ(Out({"MaximoTolvas"}), "4\n");
  EXPECT_EQ(Out({"BaseAbierta"}), "sí\n");
  EXPECT_EQ(Out({"Deposito(3).LitrosActual"}), "500\n");
  EXPECT_EQ(Out({"Deposito(1).LitrosActual"}), "(nulo)\n");
  EXPECT_EQ(Out({"Deposito(1).Historial"}), "(vacío)\n");
  EXPECT_EQ(Out({"Tolva(9)"}), "(nada)\n");
  EXPECT_EQ(Out({"Tolva(1)"}), "Tolva\n");
  EXPECT_EQ(Out({"Cerrar"}), "");
}

TEST_F(CallCommand, PrintsChangedArguments) {
  EXPECT_EQ(Out({"Tolva(1).Descargar", "3", "1", "2.5"}),
            "sí\n"
            "\n"
            "Argumento  Valor\n"
            "---------  -----\n"
            "qto            1\n");
}

TEST_F(CallCommand, PrintsJson) {
  EXPECT_EQ(Out({"Tolva(1).Descargar", "3", "1", "2.5", "--json"}),
            "{\"result\":true,\"args\":[3,1,1.0]}\n");
}

TEST_F(CallCommand, PrintsAListAsCsv) {
  Season();
  EXPECT_EQ(Out({"Tolva(1).Descarga(1).Composicion", "1", "--csv"}),
            "clave,nombre,porcentaje,kilos\r\n7,Núñez,75,3000\r\n12,Ana,25,1000\r\n");
  EXPECT_EQ(Out({"HistoriaNiveles", "--csv"}),
            "momento,numero,tolva,deposito,kilos,litros,destino\r\n"
            "2025-11-03 10:00:00,1,,3,,500,\r\n");
  EXPECT_EQ(Out({"HistoriaVaciados", "--csv"}),
            "momento,numero,tolva,deposito,kilos,litros,destino,lote,uso,cliente,nombre_cliente,"
            "transportista,nombre_transportista,destino_venta\r\n");
}

TEST_F(CallCommand, PrintsAValueAsCsv) {
  Season();
  EXPECT_EQ(Out({"Deposito(3).LitrosActual", "--csv"}), "resultado\r\n500\r\n");
  EXPECT_EQ(Out({"Deposito(1).LitrosActual", "--csv"}), "resultado\r\n\r\n");
  EXPECT_EQ(Out({"Tolva(1).Descargar", "3", "1", "2.5", "--csv"}), "resultado,qto\r\nsí,1\r\n");
  EXPECT_EQ(Out({"Cerrar", "--csv"}), "");
}

TEST_F(CallCommand, PrintsTheHistoriesOfTheMillAsTables) {
  Season();
  EXPECT_EQ(Out({"HistoriaNiveles"}),
            "Momento              Número  Tolva    Depósito  Kilos    Litros  Destino\n"
            "-------------------  ------  -------  --------  -------  ------  -------\n"
            "2025-11-03 10:00:00       1  (vacío)         3  (vacío)  500.00  (vacío)\n");
}

TEST_F(CallCommand, TakesEveryKindOfArgument) {
  Season();
  EXPECT_EQ(Out({"Deposito(3).EntradaNivel", "2025-11-03T12:00:00", "-1", "480.5"}), "sí\n");
  EXPECT_EQ(Out({"Deposito(3).EntradaNivel", "-", "-", "470"}), "sí\n");
  EXPECT_EQ(Query("select Momento, Nivel, Litros from Niveles where Item=2"),
            R"({"result":[["2025-11-03 12:00:00",null,480.5]]})");
  EXPECT_EQ(Out({"Deposito(3).NuevoVaciado", "0", "50", "-", "--json", R"([2,"007",7,3,"Jaén"])"}),
            "{\"result\":1}\n");
  EXPECT_EQ(Out({"Deposito(3).Vaciado(1).Lote"}), "007\n");
  EXPECT_EQ(Out({"Deposito(3).Vaciado(1).fijarUso", "2", "7", "3", "0042"}), "sí\n");
  EXPECT_EQ(Out({"Deposito(3).Vaciado(1).DestinoVenta"}), "0042\n");
  EXPECT_EQ(Out({"Deposito(3).Vaciado(1).fijarUso", "--", "2", "7", "3", "-dash"}), "sí\n");
  EXPECT_EQ(Out({"Deposito(3).Vaciado(1).DestinoVenta"}), "-dash\n");
}

TEST_F(CallCommand, TakesArgumentsInThePath) {
  EXPECT_EQ(Out({"Tolva(1).Descargar(3, 1, 1)"}), "sí\n");
  const auto twice = Call({"Tolva(1).Descargar(3, 1)", "1"});
  EXPECT_EQ(twice.code, 2);
  EXPECT_THAT(twice.err, HasSubstr("both in the path and beside it"));
}

TEST_F(CallCommand, AnAutomationErrorIsCodeOne) {
  const auto outcome = Call({"Deposito(99).Nombre"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, StartsWith("ambrelio: error 91: "));
}

TEST_F(CallCommand, AnAutomationErrorIsAlsoALineOfJson) {
  const auto outcome = Call({"Tolva", "--json", "x"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.out, StartsWith(R"({"error":13,"description":")"));
  EXPECT_THAT(outcome.err, StartsWith("ambrelio: error 13: "));
}

TEST_F(CallCommand, ABrokenPathIsCodeTwo) {
  const auto outcome = Call({"Tolva(2"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err, "ambrelio: at position 8 of the path: ')' is missing\n");
}

TEST_F(CallCommand, ABrokenListIsCodeTwo) {
  const auto outcome = Call({"Deposito(3).NuevoVaciado", "0", "50", "-", "[2,"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.err, HasSubstr("not JSON"));
}

}  // namespace
}  // namespace ambrelio::cli
