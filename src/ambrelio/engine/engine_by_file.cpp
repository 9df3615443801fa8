#include "ambrelio/engine/engine_by_file.h"

#include <string>
#include <utility>

#include "ambrelio/engine/embedded/storage/storage_file.h"

namespace ambrelio::engine {
namespace {

class WorkspaceByFile final : public dao::Workspace {
 public:
  WorkspaceByFile(std::shared_ptr<dao::DBEngine> own, EngineFactory jet)
      : own_(std::move(own)), make_jet_(std::move(jet)), used_(own_.get()) {}

  std::shared_ptr<dao::Database> OpenDatabase(const std::string& path, bool exclusive,
                                              bool read_only, const std::string& connect) override {
    dao::DBEngine& engine = EngineOf(path);
    auto database = engine.DefaultWorkspace().OpenDatabase(path, exclusive, read_only, connect);
    used_ = &engine;
    return database;
  }
  std::shared_ptr<dao::Database> CreateDatabase(const std::string& path,
                                                const std::string& connect) override {
    auto database = own_->DefaultWorkspace().CreateDatabase(path, connect);
    used_ = own_.get();
    return database;
  }

  void BeginTrans() override { used_->DefaultWorkspace().BeginTrans(); }
  void CommitTrans() override { used_->DefaultWorkspace().CommitTrans(); }
  void Rollback() override { used_->DefaultWorkspace().Rollback(); }
  void BeginStretch() override { used_->DefaultWorkspace().BeginStretch(); }
  void EndStretch() override { used_->DefaultWorkspace().EndStretch(); }

 private:
  dao::DBEngine& EngineOf(const std::string& path) {
    if (!embedded::IsJetFile(path)) return *own_;
    if (!jet_) jet_ = make_jet_();
    return *jet_;
  }

  std::shared_ptr<dao::DBEngine> own_;
  EngineFactory make_jet_;
  std::shared_ptr<dao::DBEngine> jet_;  // once a file has needed it
  dao::DBEngine* used_;
};

class ByFile final : public dao::DBEngine {
 public:
  ByFile(const std::shared_ptr<dao::DBEngine>& own, EngineFactory jet)
      : version_(own->Version()), workspace_(own, std::move(jet)) {}

  std::string Version() const override { return version_; }
  dao::Workspace& DefaultWorkspace() override { return workspace_; }

 private:
  std::string version_;
  WorkspaceByFile workspace_;
};

}  // namespace

std::shared_ptr<dao::DBEngine> EngineByFile(const std::shared_ptr<dao::DBEngine>& own,
                                            EngineFactory jet) {
  return std::make_shared<ByFile>(own, std::move(jet));
}

}  // namespace ambrelio::engine
