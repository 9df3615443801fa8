#include "mill.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/dao/trace.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/value/automation_error.h"
#include "failure.h"

namespace ambrelio::cli {
namespace {

[[noreturn]] void FailTrace(const std::string& path) {
  throw Failure(ExitCode::kFileProblem, "the trace file '" + path + "' cannot be written: " +
                                            std::generic_category().message(errno));
}

// Whether nothing is lost: the file is no file yet, or empty, or an earlier trace.
bool MayBecomeTrace(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(FilePath(path), ignored)) return true;
  std::ifstream file(FilePath(path), std::ios::binary);
  std::string line;
  if (!std::getline(file, line)) return true;
  return line.starts_with(R"({"sql":)") && line.find(R"(,"us":)") != std::string::npos;
}

}  // namespace

TraceFile::TraceFile(const std::string& path) : path_(path) {
  if (path.empty()) return;
  if (!MayBecomeTrace(path)) {
    throw Failure(ExitCode::kFileProblem,
                  "'" + path + "' exists already and is no trace; it is left as it is");
  }
  file_ = std::make_shared<std::ofstream>(FilePath(path), std::ios::binary);
  if (!*file_) FailTrace(path);
}

std::shared_ptr<dao::DBEngine> TraceFile::MakeEngine() {
  std::shared_ptr<dao::DBEngine> engine = engine::Create();
  if (file_ == nullptr) return engine;
  return dao::Traced(std::move(engine), [file = file_](const dao::TraceEntry& entry) {
    *file << dao::TraceLine(entry) << '\n';
  });
}

void TraceFile::Close() {
  if (file_ == nullptr) return;
  file_->close();
  if (!*file_) FailTrace(path_);
}

frame::DatabaseSettings ReadSettings(Session& session, const MillOptions& options) {
  std::error_code ignored;
  if (!std::filesystem::is_directory(FilePath(options.app), ignored)) {
    throw Failure(ExitCode::kFileProblem,
                  "the application folder '" + options.app + "' does not exist");
  }
  session.vardex3 = options.vardex3;
  return frame::LoadGeneralSettings(session, options.app);
}

std::shared_ptr<dao::Database> OpenDatabase(Session& session,
                                            const frame::DatabaseSettings& settings,
                                            Opening opening) {
  try {
    return session.Workspace().OpenDatabase(settings.path, /*exclusive=*/false,
                                            opening == Opening::kForReading,
                                            ";pwd=" + settings.password);
  } catch (const AutomationError& error) {
    throw Failure(ExitCode::kFileProblem,
                  "the database '" + settings.path + "' cannot be opened: error " +
                      std::to_string(error.number()) + ": " + error.description());
  }
}

Mill::Mill(const MillOptions& options, std::shared_ptr<dao::DBEngine> engine, Console& console,
           SensorUse sensors) {
  session_.UseEngine(std::move(engine));
  session_.UseEvents(console.events);
  const frame::DatabaseSettings settings = ReadSettings(session_, options);
  root_ = std::make_shared<Trazabilidad>(session_);
  try {
    Open(options, console, sensors);
  } catch (const AutomationError& error) {
    // Of two that open a new database at the same moment, one finds that the other has just made
    // the stored query that it was about to make.
    if (error.number() != static_cast<int>(dao::DaoError::kObjectExists)) throw;
    Open(options, console, sensors);
  }
  if (root_->BaseAbierta()) return;
  // The library keeps no reason. Opening once more gives the engine's; if that succeeds, whatever
  // stood in the way has just gone.
  OpenDatabase(session_, settings)->Close();
  throw Failure(ExitCode::kFileProblem, "the database '" + settings.path +
                                            "' could not be opened; it can be now: try again");
}

void Mill::Open(const MillOptions& options, Console& console, SensorUse sensors) {
  try {
    root_->Constructor(options.app, options.vardex3);
  } catch (const AutomationError& error) {
    // The sensor service comes last, when all else is ready.
    const bool ready = root_->BaseAbierta() && session_.Sensors() != nullptr;
    if (!ready || sensors == SensorUse::kRequired) throw;
    console.err << fmt::format("ambrelio: the sensors are not polled: error {}: {}\n",
                               error.number(), error.description());
  }
}

}  // namespace ambrelio::cli
