// The state that all objects of one client thread share: the database and whether it is open, the
// engine, the counts of hoppers and tanks. Every object handed out holds a reference to its
// thread's session and must not outlive the thread.
#pragma once

#include <cstdint>
#include <memory>

#include "ambrelio/dao/database.h"
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

  // The present moment, whole seconds.
  OleDate Now() const;

  int16_t hopper_count = 0;
  int16_t intermediate_hopper_count = 0;
  int16_t tank_count = 1;
  // The host is the networked edition.
  bool vardex3 = false;

 private:
  std::shared_ptr<dao::DBEngine> engine_;
  std::shared_ptr<dao::Database> database_;
  bool open_ = false;
};

}  // namespace ambrelio
