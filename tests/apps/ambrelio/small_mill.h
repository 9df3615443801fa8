// A mill of 3 hoppers and 4 tanks after one morning, for the commands that ask.
//
// Discharge 1 of hopper 1 holds 3000 kg of member 7 and 1000 kg of member 12. It went to tank 3,
// where 500 litres were read; 100 of them were sold, then 50 went to tank 4. Hopper 2 has 500 kg of
// member 12 in its first discharge; hopper 3, tank 1 and tank 2 were never used.
#pragma once

#include <string>
#include <vector>

#include "cli_test.h"

namespace ambrelio::test {

class SmallMillTest : public CliTest {
 protected:
  void SetUp() override {
    SetUpIni("MaxTolvas", "3,1,4");
    static MadeOnce mill;
    mill.PutAt(database(), [this] { Fill(); });
  }

  void Fill() {
    Create();
    const Outcome outcome = Journal(
        R"j({"sql":"insert into SOCIO (CODSOC, NOMSOC) values (7, 'Núñez')"}
{"sql":"insert into SOCIO (CODSOC, NOMSOC) values (12, 'Ana')"}
{"sql":"insert into Clientes (Codigo, Nombre, NIF, Info1, Info2, Info3) values (5, 'Sur, S.A.', 'B23', 'uno', 'dos', 'tres')"}
{"sql":"insert into Clientes (Codigo, Nombre) values (8, 'Ávila')"}
{"sql":"insert into Transportistas (Codigo, Nombre) values (3, 'Rápido')"}
{"m":"2025-11-03 08:00:00","pesada":{"COOPERATIVA":1,"PARTIDA":1,"MEDIANA":0,"CODPRO":1,"CODSOC":7,"TOLVA":1,"PARCIALPESO":3000}}
{"m":"2025-11-03 08:10:00","pesada":{"COOPERATIVA":1,"PARTIDA":2,"MEDIANA":0,"CODPRO":1,"CODSOC":12,"TOLVA":1,"PARCIALPESO":1000}}
{"m":"2025-11-03 08:20:00","pesada":{"COOPERATIVA":1,"PARTIDA":3,"MEDIANA":0,"CODPRO":1,"CODSOC":12,"TOLVA":2,"PARCIALPESO":500}}
{"m":"2025-11-03 09:00:00","call":"Tolva(1).Descargar","args":[3,1]}
{"m":"2025-11-03 10:00:00","call":"Deposito(3).EntradaNivel","args":[null,null,500]}
{"let":"Deposito(3).Nombre","value":"Norte"}
{"let":"Deposito(3).Formula","value":[[100,0,5.25]]}
{"m":"2025-11-03 11:00:00","call":"Deposito(3).NuevoVaciado","args":[0,100,null,[2,"L-1",5,3,"Jaén"]]}
{"m":"2025-11-03 12:00:00","call":"Deposito(3).NuevoVaciado","args":[4,50]}
)j");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
  }

  Outcome Ask(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--app", app});
    return RunCli(std::move(arguments));
  }

  // What a question is answered.
  std::string Out(std::vector<std::string> arguments) {
    const Outcome outcome = Ask(std::move(arguments));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
  }

  // The first line of what a question that makes no sense is told.
  std::string Refusal(std::vector<std::string> arguments) {
    const Outcome outcome = Ask(std::move(arguments));
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.out, "");
    return outcome.err.substr(0, outcome.err.find('\n'));
  }
};

}  // namespace ambrelio::test
