// A field of DAO's: a column of a table, of an index or of a recordset.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/dao_com/dao_object.h"

namespace ambrelio::dao_com {

class Field final : public dao::Field, public DaoObject {
 public:
  using DaoObject::DaoObject;

  std::string Name() const override;
  void SetName(const std::string& name) override;
  dao::FieldType Type() const override;
  int32_t Size() const override;
  int16_t OrdinalPosition() const override;
  void SetOrdinalPosition(int16_t position) override;
  int32_t Attributes() const override;
  void SetAttributes(int32_t attributes) override;
  bool Required() const override;
  void SetRequired(bool required) override;
  bool AllowZeroLength() const override;
  void SetAllowZeroLength(bool allow) override;
  std::string DefaultValue() const override;
  void SetDefaultValue(const std::string& expression) override;
  Variant Value() const override;
};

}  // namespace ambrelio::dao_com
