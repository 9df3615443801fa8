#include <fmt/format.h>

#include <optional>

#include "ambrelio/referents/catalogue.h"
#include "inquiry.h"

namespace ambrelio::cli {
namespace {

constexpr char kReferentesDescription[] =
    R"help(Prints the clients or the carriers of a mill, or one of them.

Examples:
  ambrelio referentes clientes --app mill --por-nombre
  ambrelio referentes transportistas --app mill 3

With a code, also the three lines of information.
)help";

struct ReferentOptions {
  InquiryOptions inquiry;
  std::string kind;
  std::optional<int32_t> code;
  bool by_name = false;
};

Report ReferentState(const Referente& referent) {
  Variant::Array rows;
  rows.emplace_back(Variant::Array{referent.Codigo(), referent.Nombre(), referent.NIF()});
  Report report = ListReport("Trazabilidad", "ListaReferentes", rows);
  report.single = true;
  for (int16_t line = 1; line <= Referente::kInfoLines; ++line) {
    report.columns.push_back({fmt::format("info{}", line), fmt::format("Información {}", line)});
    report.rows[0].push_back(referent.Info(line));
  }
  return report;
}

Report AskReferents(Mill& mill, const ReferentOptions& options) {
  const bool clients = options.kind == "clientes";
  const int16_t catalogue = clients ? referents::kClients : referents::kCarriers;
  if (!options.code) {
    return ListReport("Trazabilidad", "ListaReferentes",
                      mill.root()->ListaReferentes(catalogue, options.by_name ? 1 : 0));
  }
  const auto referent = mill.root()->UnReferente(catalogue, *options.code);
  if (referent == nullptr) {
    throw Failure(
        ExitCode::kWrongInput,
        fmt::format("the mill has no {} {} (CODE)", clients ? "client" : "carrier", *options.code));
  }
  return ReferentState(*referent);
}

}  // namespace

void AddReferentes(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("referentes", kReferentesDescription);
  auto options = std::make_shared<ReferentOptions>();
  command->add_option("KIND", options->kind, "Which catalogue")
      ->required()
      ->check(CLI::IsMember({"clientes", "transportistas"}));
  auto* code = command->add_option("CODE", options->code, "The client or carrier");
  command->add_flag("--por-nombre", options->by_name, "Sort by name, not by code")->excludes(code);
  AddInquiryOptions(*command, options->inquiry);
  command->callback([options, &context] {
    Answer(options->inquiry, context, [&](Mill& mill) { return AskReferents(mill, *options); });
  });
}

}  // namespace ambrelio::cli
