// An index of DAO's.
#pragma once

#include <memory>
#include <string>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/dao_com/collection.h"
#include "ambrelio/engine/dao_com/dao_object.h"
#include "ambrelio/engine/dao_com/field.h"

namespace ambrelio::dao_com {

class Index final : public dao::Index, public DaoObject {
 public:
  using DaoObject::DaoObject;

  std::string Name() const override;
  void SetName(const std::string& name) override;
  bool Primary() const override;
  void SetPrimary(bool primary) override;
  bool Unique() const override;
  void SetUnique(bool unique) override;
  bool IgnoreNulls() const override;
  void SetIgnoreNulls(bool ignore) override;
  bool Required() const override;
  void SetRequired(bool required) override;
  dao::Collection<dao::Field>& Fields() override;
  std::shared_ptr<dao::Field> CreateField(const std::string& name) override;

 private:
  Collection<dao::Field, Field> fields_{com::LateBound()};
};

}  // namespace ambrelio::dao_com
