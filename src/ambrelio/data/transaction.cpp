#include "ambrelio/data/transaction.h"

#include "ambrelio/dao/errors.h"

namespace ambrelio::data {
namespace {

// A level begun over no open database would stay open, take in the database opened next, and lose
// at its closing all that is written till then.
void RequireOpenDatabase(const Session& session) {
  if (session.IsOpen()) return;
  const dao::Database& closed = session.Database();  // 91 without one
  static_cast<void>(closed);
  dao::Raise(dao::DaoError::kObjectClosed, dao::source::kDatabase);
}

}  // namespace

bool InTransaction(Session& session, const std::function<bool()>& change) {
  RequireOpenDatabase(session);
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
