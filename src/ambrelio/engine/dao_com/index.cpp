#include "ambrelio/engine/dao_com/index.h"

#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

std::string Index::Name() const { return ToText(dao().Call("Name")); }
void Index::SetName(const std::string& name) { dao().Put("Name", name); }

bool Index::Primary() const { return ToBoolean(dao().Call("Primary")); }
void Index::SetPrimary(bool primary) { dao().Put("Primary", primary); }

bool Index::Unique() const { return ToBoolean(dao().Call("Unique")); }
void Index::SetUnique(bool unique) { dao().Put("Unique", unique); }

bool Index::IgnoreNulls() const { return ToBoolean(dao().Call("IgnoreNulls")); }
void Index::SetIgnoreNulls(bool ignore) { dao().Put("IgnoreNulls", ignore); }

bool Index::Required() const { return ToBoolean(dao().Call("Required")); }
void Index::SetRequired(bool required) { dao().Put("Required", required); }

dao::Collection<dao::Field>& Index::Fields() {
  fields_ = Collection<dao::Field, Field>(dao().ObjectFrom("Fields"));
  return fields_;
}

std::shared_ptr<dao::Field> Index::CreateField(const std::string& name) {
  return std::make_shared<Field>(dao().ObjectFrom("CreateField", {name}));
}

}  // namespace ambrelio::dao_com
