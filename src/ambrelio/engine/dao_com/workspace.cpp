#include "ambrelio/engine/dao_com/workspace.h"

#include "ambrelio/engine/dao_com/database.h"

namespace ambrelio::dao_com {
namespace {

// dbLangGeneral and dbVersion40.
constexpr const char* kGeneralOrder = ";LANGID=0x0409;CP=1252;COUNTRY=0";
constexpr int32_t kJet4 = 64;

}  // namespace

// All four arguments, always: DAO refuses a password when those before it are left out.
std::shared_ptr<dao::Database> Workspace::OpenDatabase(const std::string& path, bool exclusive,
                                                       bool read_only, const std::string& connect) {
  return std::make_shared<Database>(
      dao().ObjectFrom("OpenDatabase", {path, exclusive, read_only, connect}));
}

std::shared_ptr<dao::Database> Workspace::CreateDatabase(const std::string& path,
                                                         const std::string& connect) {
  return std::make_shared<Database>(
      dao().ObjectFrom("CreateDatabase", {path, kGeneralOrder + connect, kJet4}));
}

void Workspace::BeginTrans() { dao().Call("BeginTrans"); }
void Workspace::CommitTrans() { dao().Call("CommitTrans"); }
void Workspace::Rollback() { dao().Call("Rollback"); }

}  // namespace ambrelio::dao_com
