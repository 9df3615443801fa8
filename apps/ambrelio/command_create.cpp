#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <memory>

#include "ambrelio/host/create_database.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/platform/unfinished_file.h"
#include "ambrelio/value/automation_error.h"
#include "commands.h"

namespace ambrelio::cli {
namespace {

constexpr char kCreateDescription[] = R"help(Creates the database of a mill.

Examples:
  ambrelio create --app C:\almazara
  ambrelio create --app mill --masters examples/campana

The INI files of the application folder name the database and its password: a
Jet file (Access 2000 to 2003) when its name ends in .mdb, and one of the embedded
engine otherwise. A database that exists is never overwritten. The master files are UTF-8, separated
by commas, and their first line names the columns.
)help";

// What the engine keeps beside a database while it is open: the log, its index, and of a Jet file
// the rollback record and the lock.
constexpr const char* kLog = "-wal";
constexpr const char* kLogIndex = "-shm";
constexpr const char* kRollback = "-rollback";
constexpr const char* kLock = "-lock";

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
  return Utf8Path(FilePath(folder) / master.file);
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

// The place is also taken by a link that leads nowhere, and by the log or the rollback record of a
// former database, which would be taken for the new one's.
void CheckPlace(const std::string& path) {
  for (const std::string& name : {path, path + kLog, path + kRollback}) {
    std::error_code ignored;
    const auto status = std::filesystem::symlink_status(FilePath(name), ignored);
    if (std::filesystem::exists(status)) FailExisting(name);
  }
}

void PutInPlace(const UnfinishedFile& file, const std::string& path) {
  const std::error_code error = file.TakePlace();
  if (error == std::errc::file_exists) FailExisting(path);  // somebody else was faster
  if (error) {
    throw Failure(ExitCode::kFileProblem,
                  fmt::format("the database '{}' cannot be created: {}", path, error.message()));
  }
}

// Returns what to tell.
std::string LoadMasters(Session& session, const frame::DatabaseSettings& settings,
                        const std::string& folder) {
  std::string report;
  const auto database = OpenDatabase(session, settings);
  for (const Master& master : kMasters) {
    const int rows =
        host::LoadMaster(session.Engine(), *database, master.table, MasterPath(folder, master));
    report += fmt::format("{}: {} rows\n", master.table, rows);
  }
  database->Close();
  return report;
}

// Makes the database of `settings` under the name `unfinished`. Returns what to tell.
std::string Make(Session& session, const frame::DatabaseSettings& settings,
                 const std::string& masters, const std::string& unfinished) {
  try {
    host::CreateMillDatabase(session.Engine(), unfinished, settings.password);
    std::string report = fmt::format("{} created\n", settings.path);
    if (!masters.empty()) {
      report += LoadMasters(session, {unfinished, settings.password}, masters);
    }
    return report;
  } catch (const AutomationError& error) {
    // What is wrong with the content of a master names the file and the line.
    if (error.number() == static_cast<int>(RuntimeError::kInvalidCall)) {
      throw Failure(ExitCode::kWrongInput, error.description());
    }
    throw Failure(ExitCode::kFileProblem,
                  fmt::format("the database '{}' cannot be created: error {}: {}", settings.path,
                              error.number(), error.description()));
  }
}

void RunCreate(const CreateOptions& options, Context& context) {
  TraceFile trace(context.trace_path);
  Session session;
  session.UseEngine(trace.MakeEngine());
  const frame::DatabaseSettings settings = ReadSettings(session, options.mill);
  if (!options.masters.empty()) CheckMasters(options.masters);

  CheckPlace(settings.path);
  const UnfinishedFile unfinished(settings.path, {kLog, kLogIndex, kRollback, kLock});
  const std::string report = Make(session, settings, options.masters, unfinished.path());
  PutInPlace(unfinished, settings.path);
  Write(context.console, report);
  Flush(context.console);
  trace.Close();
}

}  // namespace

void AddCreate(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("create", kCreateDescription);
  auto options = std::make_shared<CreateOptions>();
  AddMillOptions(*command, options->mill)->required();
  command
      ->add_option("--masters", options->masters,
                   "Folder with socios.csv, productos.csv and municipios.csv to load")
      ->type_name("DIR");
  command->callback([options, &context] { RunCreate(*options, context); });
}

}  // namespace ambrelio::cli
