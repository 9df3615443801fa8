// The definition of a table, as DAO has it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/dao_com/collection.h"
#include "ambrelio/engine/dao_com/dao_object.h"
#include "ambrelio/engine/dao_com/field.h"
#include "ambrelio/engine/dao_com/index.h"

namespace ambrelio::dao_com {

class TableDef final : public dao::TableDef, public DaoObject {
 public:
  using DaoObject::DaoObject;

  std::string Name() const override;
  void SetName(const std::string& name) override;
  dao::Collection<dao::Field>& Fields() override;
  dao::Collection<dao::Index>& Indexes() override;
  std::shared_ptr<dao::Field> CreateField(const std::string& name, dao::FieldType type,
                                          int32_t size) override;
  std::shared_ptr<dao::Index> CreateIndex(const std::string& name) override;

 private:
  Collection<dao::Field, Field> fields_{com::LateBound()};
  Collection<dao::Index, Index> indexes_{com::LateBound()};
};

}  // namespace ambrelio::dao_com
