#include <optional>

#include "ambrelio/referents/catalogue.h"
#include "inquiry.h"

namespace ambrelio::cli {
namespace {

constexpr char kVaciadoDescription[] = R"help(Prints the emptyings of a tank, or one of them.

Examples:
  ambrelio vaciado --app mill 3
  ambrelio vaciado --app mill 3 1
  ambrelio vaciado --app mill 3 1 --por municipio

The destination is the tank that the oil went to, or 0 when it left the mill. Use
2 is a sale; only a sale has a client, a carrier and a sale destination.
)help";

struct EmptyingOptions {
  InquiryOptions inquiry;
  int32_t tank = 0;
  std::optional<int32_t> number;
  std::string composition;
};

Variant CodeOrNull(int32_t code) { return code == 0 ? Variant::Null() : Variant(code); }

Variant NameOf(Trazabilidad& root, int16_t catalogue, int32_t code) {
  const auto referent = code == 0 ? nullptr : root.UnReferente(catalogue, code);
  return referent == nullptr ? Variant::Null() : Variant(referent->Nombre());
}

// A row as the history has it, read from the record.
Report EmptyingState(Trazabilidad& root, Vaciado& emptying) {
  const int32_t client = emptying.Cliente();
  const int32_t carrier = emptying.Transportista();
  const Variant record = Variant::Array{KnownMoment(emptying.Momento()),
                                        emptying.Codigo(),
                                        Variant(),
                                        emptying.Deposito(),
                                        Variant(),
                                        emptying.Litros(),
                                        emptying.Destino(),
                                        emptying.Lote(),
                                        emptying.Uso(),
                                        CodeOrNull(client),
                                        NameOf(root, referents::kClients, client),
                                        CodeOrNull(carrier),
                                        NameOf(root, referents::kCarriers, carrier),
                                        emptying.DestinoVenta()};
  Report report = HistoryReport("HistoriaVaciados", Variant::Array{record});
  report.single = true;
  return report;
}

Report AskEmptying(Mill& mill, const EmptyingOptions& options) {
  const auto tank = RequireTank(mill, "DEPOSITO", options.tank);
  if (!options.number) {
    const auto number = static_cast<int16_t>(options.tank);
    return HistoryReport("HistoriaVaciados", mill.root()->HistoriaVaciados({}, {}, number));
  }
  const auto emptying = RequireEmptying(*tank, "N", *options.number);
  if (!options.composition.empty()) return CompositionReport(*emptying, options.composition);
  return EmptyingState(*mill.root(), *emptying);
}

}  // namespace

void AddVaciado(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("vaciado", kVaciadoDescription);
  auto options = std::make_shared<EmptyingOptions>();
  command->add_option("DEPOSITO", options->tank, "The tank")->required();
  auto* number = command->add_option("N", options->number, "The emptying");
  AddCompositionOption(*command, options->composition, CompositionOf::kOil)->needs(number);
  AddInquiryOptions(*command, options->inquiry);
  command->callback([options, &context] {
    Answer(options->inquiry, context, [&](Mill& mill) { return AskEmptying(mill, *options); });
  });
}

}  // namespace ambrelio::cli
