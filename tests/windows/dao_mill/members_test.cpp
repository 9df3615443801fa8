// The members of the library over DAO: what they ask it for, and what is left where it fails.
#include <gmock/gmock.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "ambrelio/hoppers/descarga.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/hoppers/tva_inter.h"
#include "ambrelio/referents/referente.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/nivel.h"
#include "ambrelio/tanks/vaciado.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::StartsWith;

constexpr int kLocked = 3218;

class DaoMill : public test::MillTest {
 protected:
  // Two hoppers with weighings; hopper 1 discharged into tank 3, which was read and then emptied
  // into tank 5; an intermediate hopper with a weighing; client 7.
  void SetUp() override {
    MillTest::SetUp();
    Weigh({.lot = 1});
    Weigh({.lot = 2, .hopper = 2});
    Weigh({.lot = 3, .hopper = -1, .discharge = 0});
    clock.Set(test::At("2026-11-15 10:00:00"));
    ASSERT_TRUE(root.Tolva(1)->Descargar(3, 1));
    Weigh({.lot = 4, .discharge = 2});
    clock.Set(test::At("2026-11-15 11:00:00"));
    ASSERT_TRUE(root.Deposito(3)->EntradaNivel(Variant(), 10, 500.0));
    clock.Set(test::At("2026-11-15 12:00:00"));
    double litres = 100;
    ASSERT_EQ(root.Deposito(3)->NuevoVaciado(5, litres), 1);
    ASSERT_TRUE(root.GuardarReferente(1, Client(7)));
    clock.Set(test::At("2026-11-15 13:00:00"));
    // The tool objects and the first opening have made all that stays.
    Reopen();
  }

  std::shared_ptr<Referente> Client(int32_t code) {
    auto client = root.NuevoReferente(1);
    client->SetCodigo(code);
    client->SetNombre("Cliente " + std::to_string(code));
    return client;
  }

  std::vector<std::string> Asked(const std::function<void()>& action) {
    stand_in.Record();
    action();
    return stand_in.Calls();
  }
  // Those to the workspace and the database, without the reading of rows.
  std::vector<std::string> Statements(const std::function<void()>& action) {
    std::vector<std::string> statements = Asked(action);
    std::erase_if(statements, [](const std::string& call) {
      return !call.starts_with("DAO.Workspace") && !call.starts_with("DAO.Database");
    });
    return statements;
  }

  test::StandIn& stand_in = test::TheStandIn();
};

struct Member {
  const char* name;
  std::function<void(Trazabilidad&)> call;

  friend void PrintTo(const Member& member, std::ostream* out) { *out << member.name; }
};

const Member kMembers[] = {
    {"TolvaMomentoInicio", [](Trazabilidad& root) { root.Tolva(1)->MomentoInicio(); }},
    {"TolvaDescargaEnCurso", [](Trazabilidad& root) { root.Tolva(4)->DescargaEnCurso(); }},
    {"TolvaDescargar", [](Trazabilidad& root) { root.Tolva(1)->Descargar(4, 1); }},
    {"TolvaDescargarUnaParte",
     [](Trazabilidad& root) {
       double half = 0.5;
       root.Tolva(2)->Descargar(4, 1, half);
     }},
    {"TolvaRestaurarCarga", [](Trazabilidad& root) { root.Tolva(1)->RestaurarCarga(); }},
    {"TolvaDescarga", [](Trazabilidad& root) { root.Tolva(1)->Descarga(1)->Kilos(); }},
    {"TolvaPartidas", [](Trazabilidad& root) { root.Tolva(1)->Partidas(); }},
    {"TolvaAcumulado", [](Trazabilidad& root) { root.Tolva(1)->Acumulado(); }},
    {"TolvaComposicion", [](Trazabilidad& root) { root.Tolva(1)->Composicion(1); }},
    {"DescargaMomentos", [](Trazabilidad& root) { root.Tolva(1)->Descarga(1)->MomentoHasta(); }},
    {"DescargaComposicion", [](Trazabilidad& root) { root.Tolva(1)->Descarga(1)->Composicion(4); }},
    {"TvaInterDescargarEn", [](Trazabilidad& root) { root.TvaInter(1)->DescargarEn(1); }},
    {"TvaInterAcumulado", [](Trazabilidad& root) { root.TvaInter(1)->Acumulado(); }},
    {"Trasegar", [](Trazabilidad& root) { root.Trasegar(1, 2, 0.5); }},
    {"DepositoNombre",
     [](Trazabilidad& root) {
       root.Deposito(3)->SetNombre("Norte");
       root.Deposito(3)->Nombre();
     }},
    {"DepositoFormula",
     [](Trazabilidad& root) {
       root.Deposito(3)->SetFormula(Variant::Array{Variant::Array{10.0, 1.0, 2.0, 3.0, 4.0}});
       root.Deposito(3)->Formula();
       root.Deposito(3)->Capacidad(5);
     }},
    {"DepositoEntradaNivel",
     [](Trazabilidad& root) { root.Deposito(3)->EntradaNivel(Variant(), 20, 700.0); }},
    {"DepositoEntradaDensidad", [](Trazabilidad& root) { root.Deposito(3)->EntradaDensidad(0.9); }},
    {"DepositoEliminarUltimoNivel",
     [](Trazabilidad& root) { root.Deposito(3)->EliminarUltimoNivel(); }},
    {"DepositoActual",
     [](Trazabilidad& root) {
       root.Deposito(3)->NivelActual();
       root.Deposito(3)->LitrosActual();
       root.Deposito(3)->KilosActual();
     }},
    {"DepositoNuevoVaciado",
     [](Trazabilidad& root) {
       double litres = 50;
       root.Deposito(3)->NuevoVaciado(6, litres);
     }},
    {"DepositoNuevoVaciadoVenta",
     [](Trazabilidad& root) {
       double litres = 50;
       const Variant sale = Variant::Array{int16_t{2}, "L-1", int32_t{7}, int32_t{7}, "Jaén"};
       root.Deposito(3)->NuevoVaciado(0, litres, Variant(), sale);
     }},
    {"DepositoDeshacerVaciado", [](Trazabilidad& root) { root.Deposito(3)->DeshacerVaciado(); }},
    {"DepositoHistorial", [](Trazabilidad& root) { root.Deposito(3)->Historial(); }},
    {"DepositoComposicion", [](Trazabilidad& root) { root.Deposito(3)->Composicion(5); }},
    {"VaciadoUso",
     [](Trazabilidad& root) {
       const auto emptying = root.Deposito(3)->Vaciado(1);
       emptying->FijarUso(1, 0, 0, "");
       emptying->SetLote("L-2");
     }},
    {"VaciadoMomento",
     [](Trazabilidad& root) {
       root.Deposito(3)->Vaciado(1)->SetMomento(test::At("2026-11-15 12:30:00"));
     }},
    {"VaciadoComposicion",
     [](Trazabilidad& root) { root.Deposito(3)->Vaciado(1)->Composicion(1); }},
    {"Nivel",
     [](Trazabilidad& root) {
       const auto reading = root.Deposito(3)->Nivel(1);
       reading->SetMomento(test::At("2026-11-15 11:30:00"));
       reading->SetNivel(11);
       reading->SetLitros(510);
     }},
    {"Referente",
     [](Trazabilidad& root) {
       const auto client = root.UnReferente(1, 7);
       client->SetNIF("12345678Z");
       root.GuardarReferente(1, client);
       root.ListaReferentes(1, 1);
     }},
    {"ReferenteNuevo",
     [](Trazabilidad& root) {
       const auto client = root.NuevoReferente(1);
       client->SetNombre("Cliente " + std::to_string(client->Codigo()));
       root.GuardarReferente(1, client);
     }},
    {"ReferenteEliminar", [](Trazabilidad& root) { root.EliminarReferente(1, 7); }},
    {"Historias",
     [](Trazabilidad& root) {
       root.HistoriaDescargas();
       root.HistoriaNiveles();
       root.HistoriaVaciados();
       root.ListaDestinoVenta();
     }},
    {"IniciarCampana", [](Trazabilidad& root) { root.IniciarCampana(); }},
};

class DaoMember : public DaoMill, public ::testing::WithParamInterface<Member> {};

INSTANTIATE_TEST_SUITE_P(Library, DaoMember, ::testing::ValuesIn(kMembers),
                         [](const auto& member) { return std::string(member.param.name); });

// DAO fails at the member's first call to it, its second, and so on: the failure comes out as it
// was, the next opening finds a database as good as ever, and nothing of DAO's is still held.
TEST_P(DaoMember, FailsCleanlyAtEveryCall) {
  const int living = stand_in.Living();
  size_t calls = 0;
  for (int failing = 1;; ++failing) {
    stand_in.Record();
    stand_in.FailAt(failing, kLocked);
    std::string description;
    const int error = ErrorOf([&] {
      try {
        GetParam().call(root);
      } catch (const AutomationError& raised) {
        description = raised.description();
        throw;
      }
    });
    stand_in.FailAt(0, 0);
    calls = stand_in.Calls().size();
    if (calls < static_cast<size_t>(failing)) {
      EXPECT_EQ(error, 0) << description;
      break;
    }
    EXPECT_EQ(error, kLocked) << "at call " << failing;
    EXPECT_EQ(description, "A failure made for the test.") << "at call " << failing;
    Reopen();
    EXPECT_EQ(stand_in.Living(), living) << "at call " << failing;
  }
  EXPECT_GT(calls, 0U);
}

TEST_P(DaoMember, GivesNoOptionsAndNoTypes) {
  for (const std::string& call : Asked([&] { GetParam().call(root); })) {
    if (call.find("Clientes") != std::string::npos) continue;
    if (call.starts_with("DAO.Database.Execute") ||
        call.starts_with("DAO.Database.OpenRecordset")) {
      EXPECT_THAT(call, EndsWith("\")"));
    }
  }
}

// The opening traps DAO's failure to open, and nothing else.
TEST_F(DaoMill, TheOpeningFailsCleanlyAtEveryCall) {
  root.Constructor(folder.path(), false);
  const int living = stand_in.Living();
  bool trapped = false;
  for (int failing = 1;; ++failing) {
    stand_in.Record();
    stand_in.FailAt(failing, kLocked);
    const int error = ErrorOf([&] { root.Constructor(folder.path(), false); });
    stand_in.FailAt(0, 0);
    const std::vector<std::string> calls = stand_in.Calls();
    if (calls.size() < static_cast<size_t>(failing)) break;
    if (calls.back().starts_with("DAO.Workspace.OpenDatabase")) {
      EXPECT_EQ(error, 0);
      EXPECT_FALSE(root.BaseAbierta());
      trapped = true;
    } else {
      EXPECT_EQ(error, kLocked) << calls.back();
    }
    root.Constructor(folder.path(), false);
    ASSERT_TRUE(root.BaseAbierta());
    EXPECT_EQ(stand_in.Living(), living) << "at call " << failing;
  }
  EXPECT_TRUE(trapped);
}

TEST_F(DaoMill, UpdatesANameAndInsertsWhereNothingWasUpdated) {
  const std::vector<std::string> update = {
      "DAO.Database.Execute(\"update Depositos set Nombre='Norte' where Codigo=3\")",
      "DAO.Database.RecordsAffected"};
  std::vector<std::string> insert = update;
  insert.emplace_back(
      "DAO.Database.Execute(\"insert into Depositos (Codigo, Nombre) values (3, 'Norte') \")");
  EXPECT_EQ(Asked([&] { root.Deposito(3)->SetNombre("Norte"); }), insert);
  EXPECT_EQ(Asked([&] { root.Deposito(3)->SetNombre("Norte"); }), update);
}

TEST_F(DaoMill, DischargesInOneTransaction) {
  EXPECT_THAT(
      Asked([&] { root.Tolva(1)->Descargar(4, 1); }),
      ElementsAre(
          "DAO.Workspace.BeginTrans",
          "DAO.Database.OpenRecordset(\"select * from Descargas where (Tolva=1) order by Descarga "
          "\")",
          "DAO.Recordset.EOF", "DAO.Recordset.MoveLast", "DAO.Recordset.Fields",
          "DAO.Fields.Item(\"Descarga\")", "DAO.Field.Value", "DAO.Fields.Item(\"MomentoDesde\")",
          "DAO.Field.Value", "DAO.Fields.Item(\"Deposito\")", "DAO.Field.Value",
          "DAO.Database.Execute(\"update Descargas set Deposito= 4, MomentoHasta= #11/15/2026 "
          "13:0:0#, Molino= 1, Fraccion= 1.00000000 where (TOLVA=1) and (DESCARGA=2)  and "
          "(Deposito=0) \")",
          "DAO.Database.Execute(\"insert into Descargas (Tolva, Descarga, MomentoDesde, "
          "MomentoHasta, Molino, Deposito, Fraccion) values (1, 3, #11/15/2026 13:0:0#, Null, 0, "
          "0, Null) \")",
          "DAO.Database.RecordsAffected", "DAO.Workspace.CommitTrans"));
}

TEST_F(DaoMill, RollsBackADischargeThatIsRefused) {
  EXPECT_THAT(Statements([&] {
                Execute("update Descargas set Deposito=6 where Tolva=1 and Descarga=2");
                EXPECT_FALSE(root.Tolva(1)->Descargar(4, 1));
              }),
              ElementsAre(StartsWith("DAO.Database.Execute"), "DAO.Workspace.BeginTrans",
                          StartsWith("DAO.Database.OpenRecordset"), "DAO.Workspace.Rollback"));
}

// The one member that wants to hear of rows that are refused.
TEST_F(DaoMill, SavesReferentsWithFailOnError) {
  const auto client = Client(9);
  EXPECT_THAT(
      Statements([&] { root.GuardarReferente(1, client); }),
      ElementsAre("DAO.Database.Execute(\"insert into Clientes (Codigo, Nombre, NIF, Info1, "
                  "Info2, Info3) values (9, 'Cliente 9', Null, Null, Null, Null) \", 128)",
                  "DAO.Database.RecordsAffected"));
  EXPECT_EQ(ErrorOf([&] { root.GuardarReferente(1, client); }), 3022);
}

TEST_F(DaoMill, OpensSharedWithThePassword) {
  EXPECT_THAT(Asked([&] { root.RecargaValores(); }),
              ElementsAre("DAO.Database.Close", "DAO.Workspace.OpenDatabase(\"" + folder.path() +
                                                    "\\oliva.mdb\", False, False, \";pwd=\")"));
}

TEST_F(DaoMill, RewritesTheStoredQueryAtEveryOpening) {
  EXPECT_THAT(Asked([&] { root.Constructor(folder.path(), false); }),
              Contains(StartsWith("DAO.QueryDef.SQL = \"select PESADA.COOPERATIVA")));
}

}  // namespace
}  // namespace ambrelio
