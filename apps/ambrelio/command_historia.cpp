#include <optional>

#include "arguments.h"
#include "inquiry.h"

namespace ambrelio::cli {
namespace {

constexpr char kHistoriaDescription[] = R"help(Prints a history of the whole mill.

Examples:
  ambrelio historia descargas --app mill --desde 2025-11-01 --hasta 2025-11-30
  ambrelio historia vaciados --app mill --deposito 3
  ambrelio historia destinos --app mill

The histories are the discharges into tanks (descargas), the level readings
(niveles), the emptyings (vaciados) and the destinations of sales typed so far
(destinos), which take no limits. Only discharges can be limited to a hopper.

Dates are YYYY-MM-DD or YYYY-MM-DD HH:MM:SS. The last day counts whole, whatever
its time, and the midnight at its end is still in it.
)help";

struct HistoryOptions {
  InquiryOptions inquiry;
  std::string kind;
  std::optional<std::string> from;
  std::optional<std::string> to;
  std::optional<int32_t> hopper;
  std::optional<int32_t> tank;
};

Variant Moment(const char* option, const std::optional<std::string>& text) {
  if (!text) return {};
  if (const auto moment = ParseMoment(*text)) return *moment;
  throw Failure(ExitCode::kWrongInput,
                std::string(option) + ": '" + *text +
                    "' is no date; dates are YYYY-MM-DD or YYYY-MM-DD HH:MM:SS");
}

void CheckTakes(const HistoryOptions& options) {
  const bool is_list = options.kind == "destinos";
  const auto refuse = [&options](const char* option, bool given, bool taken) {
    if (!given || taken) return;
    throw Failure(ExitCode::kWrongInput, "historia " + options.kind + " does not take " + option);
  };
  refuse("--desde", options.from.has_value(), !is_list);
  refuse("--hasta", options.to.has_value(), !is_list);
  refuse("--tolva", options.hopper.has_value(), options.kind == "descargas");
  refuse("--deposito", options.tank.has_value(), !is_list);
}

Report AskHistory(Mill& mill, const HistoryOptions& options, const Variant& from,
                  const Variant& to) {
  Trazabilidad& root = *mill.root();
  if (options.kind == "destinos") {
    return ListReport("Trazabilidad", "ListaDestinoVenta", root.ListaDestinoVenta());
  }
  if (options.hopper) RequireHopper(mill, "--tolva", *options.hopper);
  if (options.tank) RequireTank(mill, "--deposito", *options.tank);
  const auto hopper = static_cast<int16_t>(options.hopper.value_or(0));
  const auto tank = static_cast<int16_t>(options.tank.value_or(0));
  if (options.kind == "descargas") {
    return HistoryReport("HistoriaDescargas", root.HistoriaDescargas(from, to, hopper, tank));
  }
  if (options.kind == "niveles") {
    return HistoryReport("HistoriaNiveles", root.HistoriaNiveles(from, to, tank));
  }
  return HistoryReport("HistoriaVaciados", root.HistoriaVaciados(from, to, tank));
}

void RunHistory(const HistoryOptions& options, Context& context) {
  CheckTakes(options);
  const Variant from = Moment("--desde", options.from);
  const Variant to = Moment("--hasta", options.to);
  Answer(options.inquiry, context, [&](Mill& mill) { return AskHistory(mill, options, from, to); });
}

}  // namespace

void AddHistoria(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("historia", kHistoriaDescription);
  auto options = std::make_shared<HistoryOptions>();
  command->add_option("KIND", options->kind, "Which history")
      ->required()
      ->check(CLI::IsMember({"descargas", "niveles", "vaciados", "destinos"}));
  command->add_option("--desde", options->from, "From that moment on")->type_name("DATE");
  command->add_option("--hasta", options->to, "Up to the end of that day")->type_name("DATE");
  command->add_option("--tolva", options->hopper, "Of that hopper")->type_name("N");
  command->add_option("--deposito", options->tank, "Of that tank")->type_name("N");
  AddInquiryOptions(*command, options->inquiry);
  command->callback([options, &context] { RunHistory(*options, context); });
}

}  // namespace ambrelio::cli
