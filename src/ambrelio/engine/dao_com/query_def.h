// A stored query, as DAO has it.
#pragma once

#include <string>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/dao_com/dao_object.h"

namespace ambrelio::dao_com {

class QueryDef final : public dao::QueryDef, public DaoObject {
 public:
  using DaoObject::DaoObject;

  std::string Name() const override;
  // DAO may give the text back with other blanks and a final ";".
  std::string Sql() const override;
  void SetSql(const std::string& sql) override;
};

}  // namespace ambrelio::dao_com
