#include "ambrelio/engine/dao_com/recordset.h"

#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

std::shared_ptr<dao::Field> RecordsetFields::Item(int index) const {
  auto known = by_index_.find(index);
  if (known == by_index_.end()) known = by_index_.emplace(index, Collection::Item(index)).first;
  return known->second;
}

std::shared_ptr<dao::Field> RecordsetFields::Item(std::string_view name) const {
  auto known = by_name_.find(name);
  if (known == by_name_.end()) known = by_name_.emplace(name, Collection::Item(name)).first;
  return known->second;
}

bool Recordset::AtEnd() const { return ToBoolean(dao().Call("EOF")); }
bool Recordset::AtStart() const { return ToBoolean(dao().Call("BOF")); }

void Recordset::MoveFirst() { dao().Call("MoveFirst"); }
void Recordset::MoveLast() { dao().Call("MoveLast"); }
void Recordset::MoveNext() { dao().Call("MoveNext"); }
void Recordset::MovePrevious() { dao().Call("MovePrevious"); }

dao::Collection<dao::Field>& Recordset::Fields() {
  if (!fields_) fields_ = std::make_unique<RecordsetFields>(dao().ObjectFrom("Fields"));
  return *fields_;
}

void Recordset::Close() { dao().Call("Close"); }

}  // namespace ambrelio::dao_com
