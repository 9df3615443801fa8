#include "generated_mill.h"

#include <fmt/core.h>

#include <random>

#include "ambrelio/data/sql_text.h"

namespace ambrelio::bench {

namespace {

constexpr uint32_t kSeed = 20261103;

class Generator {
 public:
  Generator(dao::Database& database, const SeasonSize& size) : database_(database), size_(size) {}

  GeneratedSeason Run() {
    const int64_t per_round = static_cast<int64_t>(size_.hoppers) * size_.weighings_per_discharge;
    season_.discharges_per_hopper =
        static_cast<int32_t>((size_.weighings + per_round - 1) / per_round);
    for (int64_t i = 0; i < size_.weighings; ++i) Weigh(i);
    for (int16_t hopper = 1; hopper <= size_.hoppers; ++hopper) AddDischarges(hopper);
    return season_;
  }

 private:
  int16_t HopperOf(int64_t i) const {
    return static_cast<int16_t>(i / size_.weighings_per_discharge % size_.hoppers + 1);
  }
  int32_t DischargeOf(int64_t i) const {
    return static_cast<int32_t>(i / size_.weighings_per_discharge / size_.hoppers + 1);
  }
  int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

  void Weigh(int64_t i) {
    const int16_t hopper = HopperOf(i);
    const int32_t discharge = DischargeOf(i);
    const int product = Pick(1, 6);
    database_.Execute(fmt::format(
        "insert into PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, "
        "H_INICIO, TOLVA, DESCARGA, PARCIALPESO) values (1, {}, 0, {}, {}, {}, 'PARAJE {}', {}, "
        "{}, {}, {})",
        i + 1, product, Pick(1, 400), Pick(1, 30), Pick(1, 80),
        data::SqlDate(OleDate::FromDays(45960.0 + static_cast<double>(i) * 90 /
                                                     static_cast<double>(size_.weighings))),
        hopper, discharge, Pick(40, 4000)));
    if (Pick(1, 1000) > size_.split_share * 1000) return;
    const double share = Pick(1, 7) / 8.0;
    AddShare(i, product, hopper, discharge, share);
    AddShare(i, product, hopper, discharge + 1, 1 - share);
  }

  void AddShare(int64_t i, int product, int16_t hopper, int32_t discharge, double share) {
    database_.Execute(fmt::format(
        "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, "
        "fraccion) values (1, {}, 0, {}, {}, {}, {})",
        i + 1, product, hopper, discharge, share));
  }

  void AddDischarges(int16_t hopper) {
    for (int32_t discharge = 1; discharge <= season_.discharges_per_hopper; ++discharge) {
      const bool picked =
          hopper == 1 && discharge <= GeneratedSeason::kPickedDischarges;
      const int tank = picked ? season_.picked_tank : 2;
      const double begin = 45960.0 + static_cast<double>(discharge) * 90 /
                                         static_cast<double>(season_.discharges_per_hopper + 1);
      database_.Execute(fmt::format(
          "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, "
          "Fraccion) values ({}, {}, {}, {}, {}, {}, {})",
          hopper, discharge, data::SqlDate(OleDate::FromDays(begin)),
          data::SqlDate(OleDate::FromDays(begin + 0.02)), Pick(1, 2), tank, Pick(1, 8) / 8.0));
    }
  }

  dao::Database& database_;
  const SeasonSize& size_;
  GeneratedSeason season_;
  std::mt19937 random_{kSeed};
};

}  // namespace

GeneratedSeason FillSeason(dao::DBEngine& engine, dao::Database& database, const SeasonSize& size) {
  engine.DefaultWorkspace().BeginTrans();
  const GeneratedSeason season = Generator(database, size).Run();
  engine.DefaultWorkspace().CommitTrans();
  return season;
}

}  // namespace ambrelio::bench
