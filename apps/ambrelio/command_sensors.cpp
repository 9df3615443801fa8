#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "ambrelio/platform/interruption.h"
#include "ambrelio/value/automation_error.h"
#include "commands.h"
#include "report.h"
#include "table.h"

namespace ambrelio::cli {
namespace {

constexpr char kSensorsDescription[] =
    R"help(Polls the level sensors of a mill and shows what they answer.

Examples:
  ambrelio sensors --app mill
  ambrelio sensors --app mill --seconds 60 --csv > levels.csv
  ambrelio sensors --app mill --json

Where the sensors are is in section SENSORES of Vardex.ini: PortUDP for a gateway,
ActiveX for an automation object. Polling begins after two seconds. A terminal
shows a table of the tanks; otherwise each tank gives one line when it first
answers, and one whenever its state or its reading changes.

Ends after so many seconds as told, or at Ctrl+C. No reading is stored.
)help";

struct SensorsOptions {
  MillOptions mill;
  OutputForm form = OutputForm::kTable;
  int32_t seconds = 0;  // 0 for no end
};

// The name of a state in the object model, and for people; in the order of its numbers.
struct StateName {
  const char* name;
  const char* heading;
};
constexpr std::array kStates = {
    StateName{"hNoHaySensor", "sin sensor"}, StateName{"hNoHayLectura", "sin lectura"},
    StateName{"hErrorLectura", "error de lectura"}, StateName{"hLecturaDisponible", "lectura"}};

const StateName& NameOf(tpHayLectura state) { return kStates.at(static_cast<size_t>(state)); }

struct SensorAnswer {
  tpHayLectura state;
  Variant reading;
  OleDate moment;  // since when it has been so

  bool SameAs(const SensorAnswer& other) const {
    return state == other.state && reading == other.reading;
  }
};

// Shows the answers of the tanks as they come.
class SensorDisplay {
 public:
  SensorDisplay(Mill& mill, OutputForm form, Console& console)
      : mill_(mill),
        form_(form),
        console_(console),
        draws_(form == OutputForm::kTable && console.is_screen),
        answers_(static_cast<size_t>(std::max<int16_t>(mill.session().tank_count, 0))) {
    if (draws_) Draw();
    if (form_ == OutputForm::kCsv) Show(Render(ReportOf({}), form_));
  }

  // To be called after every event, so that no tank is passed by.
  void Look() {
    const int16_t asked = std::exchange(asked_, mill_.session().Sensors()->current_tank());
    bool changed = false;
    for (size_t i = 0; i < answers_.size(); ++i) {
      const auto tank = static_cast<int16_t>(i + 1);
      const bool answered = tank == asked && asked_ != asked;
      if (!answered && !answers_[i]) continue;
      const SensorAnswer answer = AnswerOf(tank);
      if (answers_[i] && answers_[i]->SameAs(answer)) continue;
      answers_[i] = answer;
      changed = true;
      if (!draws_) Show(Line(tank));
    }
    if (changed && draws_) Draw();
  }

 private:
  SensorAnswer AnswerOf(int16_t tank) {
    return {mill_.root()->HayLecturaNivel(tank), mill_.root()->LecturaNivel(tank),
            mill_.session().Now()};
  }

  // People see states by their names in Spanish, programs by those of the object model.
  std::vector<Variant> Row(int16_t tank) const {
    const auto& answer = answers_[static_cast<size_t>(tank - 1)];
    if (!answer) return {Variant(), tank, Variant(), Variant()};
    const StateName& state = NameOf(answer->state);
    return {answer->moment, tank, form_ == OutputForm::kTable ? state.heading : state.name,
            answer->reading};
  }

  static Report ReportOf(std::vector<std::vector<Variant>> rows) {
    return {{{"momento", "Momento"},
             {"deposito", "Depósito"},
             {"estado", "Estado"},
             {"lectura", "Lectura"}},
            std::move(rows),
            /*single=*/false};
  }

  std::string Line(int16_t tank) const {
    const std::vector<Variant> row = Row(tank);
    if (form_ == OutputForm::kCsv) return CsvLine(row);
    if (form_ == OutputForm::kJson) {
      Report report = ReportOf({row});
      report.single = true;
      return Render(report, form_);
    }
    const std::string reading = row[3].is_null() ? "" : "  " + CellOf(row[3]).text;
    return fmt::format("{}  depósito {}  {}{}\n", CellOf(row[0]).text, tank, CellOf(row[2]).text,
                       reading);
  }

  // In the place of the table before.
  void Draw() {
    std::vector<std::vector<Variant>> rows;
    for (size_t i = 0; i < answers_.size(); ++i) rows.push_back(Row(static_cast<int16_t>(i + 1)));
    const std::string table = Render(ReportOf(std::move(rows)), OutputForm::kTable);
    const std::string back = drawn_ == 0 ? "" : fmt::format("\x1b[{}A\x1b[J", drawn_);
    drawn_ = std::count(table.begin(), table.end(), '\n');
    Show(back + table);
  }

  void Show(const std::string& text) {
    Write(console_, text);
    Flush(console_);
  }

  Mill& mill_;
  OutputForm form_;
  Console& console_;
  bool draws_;
  std::vector<std::optional<SensorAnswer>> answers_;  // nothing before the first
  int16_t asked_ = 0;
  std::ptrdiff_t drawn_ = 0;  // lines on the screen
};

void RequireSensors(Mill& mill) {
  if (mill.session().Sensors()->mode() != SensorService::Mode::kNone) return;
  const std::string& object = mill.root()->ObjetoActiveX();
  if (object.empty()) {
    throw Failure(ExitCode::kWrongInput,
                  "no sensors are configured: neither ActiveX nor PortUDP is set in section "
                  "SENSORES of Vardex.ini");
  }
  throw Failure(ExitCode::kAutomationError,
                "the automation object '" + object + "' of the sensors cannot be created");
}

void RunSensors(const SensorsOptions& options, Context& context) {
  TraceFile trace(context.trace_path);
  {
    Mill mill(options.mill, trace.MakeEngine(), context.console, SensorUse::kRequired);
    RequireSensors(mill);
    const Interruption interruption;
    SensorDisplay display(mill, options.form, context.console);
    const auto done = [&] {
      display.Look();
      return interruption.Interrupted();
    };
    using std::chrono::seconds;
    mill.session().Events().RunUntil(
        done, options.seconds > 0 ? seconds(options.seconds) : Milliseconds::max());
  }
  trace.Close();
}

}  // namespace

void AddSensors(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("sensors", kSensorsDescription);
  auto options = std::make_shared<SensorsOptions>();
  AddMillOptions(*command, options->mill)->required();
  command->add_option("--seconds", options->seconds, "End after so many seconds")
      ->check(CLI::Range(1, std::numeric_limits<int32_t>::max()))
      ->type_name("N");
  AddOutputOptions(*command, options->form);
  command->callback([options, &context] { RunSensors(*options, context); });
}

}  // namespace ambrelio::cli
