#include "ambrelio/data/stretch.h"

#include "ambrelio/value/automation_error.h"

namespace ambrelio::data {

void InOneStretch(Session& session, const std::function<void()>& change) {
  dao::Workspace& workspace = session.Workspace();
  workspace.BeginStretch();
  try {
    change();
  } catch (...) {
    try {
      workspace.EndStretch();
    } catch (const AutomationError&) {
      // The host learns of the error that came first.
    }
    throw;
  }
  workspace.EndStretch();
}

}  // namespace ambrelio::data
