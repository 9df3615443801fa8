#include "generated_mill.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::bench {

namespace {

using embedded::Storage;

constexpr int kMembers = 400;
constexpr int kProducts = 6;
constexpr int kMunicipalities = 30;
constexpr int kPlaces = 80;
constexpr int kReferents = 25;

constexpr int kPickedDayDischarges = 5;
constexpr int kPickedDayEmptyings = 10;
constexpr int kSnapshotRows = 20;
constexpr int kWeighingsPerEmptying = 500;
constexpr int kWeighingsPerReading = 1000;  // of each tank

// A moment of the season, in whole seconds.
double Moment(double day) {
  return std::round((GeneratedSeason::FirstDay().days() + day) * 86400) / 86400;
}

// A number that depends on nothing but what it is for, so that rows are the same at every size.
class Draw {
 public:
  Draw(int64_t row, int purpose) : state_(static_cast<uint64_t>(row) * 64 + purpose) {}
  int Pick(int from, int to) {
    return from + static_cast<int>(Next() % static_cast<uint64_t>(to - from + 1));
  }

 private:
  uint64_t Next() {
    uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
  }
  uint64_t state_;
};

// An insert that is prepared once. Nothing else is this fast.
class Inserter {
 public:
  Inserter(Storage& storage, const std::string& table_and_columns, int values)
      : insert_(storage.raw(), Text(table_and_columns, values)) {}

  template <class... Values>
  void Row(const Values&... values) {
    int place = 0;
    (Bind(++place, values), ...);
    insert_.Step();
    sqlite3_reset(insert_.raw());
  }

 private:
  static std::string Text(const std::string& table_and_columns, int values) {
    std::string text = "insert or ignore into " + table_and_columns + " values (?";
    for (int i = 1; i < values; ++i) text += ", ?";
    return text + ")";
  }
  void Bind(int place, std::nullptr_t) { sqlite3_bind_null(insert_.raw(), place); }
  void Bind(int place, double value) { sqlite3_bind_double(insert_.raw(), place, value); }
  void Bind(int place, int64_t value) { sqlite3_bind_int64(insert_.raw(), place, value); }
  void Bind(int place, int value) { sqlite3_bind_int(insert_.raw(), place, value); }
  void Bind(int place, const std::string& value) {
    sqlite3_bind_text(insert_.raw(), place, value.data(), static_cast<int>(value.size()),
                      SQLITE_STATIC);
  }

  embedded::StorageStatement insert_;
};

class Generator {
 public:
  Generator(Storage& storage, GeneratedSeason& season)
      : season_(season),
        size_(season.size),
        weighings_(storage,
                   "PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, "
                   "POLIGONO, PARCELA, H_INICIO, TOLVA, DESCARGA, PARCIALPESO)",
                   13),
        shares_(storage,
                "splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion)",
                7),
        discharges_(storage,
                    "Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, "
                    "Fraccion)",
                    7),
        emptyings_(storage,
                   "Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, Uso, Lote, Cliente, "
                   "Transportista, DestinoVenta)",
                   10),
        snapshots_(storage, "detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion)",
                   6),
        readings_(storage, "Niveles (Deposito, Item, Momento, Nivel, Litros, Densidad, Alerta)", 7),
        emptied_(static_cast<size_t>(size_.tanks) + 1) {
    places_.reserve(kPlaces);
    for (int i = 0; i < kPlaces; ++i) places_.push_back(fmt::format("PARAJE {:02}", i + 1));
  }

  void Run() {
    for (int64_t i = 0; i < size_.weighings; ++i) Weigh(i);
    for (int16_t hopper = 1; hopper <= size_.hoppers; ++hopper) {
      for (int32_t n = 1; n <= season_.closed_discharges; ++n) AddDischarge(hopper, n);
      discharges_.Row(hopper, season_.closed_discharges + 1, Moment(90.99), nullptr, 0, 0, nullptr);
    }
    for (int i = 0; i < GeneratedSeason::kPickedEmptyings; ++i) EmptyPickedTank(i);
    const auto emptyings = static_cast<int>(size_.weighings / kWeighingsPerEmptying);
    for (int i = 0; i < emptyings; ++i) Empty(i, emptyings);
    for (int16_t tank = 1; tank <= size_.tanks; ++tank) AddReadings(tank);
  }

 private:
  void Weigh(int64_t i) {
    const int64_t block = i / size_.weighings_per_discharge;
    const auto hopper = static_cast<int>(block % size_.hoppers + 1);
    const auto discharge = static_cast<int>(block / size_.hoppers + 1);
    Draw draw(i, 1);
    const int product = draw.Pick(1, kProducts);
    weighings_.Row(1, i + 1, 0, product, draw.Pick(1, kMembers), draw.Pick(1, kMunicipalities),
                   places_[static_cast<size_t>(draw.Pick(0, kPlaces - 1))], draw.Pick(1, 60),
                   draw.Pick(1, 900),
                   Moment(90.0 * static_cast<double>(i) / static_cast<double>(size_.weighings)),
                   hopper, discharge, draw.Pick(40, 4000));
    if (discharge > season_.closed_discharges || draw.Pick(1, 1000) > size_.split_share * 1000) {
      return;
    }
    const double share = draw.Pick(1, 7) / 8.0;
    shares_.Row(1, i + 1, 0, product, hopper, discharge, share);
    shares_.Row(1, i + 1, 0, product, hopper, discharge + 1, 1 - share);
  }

  // When a discharge ended. No two of the mill end together.
  double EndOf(int16_t hopper, int32_t n) const {
    const int32_t spread = season_.closed_discharges - kPickedDayDischarges;
    const double apart = hopper * 30.0 / 86400;
    if (n > spread) return Moment(90 + (n - spread) * 3 / 24.0 + apart);
    return Moment(89.9 * n / spread + apart);
  }

  void AddDischarge(int16_t hopper, int32_t n) {
    const bool picked =
        hopper == GeneratedSeason::kPickedHopper && n <= GeneratedSeason::kPickedDischarges;
    Draw draw(int64_t{n} * size_.hoppers + hopper, 2);
    discharges_.Row(
        hopper, n, n == 1 ? Moment(0) : EndOf(hopper, n - 1), EndOf(hopper, n), draw.Pick(1, 2),
        picked ? GeneratedSeason::kPickedTank : GeneratedSeason::kFullTank, draw.Pick(1, 8) / 8.0);
  }

  // Sells a part of the picked tank, with all its discharges in the snapshot.
  void EmptyPickedTank(int i) {
    const int number = AddEmptying(GeneratedSeason::kPickedTank, Moment(30 + 20 * i), 0);
    for (int32_t n = 1; n <= GeneratedSeason::kPickedDischarges; ++n) {
      snapshots_.Row(GeneratedSeason::kPickedTank, number, GeneratedSeason::kPickedHopper, n,
                     n % 2 + 1, Draw(n, 3).Pick(1, 8) / 8.0);
    }
  }

  // In turn a transfer out of the full tank and a sale of what a transfer brought.
  void Empty(int i, int emptyings) {
    const int turn = i / 2;
    const auto tank = static_cast<int16_t>(3 + turn % (size_.tanks - 2));
    const bool sale = i % 2 == 1;
    const int late = i - (emptyings - kPickedDayEmptyings);
    const double moment =
        late >= 0 ? Moment(90.25 + late / 24.0) : Moment(2 + 87.0 * i / emptyings);
    const auto from = sale ? tank : GeneratedSeason::kFullTank;
    const int number = AddEmptying(from, moment, sale ? int16_t{0} : tank);
    const auto hopper = static_cast<int16_t>(2 + turn % (size_.hoppers - 1));
    const auto first = static_cast<int32_t>(
        int64_t{2} * turn * (season_.closed_discharges - 2 * kSnapshotRows) / emptyings);
    for (int32_t n = first + 1; n <= first + kSnapshotRows; ++n) {
      snapshots_.Row(from, number, hopper, n, n % 2 + 1, Draw(n, 4).Pick(1, 8) / 8.0);
      if (sale) continue;
      discharges_.Row(hopper, n, EndOf(hopper, std::max(1, n - 1)), EndOf(hopper, n), n % 2 + 1,
                      tank, Draw(n, 5).Pick(1, 2) / 16.0);
    }
  }

  int AddEmptying(int16_t from, double moment, int16_t into) {
    const int number = ++emptied_[static_cast<size_t>(from)];
    Draw draw(int64_t{from} * 100'000 + number, 6);
    const double litres = draw.Pick(1, 200) * 50.0;
    if (into != 0) {
      emptyings_.Row(from, number, moment, litres, into, 0, nullptr, nullptr, nullptr, nullptr);
    } else {
      emptyings_.Row(from, number, moment, litres, 0, 2, fmt::format("L{}-{}", from, number),
                     draw.Pick(1, kReferents), draw.Pick(1, kReferents),
                     places_[static_cast<size_t>(draw.Pick(0, kPlaces - 1))]);
    }
    return number;
  }

  // The last one on the picked day, when everything else is over.
  void AddReadings(int16_t tank) {
    const auto count = tank == GeneratedSeason::kPickedTank
                           ? GeneratedSeason::kPickedReadings
                           : std::max(GeneratedSeason::kPickedReadings,
                                      static_cast<int>(size_.weighings / kWeighingsPerReading));
    const double apart = tank * 10.0 / 86400;
    for (int item = 1; item <= count; ++item) {
      const double day = item == count ? 90.95 : 3 + 86.0 * item / count;
      Draw draw(item == count ? tank : int64_t{tank} * 100'000 + item, 7);
      readings_.Row(tank, item, Moment(day + apart), draw.Pick(100, 4000),
                    draw.Pick(1, 200) * 128.0, nullptr, 0);
    }
  }

  GeneratedSeason& season_;
  const SeasonSize& size_;
  Inserter weighings_, shares_, discharges_, emptyings_, snapshots_, readings_;
  std::vector<std::string> places_;
  std::vector<int> emptied_;  // by tank
};

void AddNames(Storage& storage, const SeasonSize& size) {
  Inserter members(storage, "SOCIO (CODSOC, NOMSOC)", 2);
  for (int i = 1; i <= kMembers; ++i) members.Row(i, fmt::format("SOCIO NUMERO {:03}", i));
  Inserter products(storage, "PRODUCTO (CODPRO, NOMPRO)", 2);
  for (int i = 1; i <= kProducts; ++i) products.Row(i, fmt::format("ACEITUNA {}", i));
  Inserter municipalities(storage, "MUNICIPIO (CODMUN, NOMMUN)", 2);
  for (int i = 1; i <= kMunicipalities; ++i) municipalities.Row(i, fmt::format("PUEBLO {:02}", i));
  for (const std::string table : {"Clientes", "Transportistas"}) {
    Inserter referents(storage, table + " (Codigo, Nombre)", 2);
    for (int i = 1; i <= kReferents; ++i) referents.Row(i, fmt::format("{} {:02}", table, i));
  }
  Inserter tanks(storage, "Depositos (Codigo, Nombre)", 2);
  Inserter bands(storage, "Capacidad (Deposito, Nivel, A0, A1, A2, A3)", 6);
  for (int tank = 1; tank <= size.tanks; ++tank) {
    tanks.Row(tank, fmt::format("DEPOSITO {:02}", tank));
    bands.Row(tank, 50.0, 0.0, 12.5, 0.25, 0.0);
    bands.Row(tank, 600.0, 100.0, 40.0, 0.0, 0.0);
  }
}

}  // namespace

GeneratedSeason FillSeason(const std::string& path, const SeasonSize& size) {
  GeneratedSeason season;
  season.size = size;
  const int64_t per_round = int64_t{size.hoppers} * size.weighings_per_discharge;
  season.closed_discharges = static_cast<int32_t>((size.weighings + per_round - 1) / per_round) - 1;

  const auto storage = Storage::Open(path, Storage::Access::kShared);
  // Nothing is lost when this is cut short.
  storage->Run("pragma journal_mode = memory; pragma synchronous = off");
  storage->Begin();
  AddNames(*storage, size);
  Generator(*storage, season).Run();
  storage->Commit();
  storage->Run("pragma journal_mode = wal");
  return season;
}

}  // namespace ambrelio::bench
