#include "ambrelio/engine/dao_com/dao_engine.h"

#include <objbase.h>

#include <string>

#include "ambrelio/com/apartment.h"
#include "ambrelio/com/late_bound.h"
#include "ambrelio/engine/dao_com/workspace.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {
namespace {

com::LateBound Dao() {
  try {
    return com::LateBound(com::CreateObject("DAO.DBEngine.36"));
  } catch (const AutomationError&) {
    return com::LateBound(com::CreateObject("DAO.DBEngine.120"));
  }
}

class DaoEngine final : public dao::DBEngine {
 public:
  std::string Version() const override { return ToText(engine_.Call("Version")); }
  dao::Workspace& DefaultWorkspace() override { return workspace_; }

 private:
  com::Apartment apartment_;  // outlives DAO's objects
  com::LateBound engine_ = Dao();
  Workspace workspace_{engine_.ObjectFrom("Workspaces").Item(int32_t{0})};
};

}  // namespace

std::shared_ptr<dao::DBEngine> CreateEngine() { return std::make_shared<DaoEngine>(); }

bool IsRegistered() {
  CLSID ignored;
  return SUCCEEDED(CLSIDFromProgID(L"DAO.DBEngine.36", &ignored)) ||
         SUCCEEDED(CLSIDFromProgID(L"DAO.DBEngine.120", &ignored));
}

}  // namespace ambrelio::dao_com
