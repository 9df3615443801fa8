#include "ambrelio/host/weighing.h"

#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"

namespace ambrelio::host {
namespace {

using testing::ElementsAre;

class StoreWeighing : public test::MillTest {
 protected:
  static WeighingColumns Columns(int32_t lot, const Variant& hopper) {
    return {{"COOPERATIVA", Variant(int32_t{1})},
            {"PARTIDA", Variant(lot)},
            {"MEDIANA", Variant(int32_t{0})},
            {"CODPRO", Variant(int32_t{2})},
            {"TOLVA", hopper},
            {"PARCIALPESO", Variant(1234.5)}};
  }
  std::vector<std::string> Stored() {
    return Rows("select PARTIDA, TOLVA, DESCARGA, H_INICIO from PESADA order by PARTIDA");
  }
};

TEST_F(StoreWeighing, PutsItIntoTheCurrentDischarge) {
  EXPECT_EQ(host::StoreWeighing(session, Columns(1, Variant(int32_t{2}))), 1);
  root.Tolva(2)->Descargar(3, 1);
  EXPECT_EQ(host::StoreWeighing(session, Columns(2, Variant(2.0))), 2);
  EXPECT_THAT(Stored(), ElementsAre("1|2|1|2026-11-15 08:00:00", "2|2|2|2026-11-15 08:00:00"));
}

TEST_F(StoreWeighing, LeavesAWaitingOneWithoutADischarge) {
  EXPECT_EQ(host::StoreWeighing(session, Columns(1, Variant(int32_t{-2}))), 0);
  EXPECT_THAT(Stored(), ElementsAre("1|-2|0|2026-11-15 08:00:00"));
}

TEST_F(StoreWeighing, LeavesBothOutWithoutAHopper) {
  EXPECT_EQ(host::StoreWeighing(session, Columns(1, Variant::Null())), 0);
  EXPECT_THAT(Stored(), ElementsAre("1|Null|Null|2026-11-15 08:00:00"));
}

TEST_F(StoreWeighing, KeepsWhatIsGiven) {
  WeighingColumns columns = Columns(1, Variant(int32_t{2}));
  columns.emplace_back("h_inicio", Variant("2026-11-14 23:59:59"));
  columns.emplace_back("Descarga", Variant(int32_t{9}));
  EXPECT_EQ(host::StoreWeighing(session, columns), 9);
  EXPECT_THAT(Stored(), ElementsAre("1|2|9|2026-11-14 23:59:59"));
  EXPECT_THAT(Rows("Descargas"), testing::IsEmpty());
}

TEST_F(StoreWeighing, KeepsApostrophesAndEveryDigit) {
  WeighingColumns columns = Columns(1, Variant(int32_t{1}));
  columns.back().second = Variant(0.1 + 0.2);
  columns.emplace_back("PARAJE", Variant("Pago d'en 'Mig'"));
  host::StoreWeighing(session, columns);
  EXPECT_EQ(Scalar("select PARCIALPESO from PESADA"), Variant(0.1 + 0.2));
  EXPECT_EQ(Scalar("select PARAJE from PESADA"), Variant("Pago d'en 'Mig'"));
}

TEST_F(StoreWeighing, RefusesAColumnThatDoesNotExist) {
  WeighingColumns columns = Columns(1, Variant(int32_t{2}));
  columns.emplace_back("PESO, TOLVA", Variant(int32_t{9}));
  EXPECT_EQ(ErrorOf([&] { host::StoreWeighing(session, columns); }), 3265);
  EXPECT_THAT(Stored(), testing::IsEmpty());
  EXPECT_THAT(Rows("Descargas"), testing::IsEmpty());
}

TEST_F(StoreWeighing, RefusesAHopperThatDoesNotExist) {
  EXPECT_EQ(ErrorOf([&] { host::StoreWeighing(session, Columns(1, Variant(int32_t{5}))); }), 5);
  EXPECT_THAT(Stored(), testing::IsEmpty());
}

TEST_F(StoreWeighing, RefusesTheSameWeighingTwice) {
  host::StoreWeighing(session, Columns(1, Variant(int32_t{2})));
  EXPECT_EQ(ErrorOf([&] { host::StoreWeighing(session, Columns(1, Variant(int32_t{3}))); }), 3022);
  EXPECT_EQ(Stored().size(), 1U);
}

TEST_F(StoreWeighing, RefusesAValueThatDoesNotFit) {
  WeighingColumns columns = Columns(1, Variant(int32_t{2}));
  columns.emplace_back("POLIGONO", Variant(int32_t{70000}));
  EXPECT_NE(ErrorOf([&] { host::StoreWeighing(session, columns); }), 0);
  EXPECT_THAT(Stored(), testing::IsEmpty());
}

}  // namespace
}  // namespace ambrelio::host
