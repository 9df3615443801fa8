#include "ambrelio/data/transaction.h"

namespace ambrelio::data {

bool InTransaction(Session& session, const std::function<bool()>& change) {
  dao::Workspace& workspace = session.Workspace();
  workspace.BeginTrans();
  const bool done = change();
  if (done) {
    workspace.CommitTrans();
  } else {
    workspace.Rollback();
  }
  return done;
}

}  // namespace ambrelio::data
