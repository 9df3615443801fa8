// What a call of the host costs: the waits for the disk of one commit, however many statements it
// takes.
#include <gmock/gmock.h>

#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/host/weighing.h"
#include "ambrelio/tanks/deposito.h"
#include "support/counted_files.h"
#include "support/mill.h"
#include "tank_test.h"

namespace ambrelio {
namespace {

// There before the mill's files are opened, and until they are closed.
struct Counting {
  test::CountedFiles files;
};

class Commits : public Counting, public test::MillTest {
 protected:
  int WaitsOf(const std::function<void()>& call) {
    files.Waits();
    call();
    return files.Waits();
  }

  const int once = test::WaitsOfACommit();
};

TEST_F(Commits, ACallThatWritesWaitsOnce) {
  Weigh({});
  double all = 1;
  EXPECT_EQ(WaitsOf([&] { root.Tolva(1)->Descargar(3, 1, all); }), once);
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->EntradaNivel(Variant(), int16_t{0}, 500.0); }), once);
  double litres = 100;
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->NuevoVaciado(5, litres); }), once);
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->DeshacerVaciado(); }), once);
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Norte"); }), once);
}

TEST_F(Commits, AListOfStatementsWithoutATransactionWaitsOnce) {
  const Variant band = Variant::Array{10.0, 1.0, 2.0, 3.0, 4.0};
  const Variant other = Variant::Array{20.0, 1.0, 2.0, 3.0, 4.0};
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetFormula(Variant::Array{band, other}); }), once);
  Weigh({});
  double all = 1;
  root.Tolva(1)->Descargar(3, 1, all);
  EXPECT_EQ(WaitsOf([&] { root.IniciarCampana(); }), once);
}

TEST_F(Commits, TheNextCallWaitsAgain) {
  root.IniciarCampana();
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Norte"); }), once);
}

// The opening by Constructor writes, and has the second wait; that of other settings does not.
TEST_F(Commits, TheFirstThatWritesAfterAClosingBeginsTheLog) {
  root.Cerrar();
  EXPECT_EQ(WaitsOf([&] { root.Constructor(folder.path(), false); }), 2);
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Norte"); }), 1);
  EXPECT_EQ(WaitsOf([&] { Reopen(); }), 2);  // the closing moves the log
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Sur"); }), 2);
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Norte"); }), 1);
}

// An error within the transaction of such a call leaves it open; its end then waits, and what comes
// afterwards waits as ever.
TEST_F(Commits, ATransactionThatAnErrorLeavesOpenDoesNotKeepLaterCallsFromWaiting) {
  for (int hopper : {1, 2}) root.Tolva(static_cast<int16_t>(hopper))->DescargaEnCurso();
  probe->FailAt(5, 3218);
  EXPECT_EQ(ErrorOf([&] { root.Trasegar(1, 2, 0.5); }), 3218);
  ASSERT_EQ(probe->level, 1);
  session.Workspace().Rollback();
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Norte"); }), once);
}

TEST_F(Commits, ALogIsNotMovedIntoTheFileWithinACall) {
  const std::string name(30, 'x');
  for (int commit = 0; commit < 1200; ++commit) {
    EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre(name + std::to_string(commit)); }), once);
  }
}

TEST_F(Commits, ACallThatEndsUpWritingNothingWaitsForNothing) {
  const auto store = [&] {
    return ErrorOf([&] {
      host::StoreWeighing(
          session,
          {{"PARTIDA", 1}, {"COOPERATIVA", 1}, {"MEDIANA", 0}, {"CODPRO", 1}, {"TOLVA", 1}});
    });
  };
  EXPECT_EQ(WaitsOf([&] { EXPECT_EQ(store(), 0); }), once);
  EXPECT_EQ(WaitsOf([&] { EXPECT_EQ(store(), 3022); }), 0);
}

TEST_F(Commits, AnErrorInTheMiddleLeavesWhatWasWrittenDurable) {
  Weigh({});
  double all = 1;
  root.Tolva(1)->Descargar(3, 1, all);
  probe->events.clear();
  probe->FailAt(4, 3218);
  EXPECT_EQ(WaitsOf([&] { EXPECT_EQ(ErrorOf([&] { root.IniciarCampana(); }), 3218); }), once);
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->SetNombre("Norte"); }), once);
}

TEST_F(Commits, ACallThatReadsWaitsForNothing) {
  EXPECT_EQ(WaitsOf([&] { root.Deposito(3)->LitrosActual(); }), 0);
  EXPECT_EQ(WaitsOf([&] { root.HistoriaVaciados(); }), 0);
}

}  // namespace
}  // namespace ambrelio
