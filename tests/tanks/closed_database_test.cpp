// The objects of the tanks after the database was closed.
#include "ambrelio/tanks/nivel.h"
#include "ambrelio/tanks/vaciado.h"
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using Action = std::function<void()>;

class ClosedDatabase : public test::TankTest {
 protected:
  void SetUp() override {
    TankTest::SetUp();
    Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
    Read(1, 1, "2026-11-03 09:00:00", "1200", "900");
    Emptied(1, 1, "2026-11-03 12:00:00", 100, 2);
  }
  void ExpectEachRaises3420(const std::vector<Action>& actions) {
    for (size_t i = 0; i < actions.size(); ++i) {
      EXPECT_EQ(ErrorOf(actions[i]), 3420) << "member " << i;
      EXPECT_EQ(probe->level, 0) << "member " << i;
    }
  }
};

TEST_F(ClosedDatabase, RaisesFromEveryMemberOfATank) {
  root.Cerrar();
  double litres = 10;
  Variant out;
  OleDate moment;
  ExpectEachRaises3420({
      [&] { tank1.Nombre(); },
      [&] { tank1.SetNombre("x"); },
      [&] { tank1.SetNombre(""); },
      [&] { tank1.Formula(); },
      [&] { tank1.SetFormula({}); },
      [&] { tank1.Capacidad(1); },
      [&] { tank1.EntradaNivel(); },
      [&] { tank1.EntradaDensidad(1); },
      [&] { tank1.EliminarUltimoNivel(); },
      [&] { tank1.NivelActual(); },
      [&] { tank1.LitrosActual(); },
      [&] { tank1.KilosActual(); },
      [&] { tank1.Nivel(1); },
      [&] { tank1.NuevoVaciado(2, litres); },
      [&] { tank1.DeshacerVaciado(); },
      [&] { tank1.Vaciado(1); },
      [&] { tank1.UltimoVaciado(); },
      [&] { tank1.Historial(); },
      [&] { tank1.UltimoMovimiento(out, out, moment); },
      [&] { tank1.Composicion(1); },
      [&] { tank1.EscalarFracciones(1); },
      [&] { tank1.MoverFraccion(1, 1, 2, 1); },
  });
}

TEST_F(ClosedDatabase, RaisesFromEveryMemberOfAReadingThatAsksTheDatabase) {
  Nivel reading(session, 1, 1);
  root.Cerrar();
  ExpectEachRaises3420({
      [&] { reading.Momento(); },
      [&] { reading.SetMomento(test::At("2026-11-03 10:00:00")); },
      [&] { reading.NivelLeido(); },
      [&] { reading.SetNivel(1); },
      [&] { reading.Litros(); },
      [&] { reading.SetLitros(1); },
  });
  EXPECT_EQ(reading.Codigo(), 1);
}

TEST_F(ClosedDatabase, RaisesFromEveryMemberOfAnEmptyingThatAsksTheDatabase) {
  Vaciado emptying(session, 1, 1);
  root.Cerrar();
  Variant out;
  ExpectEachRaises3420({
      [&] { emptying.Uso(); },
      [&] { emptying.Cliente(); },
      [&] { emptying.Transportista(); },
      [&] { emptying.DestinoVenta(); },
      [&] { emptying.FijarUso(0, 0, 0, ""); },
      [&] { emptying.Lote(); },
      [&] { emptying.SetLote("x"); },
      [&] { emptying.Litros(); },
      [&] { emptying.Momento(); },
      [&] { emptying.SetMomento(test::At("2026-11-03 10:00:00")); },
      [&] { emptying.GetCotasMomento(out, out); },
      [&] { emptying.Destino(); },
      [&] { emptying.Composicion(1); },
  });
  EXPECT_EQ(emptying.Codigo(), 1);
}

TEST_F(ClosedDatabase, AnObjectWorksAgainOnTheDatabaseOpenedNext) {
  Nivel reading(session, 1, 1);
  Reopen();
  EXPECT_EQ(reading.NivelLeido(), 1200);
  EXPECT_EQ(tank1.UltimoVaciado(), 1);
}

}  // namespace
}  // namespace ambrelio
