// The mill that a command works on: its engine, traced if wanted, and its database.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/frame/settings.h"
#include "ambrelio/frame/trazabilidad.h"
#include "console.h"

namespace ambrelio::cli {

// Where a mill's settings are.
struct MillOptions {
  std::string app;       // the application folder
  bool vardex3 = false;  // the host is the networked edition
};

// The file that every statement is written to, one JSON object a line. Without a name there is
// none.
class TraceFile {
 public:
  // Raises Failure when the file cannot be written.
  explicit TraceFile(const std::string& path);

  // The engine of this system, reporting to the file if there is one.
  std::shared_ptr<dao::DBEngine> MakeEngine();
  // Raises Failure when something of the trace was lost.
  void Close();

 private:
  std::string path_;
  std::shared_ptr<std::ofstream> file_;
};

// What the INI files of the mill say. Raises Failure when there is no such folder.
frame::DatabaseSettings ReadSettings(Session& session, const MillOptions& options);

enum class Opening : uint8_t { kForWork, kForReading };

// Opens a database. Raises Failure (file problem) with the engine's own words.
std::shared_ptr<dao::Database> OpenDatabase(Session& session,
                                            const frame::DatabaseSettings& settings,
                                            Opening opening = Opening::kForWork);

// Whether a command is of use when the level sensors cannot be polled, as when another program
// polls them already.
enum class SensorUse : uint8_t { kOptional, kRequired };

// The library at work on a mill, from Constructor to Cerrar. Its events are the console's.
class Mill {
 public:
  // Raises Failure, saying why, when the database does not open. A sensor service that does not
  // start is told on standard error; where it is required, its error is raised.
  Mill(const MillOptions& options, std::shared_ptr<dao::DBEngine> engine, Console& console,
       SensorUse sensors = SensorUse::kOptional);

  Session& session() { return session_; }
  const std::shared_ptr<Trazabilidad>& root() const { return root_; }

 private:
  void Open(const MillOptions& options, Console& console, SensorUse sensors);

  Session session_;
  std::shared_ptr<Trazabilidad> root_;  // closes the database before the session goes
};

}  // namespace ambrelio::cli
