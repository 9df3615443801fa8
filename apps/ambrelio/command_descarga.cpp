#include <optional>

#include "inquiry.h"

namespace ambrelio::cli {
namespace {

constexpr char kDescargaDescription[] = R"help(Prints the discharges of a hopper, or one of them.

Examples:
  ambrelio descarga --app mill 2
  ambrelio descarga --app mill 2 1
  ambrelio descarga --app mill 2 1 --por socio --json

Without a number, the discharges that went to tanks, once for each tank that holds
oil of theirs, always with their whole weight.
)help";

struct DischargeOptions {
  InquiryOptions inquiry;
  int32_t hopper = 0;
  std::optional<int32_t> number;
  std::string composition;
};

Report DischargeState(Descarga& discharge) {
  return {{{"tolva", "Tolva"},
           {"numero", "Número"},
           {"desde", "Desde"},
           {"hasta", "Hasta"},
           {"kilos", "Kilos", CellForm::kTwoDecimals}},
          {{discharge.Tolva(), discharge.Codigo(), KnownMoment(discharge.MomentoDesde()),
            KnownMoment(discharge.MomentoHasta()), discharge.Kilos()}},
          /*single=*/true};
}

Report AskDischarge(Mill& mill, const DischargeOptions& options) {
  const auto hopper = RequireHopper(mill, "TOLVA", options.hopper);
  if (!options.number) return DischargesOf(mill, static_cast<int16_t>(options.hopper));
  const auto discharge = RequireDischarge(*hopper, "N", *options.number);
  if (!options.composition.empty()) return CompositionReport(*discharge, options.composition);
  return DischargeState(*discharge);
}

}  // namespace

void AddDescarga(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("descarga", kDescargaDescription);
  auto options = std::make_shared<DischargeOptions>();
  command->add_option("TOLVA", options->hopper, "The hopper")->required();
  auto* number = command->add_option("N", options->number, "The discharge");
  AddCompositionOption(*command, options->composition, CompositionOf::kOlives)->needs(number);
  AddInquiryOptions(*command, options->inquiry);
  command->callback([options, &context] {
    Answer(options->inquiry, context, [&](Mill& mill) { return AskDischarge(mill, *options); });
  });
}

}  // namespace ambrelio::cli
