#include "mill.h"

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
                                            const frame::DatabaseSettings& settings) {
  try {
    return session.Workspace().OpenDatabase(settings.path, /*exclusive=*/false,
                                            /*read_only=*/false, ";pwd=" + settings.password);
  } catch (const AutomationError& error) {
    throw Failure(ExitCode::kFileProblem,
                  "the database '" + settings.path + "' cannot be opened: error " +
                      std::to_string(error.number()) + ": " + error.description());
  }
}

Mill::Mill(const MillOptions& options, std::shared_ptr<dao::DBEngine> engine) {
  session_.UseEngine(std::move(engine));
  const frame::DatabaseSettings settings = ReadSettings(session_, options);
  root_ = std::make_shared<Trazabilidad>(session_);
  try {
    root_->Constructor(options.app, options.vardex3);
  } catch (const AutomationError& error) {
    // Of two that open a new database at the same moment, one finds that the other has just made
    // the stored query that it was about to make.
    if (error.number() != static_cast<int>(dao::DaoError::kObjectExists)) throw;
    root_->Constructor(options.app, options.vardex3);
  }
  if (root_->BaseAbierta()) return;
  // The library keeps no reason. Opening once more gives the engine's; if that succeeds, whatever
  // stood in the way has just gone.
  OpenDatabase(session_, settings)->Close();
  throw Failure(ExitCode::kFileProblem, "the database '" + settings.path +
                                            "' could not be opened; it can be now: try again");
}

}  // namespace ambrelio::cli
