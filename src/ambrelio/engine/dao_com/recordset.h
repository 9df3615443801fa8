// A recordset of DAO's, read row by row with one call for each value and each move.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/dao_com/collection.h"
#include "ambrelio/engine/dao_com/dao_object.h"
#include "ambrelio/engine/dao_com/field.h"

namespace ambrelio::dao_com {

// The fields of a recordset, each asked for once: a field gives the value of whatever row is
// current.
class RecordsetFields final : public Collection<dao::Field, Field> {
 public:
  using Collection::Collection;

  std::shared_ptr<dao::Field> Item(int index) const override;
  std::shared_ptr<dao::Field> Item(std::string_view name) const override;

 private:
  mutable std::map<int, std::shared_ptr<dao::Field>> by_index_;
  mutable std::map<std::string, std::shared_ptr<dao::Field>, std::less<>> by_name_;
};

class Recordset final : public dao::Recordset, public DaoObject {
 public:
  using DaoObject::DaoObject;

  bool AtEnd() const override;
  bool AtStart() const override;
  void MoveFirst() override;
  void MoveLast() override;
  void MoveNext() override;
  void MovePrevious() override;
  dao::Collection<dao::Field>& Fields() override;
  void Close() override;

 private:
  std::unique_ptr<RecordsetFields> fields_;  // once asked for
};

}  // namespace ambrelio::dao_com
