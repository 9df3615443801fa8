#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <memory>

#include "ambrelio/dao/errors.h"
#include "ambrelio/host/create_database.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/value/automation_error.h"
#include "commands.h"

namespace ambrelio::cli {
namespace {

constexpr char kDescription[] = R"help(Creates the database of a mill.

Examples:
  ambrelio create --app C:\almazara
  ambrelio create --app mill --masters examples/campana

The INI files of the application folder name the database and its password; a
database that exists is never overwritten. The master files are UTF-8, separated
by commas, and their first line names the columns.
)help";

struct CreateOptions {
  MillOptions mill;
  std::string masters;
};

struct Master {
  const char* file;
  const char* table;
};
constexpr std::array kMasters = {Master{"socios.csv", "SOCIO"}, Master{"productos.csv", "PRODUCTO"},
                                 Master{"municipios.csv", "MUNICIPIO"}};

bool Exists(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(FilePath(path), ignored);
}

std::string MasterPath(const std::string& folder, const Master& master) {
  return (std::filesystem::path(folder) / master.file).string();
}

void CheckMasters(const std::string& folder) {
  for (const Master& master : kMasters) {
    const std::string path = MasterPath(folder, master);
    if (!Exists(path)) throw Failure(ExitCode::kFileProblem, "'" + path + "' does not exist");
  }
}

[[noreturn]] void FailExisting(const std::string& path) {
  throw Failure(ExitCode::kFileProblem, "'" + path + "' exists already; it is left as it is");
}

// Removes a database that did not get finished.
class Unfinished {
 public:
  explicit Unfinished(std::string path) : path_(std::move(path)) {}
  ~Unfinished() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove(FilePath(path_), ignored);
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;
  void Keep() { path_.clear(); }

 private:
  std::string path_;
};

void CreateEmpty(Session& session, const frame::DatabaseSettings& settings) {
  std::error_code ignored;
  if (std::filesystem::exists(std::filesystem::symlink_status(FilePath(settings.path), ignored))) {
    FailExisting(settings.path);
  }
  Unfinished unfinished(settings.path);
  try {
    host::CreateMillDatabase(session.Engine(), settings.path, settings.password);
    unfinished.Keep();
  } catch (const AutomationError& error) {
    if (error.number() == static_cast<int>(dao::DaoError::kDatabaseExists)) {
      unfinished.Keep();  // somebody else was faster
      FailExisting(settings.path);
    }
    throw Failure(ExitCode::kFileProblem,
                  fmt::format("the database '{}' cannot be created: error {}: {}", settings.path,
                              error.number(), error.description()));
  }
}

// Returns what to tell.
std::string LoadMasters(Session& session, const frame::DatabaseSettings& settings,
                        const std::string& folder) {
  std::string report;
  const auto database = OpenDatabase(session, settings);
  for (const Master& master : kMasters) {
    try {
      const int rows =
          host::LoadMaster(session.Engine(), *database, master.table, MasterPath(folder, master));
      report += fmt::format("{}: {} rows\n", master.table, rows);
    } catch (const AutomationError& error) {
      throw Failure(ExitCode::kWrongInput, error.description());
    }
  }
  database->Close();
  return report;
}

void RunCreate(const CreateOptions& options, Context& context) {
  TraceFile trace(context.trace_path);
  Session session;
  session.UseEngine(trace.MakeEngine());
  const frame::DatabaseSettings settings = ReadSettings(session, options.mill);
  if (!options.masters.empty()) CheckMasters(options.masters);

  CreateEmpty(session, settings);
  Unfinished unfinished(settings.path);
  std::string report = fmt::format("{} created\n", settings.path);
  if (!options.masters.empty()) report += LoadMasters(session, settings, options.masters);
  unfinished.Keep();
  Write(context.console, report);
  Flush(context.console);
  trace.Close();
}

}  // namespace

void AddCreate(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("create", kDescription);
  auto options = std::make_shared<CreateOptions>();
  AddMillOptions(*command, options->mill)->required();
  command->add_option("--masters", options->masters,
                      "Folder with socios.csv, productos.csv and municipios.csv to load");
  command->callback([options, &context] { RunCreate(*options, context); });
}

}  // namespace ambrelio::cli
