// The default workspace of DAO. It is the process's own: a host that uses the same DAO shares its
// transactions.
#pragma once

#include <memory>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/dao_com/dao_object.h"

namespace ambrelio::dao_com {

class Workspace final : public dao::Workspace, public DaoObject {
 public:
  using DaoObject::DaoObject;

  std::shared_ptr<dao::Database> OpenDatabase(const std::string& path, bool exclusive,
                                              bool read_only, const std::string& connect) override;
  // A file of Jet 4 with the General order of text.
  std::shared_ptr<dao::Database> CreateDatabase(const std::string& path,
                                                const std::string& connect) override;
  void BeginTrans() override;
  void CommitTrans() override;
  void Rollback() override;
};

}  // namespace ambrelio::dao_com
