#include "small_mill.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class HistoriaCommand : public test::SmallMillTest {
 protected:
  // How many rows a history has.
  size_t Rows(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "historia");
    arguments.push_back("--csv");
    return test::LinesOf(Out(std::move(arguments))).size() - 1;
  }
};

TEST_F(HistoriaCommand, PrintsDischarges) {
  EXPECT_EQ(Out({"historia", "descargas"}),
            "Momento              Número  Tolva  Depósito    Kilos\n"
            "-------------------  ------  -----  --------  -------\n"
            "2025-11-03 09:00:00       1      1         3  4000.00\n"
            "2025-11-03 09:00:00       1      1         4  4000.00\n");
}

TEST_F(HistoriaCommand, PrintsReadings) {
  EXPECT_EQ(Out({"historia", "niveles"}),
            "Momento              Número  Depósito  Litros\n"
            "-------------------  ------  --------  ------\n"
            "2025-11-03 10:00:00       1         3  500.00\n");
  EXPECT_EQ(Out({"historia", "niveles", "--json"}),
            R"([{"momento":"2025-11-03 10:00:00","numero":1,"deposito":3,"litros":500.0}])"
            "\n");
}

TEST_F(HistoriaCommand, PrintsEmptyings) {
  EXPECT_EQ(Out({"historia", "vaciados", "--csv"}), Out({"vaciado", "3", "--csv"}));
}

TEST_F(HistoriaCommand, PrintsSaleDestinations) {
  EXPECT_EQ(Out({"historia", "destinos"}), "Destino de venta\n----------------\nJaén\n");
  EXPECT_EQ(Out({"historia", "destinos", "--csv"}), "destino_venta\r\nJaén\r\n");
}

TEST_F(HistoriaCommand, BeginsAtAMoment) {
  EXPECT_EQ(Rows({"vaciados", "--desde", "2025-11-03"}), 2U);
  EXPECT_EQ(Rows({"vaciados", "--desde", "2025-11-03 11:00:00"}), 2U);
  EXPECT_EQ(Rows({"vaciados", "--desde", "2025-11-03 11:00:01"}), 1U);
  EXPECT_EQ(Rows({"niveles", "--desde", "2025-11-04"}), 0U);
  EXPECT_EQ(Rows({"descargas", "--desde", "2025-11-03 09:00:01"}), 0U);
}

TEST_F(HistoriaCommand, EndsWithADay) {
  EXPECT_EQ(Rows({"vaciados", "--hasta", "2025-11-02"}), 0U);
  EXPECT_EQ(Rows({"vaciados", "--hasta", "2025-11-03"}), 2U);
  EXPECT_EQ(Rows({"vaciados", "--hasta", "2025-11-03 00:00:00"}), 2U);
  EXPECT_EQ(Rows({"descargas", "--hasta", "2025-11-02"}), 0U);
  EXPECT_EQ(Rows({"niveles", "--hasta", "2025-11-03"}), 1U);
}

TEST_F(HistoriaCommand, IsLimitedToATankOrHopper) {
  EXPECT_EQ(Rows({"descargas", "--deposito", "4"}), 1U);
  EXPECT_EQ(Rows({"descargas", "--tolva", "2"}), 0U);
  EXPECT_EQ(Rows({"descargas", "--tolva", "1", "--deposito", "3"}), 1U);
  EXPECT_EQ(Rows({"niveles", "--deposito", "3"}), 1U);
  EXPECT_EQ(Rows({"niveles", "--deposito", "4"}), 0U);
  EXPECT_EQ(Rows({"vaciados", "--deposito", "4"}), 0U);
}

TEST_F(HistoriaCommand, RefusesWhatIsNoDate) {
  for (const char* const text : {"2025-02-30", "3/11/2025", "2025-11-03 25:00:00", "ayer", ""}) {
    EXPECT_EQ(Refusal({"historia", "niveles", "--desde", text}),
              "ambrelio: --desde: '" + std::string(text) +
                  "' is no date; dates are YYYY-MM-DD or YYYY-MM-DD HH:MM:SS");
  }
  EXPECT_THAT(Refusal({"historia", "niveles", "--hasta", "2025"}), HasSubstr("--hasta: '2025'"));
}

TEST_F(HistoriaCommand, RefusesOptionsThatAKindDoesNotTake) {
  EXPECT_EQ(Refusal({"historia", "niveles", "--tolva", "1"}),
            "ambrelio: historia niveles does not take --tolva");
  EXPECT_EQ(Refusal({"historia", "vaciados", "--tolva", "1"}),
            "ambrelio: historia vaciados does not take --tolva");
  EXPECT_EQ(Refusal({"historia", "destinos", "--desde", "2025-11-03"}),
            "ambrelio: historia destinos does not take --desde");
  EXPECT_EQ(Refusal({"historia", "destinos", "--hasta", "2025-11-03"}),
            "ambrelio: historia destinos does not take --hasta");
  EXPECT_EQ(Refusal({"historia", "destinos", "--deposito", "1"}),
            "ambrelio: historia destinos does not take --deposito");
}

TEST_F(HistoriaCommand, RefusesWhatTheMillDoesNotHave) {
  EXPECT_EQ(Refusal({"historia", "descargas", "--tolva", "4"}),
            "ambrelio: the mill has no hopper 4 (--tolva); its hoppers are 1 to 3");
  EXPECT_EQ(Refusal({"historia", "vaciados", "--deposito", "0"}),
            "ambrelio: the mill has no tank 0 (--deposito); its tanks are 1 to 4");
  EXPECT_EQ(Refusal({"historia", "ventas"}),
            "ambrelio: KIND: ventas not in {descargas,niveles,vaciados,destinos}");
}

TEST_F(HistoriaCommand, AClientThatWasDeletedIsCodeOne) {
  Journal("{\"sql\":\"delete from Clientes\"}\n");
  const auto outcome = Ask({"historia", "vaciados"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, testing::StartsWith("ambrelio: error 91: "));
}

}  // namespace
}  // namespace ambrelio::cli
