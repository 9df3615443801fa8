#include "ambrelio/frame/connection.h"

#include "ambrelio/value/automation_error.h"

namespace ambrelio::frame {

void OpenDatabaseSession(Session& session, const std::string& path, const std::string& password) {
  session.CloseDatabase();
  dao::Workspace& workspace = session.Workspace();
  try {
    session.SetDatabase(
        workspace.OpenDatabase(path, /*exclusive=*/false, /*read_only=*/false, ";pwd=" + password));
  } catch (const AutomationError&) {
    // A database that does not open is a state of the mill, not a failure: the host asks
    // BaseAbierta.
    session.SetDatabase(nullptr);
  }
}

}  // namespace ambrelio::frame
