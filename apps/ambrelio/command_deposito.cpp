#include <optional>

#include "inquiry.h"

namespace ambrelio::cli {
namespace {

constexpr char kDepositoDescription[] = R"help(Prints the tanks of a mill, or one of them.

Examples:
  ambrelio deposito --app mill
  ambrelio deposito --app mill 3
  ambrelio deposito --app mill 3 --por socio
  ambrelio deposito --app mill 3 --historia --csv

Without a number, every tank with its level, its litres, and the kilograms of
olives whose oil is in it. With one, also its last emptying and its last
movement. In the history an emptying of another tank is oil that came from there.
In JSON and CSV a movement is 1 a discharge, 2 an emptying, 3 a level reading.
)help";

struct TankOptions {
  InquiryOptions inquiry;
  std::optional<int32_t> number;
  bool history = false;
  bool formula = false;
  std::string composition;
};

std::vector<ReportColumn> TankColumns() {
  return {{"deposito", "Depósito"},
          {"nombre", "Nombre"},
          {"nivel", "Nivel"},
          {"litros", "Litros", CellForm::kTwoDecimals},
          {"kilos", "Kilos de aceituna", CellForm::kTwoDecimals}};
}

std::vector<Variant> TankRow(Deposito& tank, int16_t number) {
  return {number, tank.Nombre(), tank.NivelActual(), tank.LitrosActual(), tank.KilosActual()};
}

Report TankList(Mill& mill) {
  Report report{TankColumns(), {}};
  for (int32_t number = 1; number <= mill.session().tank_count; ++number) {
    const auto tank = RequireTank(mill, "N", number);
    report.rows.push_back(TankRow(*tank, static_cast<int16_t>(number)));
  }
  return report;
}

Report TankState(Deposito& tank, int16_t number) {
  Report report{TankColumns(), {TankRow(tank, number)}, /*single=*/true};
  const auto add = [&report](ReportColumn column, Variant value) {
    report.columns.push_back(std::move(column));
    report.rows[0].push_back(std::move(value));
  };
  const int32_t emptying = tank.UltimoVaciado();
  add({"ultimo_vaciado", "Último vaciado"}, emptying > 0 ? Variant(emptying) : Variant::Null());
  Variant litres;
  Variant level;
  OleDate moment;
  const int16_t movement = tank.UltimoMovimiento(litres, level, moment);
  add({"ultimo_movimiento", "Último movimiento", CellForm::kMovement},
      movement > 0 ? Variant(movement) : Variant::Null());
  add({"momento", "Momento"}, KnownMoment(moment));
  return report;
}

Report AskTank(Mill& mill, const TankOptions& options) {
  if (!options.number) return TankList(mill);
  const auto tank = RequireTank(mill, "N", *options.number);
  if (options.history) return ListReport("Deposito", "Historial", tank->Historial());
  if (options.formula) return ListReport("Deposito", "Formula", tank->Formula());
  if (!options.composition.empty()) return CompositionReport(*tank, options.composition);
  return TankState(*tank, static_cast<int16_t>(*options.number));
}

}  // namespace

void AddDeposito(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("deposito", kDepositoDescription);
  auto options = std::make_shared<TankOptions>();
  auto* number = command->add_option("N", options->number, "The tank");
  auto* history =
      command->add_flag("--historia", options->history, "Print its movements")->needs(number);
  auto* formula = command->add_flag("--formula", options->formula, "Print its capacity table")
                      ->needs(number)
                      ->excludes(history);
  AddCompositionOption(*command, options->composition, CompositionOf::kOil)
      ->needs(number)
      ->excludes(history)
      ->excludes(formula);
  AddInquiryOptions(*command, options->inquiry);
  command->callback([options, &context] {
    Answer(options->inquiry, context, [&](Mill& mill) { return AskTank(mill, *options); });
  });
}

}  // namespace ambrelio::cli
