// A report on a mill: what its tanks hold, and whose olives are in one of them and in the last
// sale. It shows how a C++ program uses the library.
//
// usage: informe FOLDER     the mill's application folder, where CLIEN.INI and Vardex.ini are

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/vaciado.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace {

using namespace ambrelio;

constexpr int16_t kByMember = 1;
constexpr int16_t kSale = 2;
constexpr size_t kLargest = 10;

std::string NumberOrDash(const Variant& value, int decimals) {
  return value.is_null() ? "-" : fmt::format("{:.{}f}", ToDouble(value), decimals);
}

// Every tank with a name, numbered from 1 as long as there are tanks.
std::vector<int16_t> Tanks(Trazabilidad& mill) {
  std::vector<int16_t> tanks;
  for (int16_t number = 1; mill.Deposito(number) != nullptr; ++number) tanks.push_back(number);
  return tanks;
}

void PrintTanks(Trazabilidad& mill) {
  fmt::print("{:>4}  {:<28} {:>12} {:>7} {:>14}\n", "Nº", "Depósito", "Litros", "Nivel", "Kilos");
  for (const int16_t number : Tanks(mill)) {
    const auto tank = mill.Deposito(number);
    fmt::print("{:>4}  {:<28} {:>12} {:>7} {:>14.1f}\n", number, tank->Nombre(),
               NumberOrDash(tank->LitrosActual(), 1), NumberOrDash(tank->NivelActual(), 0),
               tank->KilosActual());
  }
}

// The rows of a composition with the largest shares.
void PrintLargest(const Variant& composition) {
  if (!composition.is_array()) {
    fmt::print("  (vacío)\n");
    return;
  }
  std::vector<Variant> rows = composition.array();
  const auto share = [](const Variant& row) { return ToDouble(row.array()[2]); };
  std::stable_sort(rows.begin(), rows.end(),
                   [&](const Variant& a, const Variant& b) { return share(a) > share(b); });
  fmt::print("{:>6}  {:<36} {:>8} {:>12}\n", "Socio", "Nombre", "%", "Litros");
  for (size_t i = 0; i < std::min(kLargest, rows.size()); ++i) {
    const Variant::Array& row = rows[i].array();
    fmt::print("{:>6}  {:<36} {:>8.3f} {:>12.2f}\n", ToText(row[0]), ToText(row[1]),
               ToDouble(row[2]), ToDouble(row[3]));
  }
  fmt::print("        {} socios en total\n", rows.size());
}

// The tank that holds the most oil.
std::optional<int16_t> FullestTank(Trazabilidad& mill) {
  std::optional<int16_t> fullest;
  double most = 0;
  for (const int16_t number : Tanks(mill)) {
    const Variant litres = mill.Deposito(number)->LitrosActual();
    if (litres.is_null() || ToDouble(litres) <= most) continue;
    most = ToDouble(litres);
    fullest = number;
  }
  return fullest;
}

std::shared_ptr<Vaciado> LastSale(Trazabilidad& mill) {
  std::shared_ptr<Vaciado> last;
  for (const int16_t number : Tanks(mill)) {
    const auto tank = mill.Deposito(number);
    for (int32_t code = tank->UltimoVaciado(); code > 0; --code) {
      auto emptying = tank->Vaciado(code);
      if (emptying == nullptr || emptying->Uso() != kSale) continue;
      if (last == nullptr || emptying->Momento() > last->Momento()) last = emptying;
      break;
    }
  }
  return last;
}

void PrintReport(Trazabilidad& mill) {
  PrintTanks(mill);
  if (const auto number = FullestTank(mill)) {
    const auto tank = mill.Deposito(*number);
    fmt::print("\nDe quién es el aceite del depósito {} ({}):\n", *number, tank->Nombre());
    PrintLargest(tank->Composicion(kByMember));
  }
  if (const auto sale = LastSale(mill)) {
    fmt::print("\nDe quién es el aceite de la última venta: {} litros del depósito {}, {}, lote {}",
               NumberOrDash(sale->Litros(), 1), sale->Deposito(), sale->Momento().Iso(),
               sale->Lote());
    fmt::print(", para {}:\n", sale->DestinoVenta());
    PrintLargest(sale->Composicion(kByMember));
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    fmt::print(stderr, "usage: informe FOLDER\n");
    return 2;
  }
  try {
    Trazabilidad mill;
    mill.Constructor(arguments[1], false);
    if (!mill.BaseAbierta()) {
      fmt::print(stderr, "informe: the database of {} cannot be opened\n", arguments[1]);
      return 1;
    }
    PrintReport(mill);
    return 0;
  } catch (const AutomationError& error) {
    fmt::print(stderr, "informe: error {}: {}\n", error.number(), error.description());
    return 1;
  }
}
