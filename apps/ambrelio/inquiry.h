// What the commands share that ask a mill and print the answer. They go through the object model,
// so that they see what its hosts see.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/hoppers/descarga.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/vaciado.h"
#include "commands.h"
#include "layouts.h"
#include "report.h"

namespace ambrelio::cli {

struct InquiryOptions {
  MillOptions mill;
  OutputForm form = OutputForm::kTable;
};
// Declares --app, --vardex3, --json and --csv.
void AddInquiryOptions(CLI::App& command, InquiryOptions& options);

// Opens the mill, asks, and prints the answer in the form wanted.
void Answer(const InquiryOptions& options, Context& context,
            const std::function<Report(Mill&)>& ask);

// The object of that number. Each raises Failure (wrong input) for a number that the mill does not
// have, naming `argument`, in which it was given, and the numbers there are.
std::shared_ptr<Deposito> RequireTank(Mill& mill, std::string_view argument, int32_t number);
std::shared_ptr<Tolva> RequireHopper(Mill& mill, std::string_view argument, int32_t number);
std::shared_ptr<Descarga> RequireDischarge(Tolva& hopper, std::string_view argument,
                                           int32_t number);
std::shared_ptr<Vaciado> RequireEmptying(Deposito& tank, std::string_view argument, int32_t number);

// The discharges of a hopper into tanks.
Report DischargesOf(Mill& mill, int16_t hopper);

// Declares --por. Only oil can be told by mill line.
enum class CompositionOf : uint8_t { kOil, kOlives };
CLI::Option* AddCompositionOption(CLI::App& command, std::string& class_name, CompositionOf what);
// The `clase` of Composicion that an answer to --por stands for.
int16_t CompositionClass(std::string_view class_name);
// The composition of a tank, emptying, hopper or discharge.
template <class T>
Report CompositionReport(T& object, std::string_view class_name) {
  return ListReport(object.ClassName(), "Composicion",
                    object.Composicion(CompositionClass(class_name)));
}

// The zero date stands for a moment that has not come.
Variant KnownMoment(OleDate moment);

}  // namespace ambrelio::cli
