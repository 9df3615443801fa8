#include "inquiry.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

namespace ambrelio::cli {
namespace {

// In the order of their numbers, from 1.
constexpr std::array kCompositionClasses = {"socio", "producto", "municipio", "paraje", "molino"};

// `last` is the highest number there is, 0 without any.
[[noreturn]] void FailMissing(const std::string& owner, const std::string& thing,
                              std::string_view argument, int32_t number, int32_t last) {
  std::string range = "it has none at all";
  if (last == 1) range = fmt::format("its only {} is 1", thing);
  if (last > 1) range = fmt::format("its {}s are 1 to {}", thing, last);
  throw Failure(ExitCode::kWrongInput,
                fmt::format("{} has no {} {} ({}); {}", owner, thing, number, argument, range));
}

}  // namespace

void AddInquiryOptions(CLI::App& command, InquiryOptions& options) {
  AddMillOptions(command, options.mill)->required();
  AddOutputOptions(command, options.form);
}

void Answer(const InquiryOptions& options, Context& context,
            const std::function<Report(Mill&)>& ask) {
  TraceFile trace(context.trace_path);
  {
    Mill mill(options.mill, trace.MakeEngine(), context.console);
    Write(context.console, Render(ask(mill), options.form));
  }
  Flush(context.console);
  trace.Close();
}

std::shared_ptr<Deposito> RequireTank(Mill& mill, std::string_view argument, int32_t number) {
  const int16_t count = mill.session().tank_count;
  if (number < 1 || number > count) FailMissing("the mill", "tank", argument, number, count);
  return mill.root()->Deposito(static_cast<int16_t>(number));
}

std::shared_ptr<Tolva> RequireHopper(Mill& mill, std::string_view argument, int32_t number) {
  const int16_t count = mill.session().hopper_count;
  if (number < 1 || number > count) FailMissing("the mill", "hopper", argument, number, count);
  return mill.root()->Tolva(static_cast<int16_t>(number));
}

std::shared_ptr<Descarga> RequireDischarge(Tolva& hopper, std::string_view argument,
                                           int32_t number) {
  auto discharge = hopper.Descarga(number);
  if (discharge == nullptr) {
    FailMissing("the hopper", "discharge", argument, number, hopper.DescargaEnCurso());
  }
  return discharge;
}

std::shared_ptr<Vaciado> RequireEmptying(Deposito& tank, std::string_view argument,
                                         int32_t number) {
  auto emptying = tank.Vaciado(number);
  if (emptying == nullptr) {
    FailMissing("the tank", "emptying", argument, number, tank.UltimoVaciado());
  }
  return emptying;
}

Report DischargesOf(Mill& mill, int16_t hopper) {
  return HistoryReport("HistoriaDescargas", mill.root()->HistoriaDescargas({}, {}, hopper));
}

CLI::Option* AddCompositionOption(CLI::App& command, std::string& class_name, CompositionOf what) {
  std::vector<std::string> names(kCompositionClasses.begin(), kCompositionClasses.end());
  if (what == CompositionOf::kOlives) names.pop_back();
  return command.add_option("--por", class_name, "Print what it is made of, by one of these")
      ->type_name("CLASS")
      ->check(CLI::IsMember(names));
}

int16_t CompositionClass(std::string_view class_name) {
  const auto* const found =
      std::find(kCompositionClasses.begin(), kCompositionClasses.end(), class_name);
  return static_cast<int16_t>(found - kCompositionClasses.begin() + 1);
}

Variant KnownMoment(OleDate moment) { return moment == OleDate() ? Variant::Null() : moment; }

}  // namespace ambrelio::cli
