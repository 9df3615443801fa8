#include <optional>

#include "inquiry.h"

namespace ambrelio::cli {
namespace {

constexpr char kTolvaDescription[] = R"help(Prints the hoppers of a mill, or one of them.

Examples:
  ambrelio tolva --app mill
  ambrelio tolva --app mill 2 --por producto
  ambrelio tolva --app mill 2 --historia

A hopper is shown with its current discharge: the number, the moment at which it
was opened, its weighings and their kilograms. Of a hopper that was never used,
discharge 1 is opened by asking.
)help";

struct HopperOptions {
  InquiryOptions inquiry;
  std::optional<int32_t> number;
  bool history = false;
  std::string composition;
};

std::vector<ReportColumn> HopperColumns() {
  return {{"tolva", "Tolva"},
          {"descarga", "Descarga"},
          {"desde", "Desde"},
          {"pesadas", "Pesadas"},
          {"kilos", "Kilos", CellForm::kTwoDecimals}};
}

std::vector<Variant> HopperRow(Tolva& hopper, int16_t number) {
  return {number, hopper.DescargaEnCurso(), KnownMoment(hopper.MomentoInicio()), hopper.Partidas(),
          hopper.Acumulado()};
}

Report HopperList(Mill& mill) {
  Report report{HopperColumns(), {}};
  for (int32_t number = 1; number <= mill.session().hopper_count; ++number) {
    const auto hopper = RequireHopper(mill, "N", number);
    report.rows.push_back(HopperRow(*hopper, static_cast<int16_t>(number)));
  }
  return report;
}

Report AskHopper(Mill& mill, const HopperOptions& options) {
  if (!options.number) return HopperList(mill);
  const auto hopper = RequireHopper(mill, "N", *options.number);
  const auto number = static_cast<int16_t>(*options.number);
  if (options.history) return DischargesOf(mill, number);
  if (!options.composition.empty()) return CompositionReport(*hopper, options.composition);
  return {HopperColumns(), {HopperRow(*hopper, number)}, /*single=*/true};
}

}  // namespace

void AddTolva(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("tolva", kTolvaDescription);
  auto options = std::make_shared<HopperOptions>();
  auto* number = command->add_option("N", options->number, "The hopper");
  auto* history =
      command->add_flag("--historia", options->history, "Print its discharges into tanks")
          ->needs(number);
  AddCompositionOption(*command, options->composition, CompositionOf::kOlives)
      ->needs(number)
      ->excludes(history);
  AddInquiryOptions(*command, options->inquiry);
  command->callback([options, &context] {
    Answer(options->inquiry, context, [&](Mill& mill) { return AskHopper(mill, *options); });
  });
}

}  // namespace ambrelio::cli
