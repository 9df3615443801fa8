#include "ambrelio/engine/embedded/embedded_engine.h"

#include <utility>

#include "ambrelio/engine/embedded/workspace.h"

namespace ambrelio::embedded {
namespace {

class EmbeddedEngine final : public dao::DBEngine {
 public:
  EmbeddedEngine(const PlanOptions& plan, KeptIndexes kept, NewFiles new_files)
      : workspace_(plan, std::move(kept), new_files) {}

  // The version of DAO whose behaviour clients find here.
  std::string Version() const override { return "3.6"; }
  dao::Workspace& DefaultWorkspace() override { return workspace_; }

 private:
  Workspace workspace_;
};

}  // namespace

std::shared_ptr<dao::DBEngine> CreateEngine(const PlanOptions& plan, KeptIndexes kept,
                                            NewFiles new_files) {
  return std::make_shared<EmbeddedEngine>(plan, std::move(kept), new_files);
}

}  // namespace ambrelio::embedded
