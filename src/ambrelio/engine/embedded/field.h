// A column of a table or of an index.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ambrelio/dao/definitions.h"
#include "ambrelio/engine/embedded/connection.h"

namespace ambrelio::embedded {

class Field final : public dao::Field {
 public:
  // One in memory.
  Field(std::shared_ptr<Connection> connection, FieldInfo draft);
  // One of a stored table, read from the catalogue at each use.
  Field(std::shared_ptr<Connection> connection, int64_t table, int64_t field);

  std::string Name() const override { return Info().name; }
  void SetName(const std::string& name) override;
  dao::FieldType Type() const override { return Info().type; }
  int32_t Size() const override;
  int16_t OrdinalPosition() const override;
  void SetOrdinalPosition(int16_t position) override;
  int32_t Attributes() const override;
  void SetAttributes(int32_t attributes) override;
  bool Required() const override { return Info().required; }
  void SetRequired(bool required) override;
  bool AllowZeroLength() const override { return Info().allow_zero_length; }
  void SetAllowZeroLength(bool allow) override;
  std::string DefaultValue() const override { return Info().default_value; }
  void SetDefaultValue(const std::string& expression) override;
  Variant Value() const override;

  // For the collections. Info raises 3420 when the database is closed or the field is deleted.
  const FieldInfo& Info() const;
  bool appended() const { return place_ != Place::kNowhere; }
  // Now in the list of a table or index in memory, at this position; or in none.
  void Keep(int16_t position);
  void LetGo() { place_ = Place::kNowhere; }
  // Now in a stored index, where nothing changes any more; its attributes say whether it descends.
  void KeepInIndex() { place_ = Place::kIndex; }
  void BecomeStored(std::shared_ptr<Connection> connection, int64_t table, int64_t field);

 private:
  const TableInfo& Table() const;  // of a stored field
  enum class Place : uint8_t { kNowhere, kMemory, kIndex, kStored };
  void Change(const char* property, const std::function<void(FieldInfo&)>& change);

  std::shared_ptr<Connection> connection_;
  Place place_ = Place::kNowhere;
  FieldInfo draft_;  // unless kStored
  int64_t table_ = 0;
  int64_t field_ = 0;
};

}  // namespace ambrelio::embedded
