// The state that all objects of one client thread share: the database and whether it is open, the
// engine, the counts of hoppers and tanks, the sensor service and its events. Every object handed
// out holds a reference to its thread's session and must not outlive the thread.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "ambrelio/dao/database.h"
#include "ambrelio/data/sensor_service.h"
#include "ambrelio/platform/automation_objects.h"
#include "ambrelio/platform/event_loop.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio {

class Session {
 public:
  // The calling thread's session.
  static Session& Current();

  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // The engine, made on first use unless one was given before.
  dao::DBEngine& Engine();
  void UseEngine(std::shared_ptr<dao::DBEngine> engine);
  // The default workspace, which carries all transactions.
  dao::Workspace& Workspace() { return Engine().DefaultWorkspace(); }

  // The database last opened: error 91 when there is none, 3420 from its members once closed.
  dao::Database& Database() const;
  bool IsOpen() const { return open_; }
  // Takes a database just opened, or null after a failed opening.
  void SetDatabase(std::shared_ptr<dao::Database> database);
  // Closes the database if it is open; the flag falls even when the closing fails.
  void CloseDatabase();
  // Closes the database and lets go of it and of the engine: for a door whose thread has no object
  // left that could use them. The next use makes a new engine.
  void ReleaseEngine();

  // The present moment, whole seconds.
  OleDate Now() const;

  // The loop that the host runs between its calls, so that sensors are polled:
  // Session::Current().Events().RunFor(Milliseconds(500)). Made on first use unless one was given
  // before, which may be shared with others on the thread; giving one ends the sensor service.
  EventLoop& Events();
  void UseEvents(std::shared_ptr<EventLoop> events);
  // What other programs offer under a programmatic identifier.
  ambrelio::AutomationObjects& AutomationObjects() { return automation_objects_; }
  // Null until settings have been loaded.
  const std::shared_ptr<SensorService>& Sensors() const { return sensors_; }
  void SetSensors(std::shared_ptr<SensorService> sensors) { sensors_ = std::move(sensors); }

  int16_t hopper_count = 0;
  int16_t intermediate_hopper_count = 0;
  int16_t tank_count = 1;
  // The host is the networked edition.
  bool vardex3 = false;

 private:
  std::shared_ptr<dao::DBEngine> engine_;
  std::shared_ptr<dao::Database> database_;
  bool open_ = false;
  std::shared_ptr<EventLoop> events_;
  ambrelio::AutomationObjects automation_objects_;
  std::shared_ptr<SensorService> sensors_;  // goes before the loop that drives it
};

}  // namespace ambrelio
