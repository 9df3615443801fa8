#include "ambrelio/engine/dao_com/dao_engine.h"

#include <string>
#include <utility>

#include "ambrelio/com/late_bound.h"
#include "ambrelio/engine/dao_com/dao_object.h"
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

class DaoEngine final : public dao::DBEngine, public DaoObject {
 public:
  explicit DaoEngine(com::LateBound engine)
      : DaoObject(std::move(engine)), workspace_(dao().ObjectFrom("Workspaces").Item(int32_t{0})) {}

  std::string Version() const override { return ToText(dao().Call("Version")); }
  dao::Workspace& DefaultWorkspace() override { return workspace_; }

 private:
  Workspace workspace_;
};

}  // namespace

std::shared_ptr<dao::DBEngine> CreateEngine() { return std::make_shared<DaoEngine>(Dao()); }

}  // namespace ambrelio::dao_com
