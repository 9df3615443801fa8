#include "ambrelio/value/automation_error.h"
#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class JournalReplay : public test::MillCliTest {
 protected:
  // A weighing of 1000 kg at 8:00 in a hopper.
  static std::string Weighing(int lot, int hopper, const std::string& more = "") {
    return R"({"m":"2025-11-03 08:00:00","pesada":{"COOPERATIVA":1,"PARTIDA":)" +
           std::to_string(lot) + R"(,"MEDIANA":0,"CODPRO":1,"TOLVA":)" + std::to_string(hopper) +
           R"(,"PARCIALPESO":1000.0)" + more + "}}\n";
  }
};

TEST_F(JournalReplay, StoresAWeighingInTheCurrentDischarge) {
  const auto outcome =
      Journal(Weighing(1, 2) +
              R"({"m":"2025-11-03 09:00:00","call":"Tolva(2).Descargar","args":[3,1]})"
              "\n" +
              Weighing(2, 2));
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":true})", R"({"result":true})", R"({"result":true})"));
  EXPECT_EQ(Query("select PARTIDA, TOLVA, DESCARGA, H_INICIO from PESADA order by PARTIDA"),
            R"({"result":[[1,2,1,"2025-11-03 08:00:00"],[2,2,2,"2025-11-03 08:00:00"]]})");
}

TEST_F(JournalReplay, AWeighingInAnIntermediateHopperHasNoDischarge) {
  Journal(Weighing(1, -2));
  EXPECT_EQ(Query("select TOLVA, DESCARGA from PESADA"), R"({"result":[[-2,0]]})");
}

TEST_F(JournalReplay, AWeighingKeepsItsApostrophes) {
  Journal(Weighing(1, 1, R"(,"PARAJE":"Pago d'en 'Mig'")"));
  EXPECT_EQ(Query("select PARAJE from PESADA"), R"({"result":[["Pago d'en 'Mig'"]]})");
}

TEST_F(JournalReplay, AWeighingStoredTwiceIsAnError) {
  const auto outcome = Journal(Weighing(1, 1) + Weighing(1, 1));
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":true})", StartsWith(R"({"error":3022,"description":")")));
}

TEST_F(JournalReplay, AWeighingWithAnUnknownColumnIsAnErrorAndStoresNothing) {
  EXPECT_THAT(Result(R"({"pesada":{"PARTIDA":1,"TOLVA":1,"PESO":5}})"),
              StartsWith(R"({"error":3265,)"));
  EXPECT_EQ(Query("select * from PESADA"), R"({"result":[]})");
  EXPECT_EQ(Query("select * from Descargas"), R"({"result":[]})");
}

TEST_F(JournalReplay, TheClockShowsTheMomentOfTheLine) {
  Journal(R"({"m":"2025-11-03 09:00:00","call":"Tolva(1).DescargaEnCurso"})"
          "\n");
  EXPECT_EQ(Result(R"({"call":"Tolva(1).MomentoInicio"})"), R"({"result":"2025-11-03 09:00:00"})");
}

TEST_F(JournalReplay, WithoutAMomentTheClockIsTheSystems) {
  Journal(R"({"m":"2025-11-03 09:00:00","call":"BaseAbierta"}
{"call":"Tolva(1).DescargaEnCurso"}
)");
  EXPECT_EQ(Query("select count(*) from Descargas where MomentoDesde > #1/1/2026#"),
            R"({"result":[[1]]})");
}

TEST_F(JournalReplay, GivesEveryKindOfResult) {
  EXPECT_EQ(Result(R"({"call":"Trazabilidad.MaximoTolvas"})"), R"({"result":4})");
  EXPECT_EQ(Result(R"({"call":"BaseAbierta"})"), R"({"result":true})");
  EXPECT_EQ(Result(R"({"call":"Deposito(1).Nombre"})"), R"({"result":""})");
  EXPECT_EQ(Result(R"({"call":"Deposito(1).Historial"})"), R"({"result":{"empty":true}})");
  EXPECT_EQ(Result(R"({"call":"Deposito(1).LitrosActual"})"), R"({"result":null})");
  EXPECT_EQ(Result(R"({"call":"Deposito(1).KilosActual"})"), R"({"result":0.0})");
  EXPECT_EQ(Result(R"j({"call":"Tolva(9)"})j"), R"({"result":{"nothing":true}})");
  EXPECT_EQ(Result(R"({"call":"Tolva","args":[1]})"), R"({"result":{"object":"Tolva"}})");
  EXPECT_EQ(Result(R"({"call":"Cerrar"})"), R"({"result":{"empty":true}})");
}

TEST_F(JournalReplay, PrintsAllArgumentsWhenOneChanged) {
  EXPECT_EQ(Result(R"({"call":"Tolva(1).Descargar","args":[3,1,2.5]})"),
            R"({"result":true,"args":[3,1,1.0]})");
  EXPECT_EQ(Result(R"({"call":"Tolva(2).Descargar","args":[3,1,1]})"), R"({"result":true})");
}

TEST_F(JournalReplay, AnArgumentLeftOutIsNeverWrittenBack) {
  EXPECT_EQ(Result(R"({"call":"Tolva(1).Descargar","args":[3,1,null]})"), R"({"result":true})");
}

TEST_F(JournalReplay, OutputsMayBeLeftOut) {
  const std::string emptied = R"({"result":1,"args":[null,null,"2025-11-03 09:00:00"]})";
  Journal(R"({"m":"2025-11-03 09:00:00","call":"Tolva(1).Descargar","args":[3,1]}
)");
  EXPECT_EQ(Result(R"({"call":"Deposito(3).UltimoMovimiento"})"), emptied);
  EXPECT_EQ(Result(R"({"call":"Deposito(3).UltimoMovimiento","args":[null,null,null]})"), emptied);
}

TEST_F(JournalReplay, TextIsADateWhereOneIsWanted) {
  Journal(R"({"m":"2025-11-03 09:00:00","call":"Tolva(1).Descargar","args":[3,1]}
{"call":"Deposito(3).EntradaNivel","args":["2025-11-03 10:00:00",null,500]}
{"let":"Deposito(3).Nivel(1).Momento","value":"2025-11-03 11:00:00"}
)");
  EXPECT_EQ(Query("select Momento, Litros from Niveles"),
            R"({"result":[["2025-11-03 11:00:00",500.0]]})");
}

TEST_F(JournalReplay, TextThatLooksLikeADateStaysTextWhereTextIsWanted) {
  EXPECT_EQ(Result(R"({"let":"Deposito(3).Nombre","value":"2025-11-03 10:00:00"})"),
            R"({"result":{"empty":true}})");
  EXPECT_EQ(Query("select Nombre from Depositos"), R"({"result":[["2025-11-03 10:00:00"]]})");
}

TEST_F(JournalReplay, ListsGoInAndComeOut) {
  EXPECT_EQ(Result(R"({"let":"Deposito(1).Formula","value":[[100,0,5],[200,1,2,3,4]]})"),
            R"({"result":{"empty":true}})");
  EXPECT_EQ(Result(R"({"call":"Deposito(1).Formula"})"),
            R"({"result":[[100.0,0.0,5.0,0.0,0.0],[200.0,1.0,2.0,3.0,4.0]]})");
  EXPECT_EQ(Result(R"({"let":"Deposito(1).Formula","value":null})"),
            R"({"result":{"empty":true}})");
  EXPECT_EQ(Result(R"({"call":"Deposito(1).Formula"})"), R"({"result":{"empty":true}})");
}

TEST_F(JournalReplay, ASelectGivesRowsAndAnActionItsCount) {
  EXPECT_EQ(Result(R"j({"sql":"insert into SOCIO (CODSOC, NOMSOC) values (1, 'Ana')"})j"),
            R"({"result":1})");
  EXPECT_EQ(Result(R"({"sql":"select CODSOC, NOMSOC, Null as n from SOCIO"})"),
            R"({"result":[[1,"Ana",null]]})");
  EXPECT_EQ(Result(R"({"sql":"\t DELETE from SOCIO where CODSOC=2"})"), R"({"result":0})");
  EXPECT_EQ(Result(R"({"sql":"SOCIO"})"), R"({"result":[[1,"Ana"]]})");
}

TEST_F(JournalReplay, AnErrorIsAResultAndNotAStop) {
  const auto outcome = Journal(R"({"call":"Deposito(99).Nombre"}
{"call":"Nada"}
{"call":"Tolva","args":["x"]}
{"call":"Tolva"}
{"call":"Tolva","args":[null]}
{"sql":"select * from Nada"}
{"call":"MaximoTolvas"}
)");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.lines(),
              ElementsAre(StartsWith(R"({"error":91,"description":")"),
                          StartsWith(R"({"error":438,)"), StartsWith(R"({"error":13,)"),
                          StartsWith(R"({"error":450,)"), StartsWith(R"({"error":449,)"),
                          StartsWith(R"({"error":3078,)"), R"({"result":4})"));
}

TEST_F(JournalReplay, AKeptObjectIsWhereLaterPathsStart) {
  const auto outcome = Journal(R"j({"call":"Deposito(3)","as":"d"}
{"let":"d.Nombre","value":"Norte"}
{"m":"2025-11-03 09:00:00","call":"Tolva(1).Descargar(3,1)"}
{"call":"D.EntradaNivel","args":["2025-11-03 10:00:00",null,500]}
{"call":"d.Nivel(1).Litros"}
{"call":"d.Nombre"}
)j");
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":{"object":"Deposito"}})", R"({"result":{"empty":true}})",
                          R"({"result":true})", R"({"result":true})", R"({"result":500.0})",
                          R"({"result":"Norte"})"));
  EXPECT_EQ(Query("select Codigo, Nombre from Depositos"), R"({"result":[[3,"Norte"]]})");
}

TEST_F(JournalReplay, AKeptObjectIsTheSameEveryTime) {
  const auto outcome = Journal(R"j({"call":"NuevoReferente(1)","as":"r"}
{"let":"r.Nombre","value":"Aceites"}
{"let":"r.Info(2)","value":"mornings"}
{"let":"r.Info(9)","value":"nowhere"}
{"call":"r.Info(2)"}
{"call":"GuardarReferente","args":[1,{"ref":"r"}]}
)j");
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":{"object":"Referente"}})", R"({"result":{"empty":true}})",
                          R"({"result":{"empty":true}})", R"({"result":{"empty":true}})",
                          R"({"result":"mornings"})", R"({"result":true})"));
  EXPECT_EQ(Query("select Codigo, Nombre, Info1, Info2 from Clientes"),
            R"({"result":[[1,"Aceites",null,"mornings"]]})");
}

TEST_F(JournalReplay, AKeptValueGoesWhereValuesGo) {
  const auto outcome = Journal(R"j({"call":"MaximoTolvas","as":"n"}
{"let":"Deposito(1).Nombre","value":{"ref":"n"}}
{"let":"Deposito(1).Formula","value":[[{"ref":"N"},1],[200,{"ref":"n"}]]}
{"call":"Deposito(1).Formula","as":"f"}
{"let":"Deposito(2).Formula","value":{"ref":"f"}}
{"call":"Deposito(2).Formula"}
{"call":"Tolva","args":[{"ref":"n"}],"as":"n"}
{"call":"n.DescargaEnCurso"}
)j");
  const std::string formula = R"({"result":[[4.0,1.0,0.0,0.0,0.0],[200.0,4.0,0.0,0.0,0.0]]})";
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":4})", R"({"result":{"empty":true}})",
                          R"({"result":{"empty":true}})", formula, R"({"result":{"empty":true}})",
                          formula, R"({"result":{"object":"Tolva"}})", R"({"result":1})"));
  EXPECT_EQ(Query("select Nombre from Depositos"), R"({"result":[["4"]]})");
}

TEST_F(JournalReplay, AKeptMomentStaysADate) {
  const auto outcome = Journal(R"j({"m":"2025-11-03 09:00:00","call":"Tolva(1).Descargar(3,1)"}
{"m":"2025-11-03 10:00:00","call":"Tolva(2).DescargaEnCurso"}
{"call":"Tolva(2).MomentoInicio","as":"t"}
{"call":"Deposito(3).EntradaNivel","args":[{"ref":"t"},null,500]}
{"call":"Deposito(3).Nivel(1).Momento"}
)j");
  const std::string moment = R"({"result":"2025-11-03 10:00:00"})";
  EXPECT_THAT(outcome.lines(), ElementsAre(R"({"result":true})", R"({"result":1})", moment,
                                           R"({"result":true})", moment));
}

TEST_F(JournalReplay, ANameThatKeepsNothingIsAnError) {
  const auto outcome = Journal(R"j({"call":"r.Nombre"}
{"let":"r.Nombre","value":1}
{"let":"Deposito(1).Nombre","value":{"ref":"r"}}
{"call":"Tolva","args":[[{"ref":"r"}]]}
{"call":"r.Nombre","as":"r"}
)j");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.lines(),
              testing::AllOf(testing::SizeIs(5),
                             testing::Each(R"({"error":424,"description":"Object required: r"})")));
}

TEST_F(JournalReplay, OnlyAKeptObjectLeadsOn) {
  const auto outcome = Journal(R"j({"call":"Tolva(99)","as":"t"}
{"call":"t.Kilos"}
{"call":"MaximoTolvas","as":"t"}
{"call":"t.Kilos"}
{"call":"t.Kilos.More"}
)j");
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":{"nothing":true}})", StartsWith(R"({"error":91,)"),
                          R"({"result":4})", StartsWith(R"({"error":424,)"),
                          StartsWith(R"({"error":424,)")));
}

TEST_F(JournalReplay, ACallThatFailsForgetsWhatWasKept) {
  const std::string keep = "{\"call\":\"Deposito(3)\",\"as\":\"d\"}\n";
  const std::string use = "{\"let\":\"d.Nombre\",\"value\":\"Wrong\"}\n";
  for (const char* failing :
       {R"({"call":"Deposito","as":"d"})", R"j({"call":"Deposito(99).Vaciado(1)","as":"D"})j",
        R"({"call":"Deposito","args":[{"ref":"x"}],"as":"d"})", R"({"call":"d.Nada","as":"d"})"}) {
    const auto outcome = Journal(keep + failing + "\n" + use);
    ASSERT_EQ(outcome.lines().size(), 3U);
    EXPECT_THAT(outcome.lines()[1], StartsWith(R"({"error":)"));
    EXPECT_THAT(outcome.lines()[2], StartsWith(R"({"error":424,)")) << failing;
  }
  EXPECT_EQ(Query("select * from Depositos"), R"({"result":[]})");
}

TEST_F(JournalReplay, NamesEndWithTheReplay) {
  Journal(R"j({"call":"Deposito(3)","as":"d"})j");
  EXPECT_THAT(Result(R"({"call":"d.Nombre"})"), StartsWith(R"({"error":424,)"));
}

TEST_F(JournalReplay, ALetWithTheWrongNumberOfIndicesIsAnError) {
  const auto outcome = Journal(R"j({"call":"NuevoReferente(1)","as":"r"}
{"let":"r.Info","value":"x"}
{"let":"r.Info(1,2)","value":"x"}
{"let":"r.Nombre(1)","value":"x"}
{"let":"r.Info()","value":"x"}
)j");
  ASSERT_EQ(outcome.lines().size(), 5U);
  for (size_t i = 1; i < 5; ++i) {
    EXPECT_THAT(outcome.lines()[i], StartsWith(R"({"error":450,)")) << i;
  }
}

TEST_F(JournalReplay, AWaitDeliversWhatIsDueWithinIt) {
  ManualTicks ticks;
  const auto events = std::make_shared<EventLoop>(ticks);
  int delivered = 0;
  events->StartTimer(Milliseconds(300), [&] { ++delivered; });
  events->StartTimer(Milliseconds(301), [&] { ++delivered; });
  const auto outcome =
      test::RunCli({"journal", "--app", app, "-"}, "{\"wait\":0}\n{\"wait\":300}\n", events);
  EXPECT_EQ(outcome.out, "{\"result\":{\"empty\":true}}\n{\"result\":{\"empty\":true}}\n");
  EXPECT_EQ(delivered, 1);
  EXPECT_EQ(ticks.Now(), Milliseconds(300));
}

TEST_F(JournalReplay, AnErrorOutOfTheEventsIsTheResultOfTheWait) {
  ManualTicks ticks;
  const auto events = std::make_shared<EventLoop>(ticks);
  events->StartTimer(Milliseconds(1), [] { throw AutomationError(11001, "Test", "No host."); });
  const auto outcome =
      test::RunCli({"journal", "--app", app, "-"}, "{\"wait\":2}\n{\"wait\":2}\n", events);
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.lines(), ElementsAre(R"({"error":11001,"description":"No host."})",
                                           R"({"result":{"empty":true}})"));
}

TEST_F(JournalReplay, ResultsAreWrittenBeforeTheWait) {
  ManualTicks ticks;
  std::istringstream in("{\"call\":\"MaximoTolvas\"}\n{\"wait\":5}\n");
  std::ostringstream out;
  std::ostringstream err;
  Console console{in, out, err};
  console.events = std::make_shared<EventLoop>(ticks);
  std::string before;
  console.events->StartTimer(Milliseconds(5), [&] { before = out.str(); });
  EXPECT_EQ(cli::Run({"journal", "--app", app, "-"}, console), ExitCode::kSuccess);
  EXPECT_EQ(before, "{\"result\":4}\n");
}

TEST_F(JournalReplay, StartsASeasonWithOrWithoutATilde) {
  const auto outcome = Journal(R"({"call":"Tolva(1).DescargaEnCurso"}
{"call":"IniciarCampaña"}
{"call":"INICIARCAMPAÑA"}
{"call":"IniciarCampana"}
{"call":"Trazabilidad.iniciarcampana"}
)");
  EXPECT_THAT(outcome.lines(),
              ElementsAre(R"({"result":1})", R"({"result":true})", R"({"result":true})",
                          R"({"result":true})", R"({"result":true})"));
  EXPECT_EQ(Query("select * from Descargas"), R"({"result":[]})");
}

TEST_F(JournalReplay, AMalformedLineStopsWithItsNumber) {
  const auto outcome = Journal(R"({"call":"MaximoTolvas"}

{"call":"Tolva(1"}
{"call":"MaximoTolvas"}
)");
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "{\"result\":4}\n");
  EXPECT_THAT(outcome.err, StartsWith("standard input:3: at position 8 of the path"));
}

TEST_F(JournalReplay, KeepGoingPassesMalformedLinesByAndStillFails) {
  const auto outcome = Journal(R"({"call":"MaximoTolvas"}
nonsense
{"call":"MaximoTolvas","mistake":1}
{"call":"BaseAbierta"}
)",
                               {"--keep-going"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "{\"result\":4}\n{\"result\":true}\n");
  EXPECT_THAT(test::LinesOf(outcome.err),
              ElementsAre(StartsWith("standard input:2: "), StartsWith("standard input:3: ")));
}

TEST_F(JournalReplay, NothingOfAMalformedLineIsCarriedOut) {
  Journal(R"({"call":"Tolva(1).Descargar","args":[3,1],"m":"yesterday"})");
  EXPECT_EQ(Query("select * from Descargas"), R"({"result":[]})");
}

TEST_F(JournalReplay, EmptyLinesAndLineEndsOfOtherSystemsAreFine) {
  const auto outcome =
      Journal("\xEF\xBB\xBF{\"call\":\"MaximoTolvas\"}\r\n\r\n  \n{\"call\":\"MaximoTolvas\"}");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.lines().size(), 2U);
}

TEST_F(JournalReplay, AVeryLongLineIsFine) {
  std::string rows;
  for (int i = 1; i <= 20000; ++i) rows += "[" + std::to_string(i) + ",0,0,0,0.0001],";
  const std::string blanks(1 << 20, ' ');
  EXPECT_EQ(Result(R"({"call":"MaximoTolvas",)" + blanks + R"("args":[]})"), R"({"result":4})");
  EXPECT_EQ(Result("{\"sql\":\"select 1\"" + blanks + "}"), R"({"result":[[1]]})");
  EXPECT_THAT(Result("{\"call\":\"MaximoTolvas\",\"args\":[[" + rows + "0]]}"),
              StartsWith(R"({"error":450)"));
}

TEST_F(JournalReplay, ReadsAFile) {
  const std::string file = folder.File("events.jsonl");
  test::WriteText(file, "{\"call\":\"MaximoTolvas\"}\n{");
  const auto outcome = test::RunCli({"journal", "--app", app, file});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "{\"result\":4}\n");
  EXPECT_THAT(outcome.err, StartsWith(file + ":2: not JSON"));
}

TEST_F(JournalReplay, AMissingFileIsAFileProblem) {
  const auto outcome = test::RunCli({"journal", "--app", app, folder.File("none")});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("cannot be read: No such file"));
}

TEST_F(JournalReplay, AFolderIsNoJournal) {
  const auto outcome = test::RunCli({"journal", "--app", app, app});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("Is a directory"));
}

TEST_F(JournalReplay, OutputThatFailsStopsTheReplay) {
  std::istringstream in(
      "{\"call\":\"Tolva(1).DescargaEnCurso\"}\n{\"call\":\"Tolva(2).DescargaEnCurso\"}\n");
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  std::ostringstream err;
  Console console{in, out, err};
  EXPECT_EQ(cli::Run({"journal", "--app", app, "-"}, console), ExitCode::kFileProblem);
  EXPECT_THAT(err.str(), HasSubstr("cannot be written to standard output"));
  EXPECT_EQ(Query("select Tolva from Descargas"), R"({"result":[[1]]})");
}

TEST_F(JournalReplay, ShowsProgressOnATerminal) {
  std::string lines;
  for (int i = 0; i < 250; ++i) lines += "{\"call\":\"MaximoTolvas\"}\n";
  std::istringstream in(lines);
  std::ostringstream out;
  std::ostringstream err;
  Console console{in, out, err, /*shows_progress=*/true};
  EXPECT_EQ(cli::Run({"journal", "--app", app, "-"}, console), ExitCode::kSuccess);
  EXPECT_THAT(err.str(), HasSubstr("\r200 lines"));
  EXPECT_TRUE(err.str().ends_with("\r\x1b[K")) << "the line is cleared at the end";
}

}  // namespace
}  // namespace ambrelio::cli
