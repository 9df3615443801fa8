#include "ambrelio/engine/dao_com/table_def.h"

#include <vector>

#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

std::string TableDef::Name() const { return ToText(dao().Call("Name")); }
void TableDef::SetName(const std::string& name) { dao().Put("Name", name); }

dao::Collection<dao::Field>& TableDef::Fields() {
  fields_ = Collection<dao::Field, Field>(dao().ObjectFrom("Fields"));
  return fields_;
}

dao::Collection<dao::Index>& TableDef::Indexes() {
  indexes_ = Collection<dao::Index, Index>(dao().ObjectFrom("Indexes"));
  return indexes_;
}

std::shared_ptr<dao::Field> TableDef::CreateField(const std::string& name, dao::FieldType type,
                                                  int32_t size) {
  std::vector<Variant> arguments = {name, static_cast<int32_t>(type)};
  if (size != 0) arguments.emplace_back(size);
  return std::make_shared<Field>(dao().ObjectFrom("CreateField", arguments));
}

std::shared_ptr<dao::Index> TableDef::CreateIndex(const std::string& name) {
  return std::make_shared<Index>(dao().ObjectFrom("CreateIndex", {name}));
}

}  // namespace ambrelio::dao_com
