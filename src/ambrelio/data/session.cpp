#include "ambrelio/data/session.h"

#include <utility>

#include "ambrelio/engine/engine.h"
#include "ambrelio/platform/clock.h"
#include "ambrelio/platform/thread_value.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {

Session& Session::Current() { return ThreadValue<Session>(); }

dao::DBEngine& Session::Engine() {
  if (!engine_) engine_ = engine::Create();
  return *engine_;
}

void Session::UseEngine(std::shared_ptr<dao::DBEngine> engine) { engine_ = std::move(engine); }

dao::Database& Session::Database() const {
  if (!database_) Raise(RuntimeError::kObjectNotSet);
  return *database_;
}

void Session::SetDatabase(std::shared_ptr<dao::Database> database) {
  database_ = std::move(database);
  open_ = database_ != nullptr;
}

void Session::CloseDatabase() {
  // The closed database is kept: objects handed out before then fail with 3420, as long as nothing
  // else is opened.
  if (std::exchange(open_, false)) database_->Close();
}

void Session::ReleaseEngine() {
  CloseDatabase();
  database_ = nullptr;
  engine_ = nullptr;
}

EventLoop& Session::Events() {
  if (!events_) events_ = std::make_shared<EventLoop>();
  return *events_;
}

void Session::UseEvents(std::shared_ptr<EventLoop> events) {
  sensors_ = nullptr;  // its timer belongs to the loop before
  events_ = std::move(events);
}

OleDate Session::Now() const { return Clock::Current().Now(); }

}  // namespace ambrelio
