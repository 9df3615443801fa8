#include "season/season_generator.h"

#include <cstdio>
#include <random>

namespace ambrelio::season {
namespace {

using Json = nlohmann::ordered_json;

class Generator {
 public:
  explicit Generator(const SeasonOptions& options) : options_(options), random_(options.seed) {}

  std::vector<Json> Make() {
    Prepare();
    for (day_ = 0; day_ < options_.days; ++day_) {
      second_ = 7 * 3600;
      for (int load = 0; load < options_.loads_a_day; ++load) Load();
      second_ = std::max(second_, 20 * 3600);
      Evening();
    }
    return std::move(lines_);
  }

 private:
  int Pick(int low, int high) { return std::uniform_int_distribution<>(low, high)(random_); }
  bool Chance(int percent) { return Pick(1, 100) <= percent; }
  template <class T>
  T OneOf(std::initializer_list<T> choices) {
    return *(choices.begin() + Pick(0, static_cast<int>(choices.size()) - 1));
  }

  std::string Now() {
    // December and January follow each other with as many days as they have.
    const int month_day = day_ % 28 + 1, month = 1 + day_ / 28 % 12, year = 2025 + day_ / 336;
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", year, month, month_day,
                  second_ / 3600, second_ / 60 % 60, second_ % 60);
    return text;
  }
  void Wait(int most) { second_ = std::min(second_ + Pick(0, most), 24 * 3600 - 1); }

  void Call(const std::string& path, Json args = Json::array()) {
    lines_.push_back({{"m", Now()}, {"call", path}, {"args", std::move(args)}});
  }
  static std::string Of(const char* object, int number, const char* member) {
    return std::string(object) + "(" + std::to_string(number) + ")." + member;
  }

  void Prepare() {
    second_ = 6 * 3600;
    for (int tank = 1; tank <= options_.tanks; ++tank) {
      const double slope = Pick(1, 400) * 0.37;
      const std::string path = "Deposito(" + std::to_string(tank) + ")";
      lines_.push_back({{"m", Now()},
                        {"let", path + ".Nombre"},
                        {"value", OneOf<const char*>({"Depósito d'arriba", "Bodega 2", "Nº 7"})}});
      // The second band goes on where the first one ends.
      lines_.push_back({{"m", Now()},
                        {"let", path + ".Formula"},
                        {"value", {{100, 0, 0, 0, slope / 30000}, {900, -slope * 66, slope}}}});
    }
  }

  // One lot delivered, often in two halves, and what happens at the hoppers meanwhile.
  void Load() {
    Wait(600);
    ++lot_;
    const int hopper =
        Chance(12) ? -Pick(1, options_.intermediate_hoppers) : Pick(1, options_.hoppers);
    for (int half = 0; half < (Chance(15) ? 2 : 1); ++half) Weigh(hopper, half);
    if (Chance(10)) {
      Call(Of("TvaInter", Pick(0, options_.intermediate_hoppers + 1), "DescargarEn"),
           {Pick(0, options_.hoppers + 1)});
    }
    if (Chance(14)) Discharge();
    if (Chance(3)) Transfer();
    if (Chance(3)) Call(Of("Tolva", Pick(1, options_.hoppers), "RestaurarCarga"));
    if (options_.questions && Chance(10)) AskHopper();
  }

  void Weigh(int hopper, int half) {
    const int member = Pick(1, 40);
    Json place = OneOf<const char*>({"Cañada Honda", "CAÑADA HONDA", "Los Llanos", "la peña",
                                     "La Peña ", "Ñorares", "Álamo", "Alamo", "cerro"});
    if (Chance(10)) place = nullptr;
    lines_.push_back({{"m", Now()},
                      {"pesada",
                       {{"COOPERATIVA", Chance(5) ? 2 : 1},
                        {"PARTIDA", lot_},
                        {"MEDIANA", half},
                        {"CODPRO", Pick(1, 6)},
                        {"CODSOC", member},
                        {"CODMUN", Pick(1, 14)},
                        {"PARAJE", place},
                        {"POLIGONO", Pick(1, 30)},
                        {"PARCELA", 100 + member},
                        {"TOLVA", hopper},
                        {"PARCIALPESO", Pick(2000, 60000) / 10.0}}}});
  }

  void Discharge() {
    Json args = {Pick(1, options_.tanks), Pick(1, 3)};
    if (Chance(45)) {
      args.push_back(OneOf<double>({0.25, 0.5, 0.6, 0.75, 0.9, 0.9995, 1.5, 0, -0.5, 1.0 / 3}));
    }
    Call(Of("Tolva", Pick(1, options_.hoppers), "Descargar"), args);
  }

  void Transfer() {
    Json args = {Pick(0, options_.hoppers + 1), Pick(1, options_.hoppers)};
    if (Chance(60)) args.push_back(OneOf<double>({0.3, 0.5, 0.125, 1.2, -0.1}));
    Call("Trazabilidad.Trasegar", args);
  }

  // Discharges, readings, emptyings, sales and undos.
  void Evening() {
    for (int hopper = 1; hopper <= options_.hoppers; ++hopper) {
      Wait(60);
      if (Chance(70)) {
        Call(Of("Tolva", hopper, "Descargar"), {Pick(1, options_.tanks), Pick(1, 3)});
      }
    }
    for (int tank = 1; tank <= options_.tanks; ++tank) {
      Wait(60);
      if (Chance(75)) Read(tank);
      if (Chance(30)) Empty(tank);
      if (Chance(8)) Call(Of("Deposito", tank, "DeshacerVaciado"));
      if (Chance(6)) Call(Of("Deposito", tank, "EliminarUltimoNivel"));
      if (options_.questions) AskTank(tank);
    }
  }

  void Read(int tank) {
    Json args = Chance(60) ? Json{nullptr, Pick(-1, 9500)}
                           : Json{nullptr, Pick(-1, 3000), Pick(1, 90000000) / 1000.0};
    if (Chance(10)) args[0] = Now();
    Call(Of("Deposito", tank, "EntradaNivel"), args);
    if (Chance(40)) Call(Of("Deposito", tank, "EntradaDensidad"), {Pick(9000, 9300) / 10000.0});
  }

  void Empty(int tank) {
    Wait(90);
    Json args = {Pick(0, options_.tanks + 1), Pick(1, 60000) / 3.0, nullptr, nullptr};
    if (Chance(10)) args[2] = Now();
    if (Chance(50)) {
      args[0] = 0;
      args[3] = Chance(50) ? Json{1, "L-" + std::to_string(lot_) + "/" + std::to_string(tank)}
                           : Json{2, OneOf<const char*>({"", "L-9", "  lote  2 "}), Pick(1, 9),
                                  Pick(1, 4), OneOf<const char*>({"L'Oli", "Envasadora Sur", ""})};
    }
    Call(Of("Deposito", tank, "NuevoVaciado"), args);
  }

  void AskHopper() {
    const int hopper = Pick(1, options_.hoppers);
    for (const char* member : {"DescargaEnCurso", "MomentoInicio", "Partidas", "Acumulado"}) {
      Call(Of("Tolva", hopper, member));
    }
    Call(Of("Tolva", hopper, "Composicion"), {Pick(0, 6)});
    const int waiting = Pick(1, options_.intermediate_hoppers);
    Call(Of("TvaInter", waiting, "Partidas"));
    Call(Of("TvaInter", waiting, "Acumulado"));
  }

  void AskTank(int tank) {
    for (const char* member : {"LitrosActual", "NivelActual", "KilosActual", "UltimoVaciado"}) {
      Call(Of("Deposito", tank, member));
    }
    Call(Of("Deposito", tank, "Composicion"), {Pick(0, 6)});
    if (Chance(30)) Call(Of("Deposito", tank, "Historial"));
    const std::string emptying =
        "Deposito(" + std::to_string(tank) + ").Vaciado(" + std::to_string(Pick(1, 4)) + ")";
    if (Chance(40)) Call(emptying + ".Composicion", {Pick(1, 5)});
    if (Chance(10)) {
      for (const char* member : {"Litros", "Momento", "Destino", "Uso", "Lote", "DestinoVenta"}) {
        Call(emptying + "." + member);
      }
    }
  }

  const SeasonOptions& options_;
  std::mt19937 random_;
  std::vector<Json> lines_;
  int day_ = 0;
  int second_ = 0;
  int lot_ = 0;
};

}  // namespace

std::vector<Json> MakeSeason(const SeasonOptions& options) { return Generator(options).Make(); }

}  // namespace ambrelio::season
