// The power goes in the middle of a member, at every change it makes to the disk: what had returned
// is there afterwards, and what had not is there as a whole or not at all.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/engine/check.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/hoppers/tva_inter.h"
#include "ambrelio/host/weighing.h"
#include "ambrelio/referents/referente.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/nivel.h"
#include "ambrelio/tanks/vaciado.h"
#include "frame/old_mill.h"
#include "support/power_cut.h"

namespace ambrelio {
namespace {

using test::At;
using test::DiskRecord;
using test::FileRequest;

// There before the mill's files are opened, and until they are closed.
struct Recording {
  DiskRecord record;
};

struct Step {
  const char* name;
  std::function<void()> call;
};

template <class Mill>
class CutMill : public Recording, public Mill {
 protected:
  // Runs `call` and gives the states that others saw the database in meanwhile, the first and the
  // last included: those that a cut may leave.
  std::vector<std::string> StatesOf(const std::function<void()>& call) {
    const auto engine = engine::Create();
    const auto others =
        engine->DefaultWorkspace().OpenDatabase(Mill::folder.File("oliva.mdb"), false, true, "");
    std::vector<std::string> states;
    const auto look = [&] {
      others->TableDefs().Refresh();
      std::string state = Mill::DumpOf(*others);
      if (states.empty() || states.back() != state) states.push_back(std::move(state));
    };
    look();
    Mill::probe->before_request = look;
    call();
    Mill::probe->before_request = nullptr;
    look();
    return states;
  }

  // Cuts at every third change since the record began and behind the last one, or at all of them in
  // a long run, and gives what is found to `check`.
  void Cut(const std::function<void(const std::string& folder, size_t moment)>& check) {
    test::DiskReplay disk(record);
    std::mt19937 random(3);
    for (size_t moment = record.begin(); moment <= record.now(); ++moment) {
      disk.AdvanceTo(moment);
      for (uint32_t tries = test::PowerCutEffort(); tries > 0; --tries) {
        if (random() % 3 > 0 && moment < record.now()) continue;
        const auto seed = static_cast<uint32_t>(random());
        const test::TempFolder found;
        disk.WriteImage(found.path(), seed);
        SCOPED_TRACE("cut behind change " + std::to_string(moment - record.begin()) + " of " +
                     std::to_string(record.now() - record.begin()) + ", seed " +
                     std::to_string(seed));
        check(found.path(), moment);
        if (::testing::Test::HasFailure()) return;
      }
    }
  }

  // What is wrong with a database as a file.
  static std::vector<std::string> FaultsOf(const std::string& path) {
    std::vector<std::string> faults;
    for (const engine::CheckFinding& finding : engine::CheckFile(path, "")) {
      faults.push_back(finding.text);
    }
    return faults;
  }
  // What another process finds in a database, and in its stored queries.
  static std::string StateIn(const std::string& path) {
    const auto engine = engine::Create();
    const auto database = engine->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd=");
    return Mill::DumpOf(*database);
  }

  int Waits() const {
    return static_cast<int>(std::count_if(record.steps().begin(), record.steps().end(),
                                          [](const DiskRecord::Step& step) {
                                            return step.kind == FileRequest::kSync || step.waits;
                                          }));
  }
};

class PowerCut : public CutMill<test::MillTest> {
 protected:
  // Every member that writes, each on what the ones before it have left.
  std::vector<Step> Members() {
    const auto weigh = [this](int lot, int hopper) {
      clock.Set(At("2026-11-15 08:0" + std::to_string(lot) + ":00"));
      host::StoreWeighing(session, {{"COOPERATIVA", 1},
                                    {"PARTIDA", lot},
                                    {"MEDIANA", 0},
                                    {"CODPRO", 1},
                                    {"TOLVA", hopper},
                                    {"PARCIALPESO", 1000.0 + lot}});
    };
    return {
        {"Formula",
         [this] {
           const Variant band = Variant::Array{10.0, 1.0, 2.0, 3.0, 4.0};
           const Variant other = Variant::Array{900.0, 1.0, 2.0, 3.0, 4.0};
           root.Deposito(3)->SetFormula(Variant::Array{band, other});
         }},
        {"Nombre, new", [this] { root.Deposito(3)->SetNombre("Norte"); }},
        {"Nombre, another", [this] { root.Deposito(3)->SetNombre("Sur"); }},
        {"a weighing in a new hopper", [=] { weigh(1, 1); }},
        {"a weighing", [=] { weigh(2, 1); }},
        {"DescargaEnCurso of a new hopper", [this] { root.Tolva(3)->DescargaEnCurso(); }},
        {"a weighing that waits", [=] { weigh(3, -1); }},
        {"DescargarEn a new hopper", [this] { root.TvaInter(1)->DescargarEn(4); }},
        {"Trasegar to a new hopper", [this] { root.Trasegar(1, 2, 0.3); }},
        {"Trasegar", [this] { root.Trasegar(1, 2, 0.3); }},
        {"Descargar a part",
         [this] {
           double part = 0.6;
           ASSERT_TRUE(root.Tolva(1)->Descargar(3, 1, part));
         }},
        {"Descargar", [this] { ASSERT_TRUE(root.Tolva(2)->Descargar(3, 2)); }},
        {"RestaurarCarga", [this] { ASSERT_TRUE(root.Tolva(2)->RestaurarCarga()); }},
        {"Descargar again", [this] { ASSERT_TRUE(root.Tolva(2)->Descargar(3, 2)); }},
        {"EntradaNivel",
         [this] {
           clock.Set(At("2026-11-15 09:00:00"));
           ASSERT_TRUE(root.Deposito(3)->EntradaNivel(Variant(), 0, 500.0));
         }},
        {"EntradaDensidad", [this] { ASSERT_TRUE(root.Deposito(3)->EntradaDensidad(0.916)); }},
        {"Nivel.Nivel", [this] { root.Deposito(3)->Nivel(1)->SetNivel(7); }},
        {"Nivel.Litros", [this] { root.Deposito(3)->Nivel(1)->SetLitros(600); }},
        {"Nivel.Momento",
         [this] { root.Deposito(3)->Nivel(1)->SetMomento(At("2026-11-15 09:10:00")); }},
        {"NuevoVaciado",
         [this] {
           clock.Set(At("2026-11-15 09:30:00"));
           double litres = 100;
           ASSERT_EQ(root.Deposito(3)->NuevoVaciado(5, litres), 1);
         }},
        {"DeshacerVaciado", [this] { ASSERT_TRUE(root.Deposito(3)->DeshacerVaciado()); }},
        {"NuevoVaciado, sold",
         [this] {
           double litres = 50;
           const Variant sale = Variant::Array{int16_t{2}, "L-1", 4, 5, "Envasadora"};
           ASSERT_EQ(root.Deposito(3)->NuevoVaciado(0, litres, Variant(), sale), 1);
         }},
        {"Vaciado.fijarUso",
         [this] { ASSERT_TRUE(root.Deposito(3)->Vaciado(1)->FijarUso(2, 6, 7, "Otra")); }},
        {"Vaciado.Lote", [this] { root.Deposito(3)->Vaciado(1)->SetLote("L-2"); }},
        {"Vaciado.Momento",
         [this] { root.Deposito(3)->Vaciado(1)->SetMomento(At("2026-11-15 09:20:00")); }},
        {"EntradaNivel, another",
         [this] {
           clock.Set(At("2026-11-15 10:00:00"));
           ASSERT_TRUE(root.Deposito(3)->EntradaNivel(Variant(), 0, 500.0));
         }},
        {"EliminarUltimoNivel", [this] { ASSERT_TRUE(root.Deposito(3)->EliminarUltimoNivel()); }},
        {"GuardarReferente, new",
         [this] {
           const auto client = root.NuevoReferente(1);
           client->SetNombre("Aceites");
           ASSERT_TRUE(root.GuardarReferente(1, client));
         }},
        {"GuardarReferente",
         [this] {
           const auto client = root.UnReferente(1, 1);
           client->SetNIF("X");
           ASSERT_TRUE(root.GuardarReferente(1, client));
         }},
        {"EliminarReferente", [this] { ASSERT_TRUE(root.EliminarReferente(1, 1)); }},
        {"Nombre, none", [this] { root.Deposito(3)->SetNombre(""); }},
        {"IniciarCampaña", [this] { root.IniciarCampana(); }},
    };
  }
};

TEST_F(PowerCut, AMemberIsThereAsAWholeOrNotAtAllAndForGoodOnceItHasReturned) {
  // Of several statements without a transaction: a cut may leave the first ones. In a Jet file they
  // are one commit.
  std::set<std::string> in_steps;
  if (test::FormOfTestFiles() == embedded::NewFiles::kOfEngine) {
    in_steps = {"Formula", "IniciarCampaña", "a weighing in a new hopper",
                "DescargarEn a new hopper", "Trasegar to a new hopper"};
  }
  for (const Step& member : Members()) {
    SCOPED_TRACE(member.name);
    record.Follow(folder.path());
    const std::vector<std::string> states = StatesOf(member.call);
    ASSERT_GE(states.size(), 2);
    EXPECT_EQ(states.size() > 2, in_steps.count(member.name) > 0);
    Cut([&](const std::string& found, size_t moment) {
      const std::string path = found + "/oliva.mdb";
      const std::string state = StateIn(path);
      if (moment == record.now()) {
        EXPECT_EQ(state, states.back());
      } else {
        EXPECT_THAT(states, testing::Contains(state));
      }
      EXPECT_THAT(FaultsOf(path), testing::IsEmpty());
    });
    if (HasFailure()) return;
  }
}

TEST_F(PowerCut, AMemberThatWritesWaitsForTheDiskAsACommitDoes) {
  for (const Step& member : Members()) {
    record.Follow(folder.path());
    member.call();
    EXPECT_EQ(Waits(), test::WaitsOfACommit()) << member.name;
  }
}

// The disk fails from some change on: the member says so, and what is found when the database is
// opened again is what was there before.
TEST_F(PowerCut, ADiskThatFailsInTheMiddleOfADischargeLeavesNothingHalfDone) {
  root.Tolva(1)->DescargaEnCurso();
  for (int lot = 1; lot <= 12; ++lot) Weigh({.lot = lot});
  const std::string before = Dump();
  for (const auto& [code, number] : {std::pair(SQLITE_FULL, 3026), std::pair(SQLITE_IOERR, 3043)}) {
    int change = 1;
    for (bool failed = true; failed; ++change) {
      SCOPED_TRACE("error " + std::to_string(code) + " at change " + std::to_string(change));
      record.Follow(folder.path());
      record.FailFrom(change, code);
      const int error = ErrorOf([&] {
        double part = 0.6;
        root.Tolva(1)->Descargar(3, 1, part);
      });
      failed = record.Mend();
      if (failed && error == 0 && test::FormOfTestFiles() == embedded::NewFiles::kByName) {
        // The commit was there, and no more to be done than to say so beside the file.
        Reopen();
        break;
      }
      ASSERT_EQ(error, failed ? number : 0);
      if (failed) {
        Reopen();
        ASSERT_EQ(Dump(), before);
      }
    }
    ASSERT_GT(change, 5);
    ASSERT_TRUE(root.Tolva(1)->RestaurarCarga());
    ASSERT_EQ(Dump(), before);
  }
}

// A database that is being made is not there, or there as a whole.
TEST_F(PowerCut, AnEmptyDatabaseAppearsAsAWhole) {
  const std::string made = folder.Folder("made");
  record.Follow(made);
  session.Workspace().CreateDatabase(made + "/new.mdb", ";pwd=")->Close();
  const std::string complete = StateIn(made + "/new.mdb");
  Cut([&](const std::string& found, size_t) {
    const std::string path = found + "/new.mdb";
    if (!std::filesystem::exists(path)) {
      session.Workspace().CreateDatabase(path, ";pwd=")->Close();
    }
    EXPECT_EQ(StateIn(path), complete);
    EXPECT_THAT(FaultsOf(path), testing::IsEmpty());
  });
}

class UpgradeCut : public CutMill<test::OldMillTest> {};

// The schema steps are statements of their own: a cut leaves the first ones, each as a whole. Those
// are what one sees whose disk had everything that was written.
TEST_F(UpgradeCut, LeavesTheFirstStatementsOfTheUpgrade) {
  AddOldTables();
  session.CloseDatabase();
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "4,2,6");
  record.Follow(folder.path());
  const std::string before = StateIn(folder.File("oliva.mdb"));
  Open();
  ASSERT_TRUE(root.BaseAbierta());
  const std::string complete = Dump();

  std::set<std::string> states;
  test::DiskReplay disk(record);
  for (size_t moment = record.begin(); moment <= record.now(); ++moment) {
    disk.AdvanceTo(moment);
    if (moment > record.begin() && record.steps()[moment - 1].kind != FileRequest::kSync) continue;
    const test::TempFolder found;
    disk.WriteImage(found.path(), test::DiskReplay::kEverything);
    states.insert(StateIn(found.File("oliva.mdb")));
  }
  EXPECT_THAT(states, testing::IsSupersetOf({before, complete}));
  Cut([&](const std::string& found, size_t moment) {
    const std::string state = StateIn(found + "/oliva.mdb");
    EXPECT_TRUE(moment == record.now() ? state == complete : states.count(state) == 1) << state;
    EXPECT_THAT(FaultsOf(found + "/oliva.mdb"), testing::IsEmpty());
  });
}

}  // namespace
}  // namespace ambrelio
