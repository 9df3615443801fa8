#include "ambrelio/engine/dao_com/field.h"

#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

std::string Field::Name() const { return ToText(dao().Call("Name")); }
void Field::SetName(const std::string& name) { dao().Put("Name", name); }

dao::FieldType Field::Type() const {
  return static_cast<dao::FieldType>(ToInteger(dao().Call("Type")));
}
int32_t Field::Size() const { return ToLong(dao().Call("Size")); }

int16_t Field::OrdinalPosition() const { return ToInteger(dao().Call("OrdinalPosition")); }
void Field::SetOrdinalPosition(int16_t position) { dao().Put("OrdinalPosition", position); }

int32_t Field::Attributes() const { return ToLong(dao().Call("Attributes")); }
void Field::SetAttributes(int32_t attributes) { dao().Put("Attributes", attributes); }

bool Field::Required() const { return ToBoolean(dao().Call("Required")); }
void Field::SetRequired(bool required) { dao().Put("Required", required); }

bool Field::AllowZeroLength() const { return ToBoolean(dao().Call("AllowZeroLength")); }
void Field::SetAllowZeroLength(bool allow) { dao().Put("AllowZeroLength", allow); }

std::string Field::DefaultValue() const {
  const Variant expression = dao().Call("DefaultValue");
  return expression.is_null() ? std::string() : ToText(expression);
}
void Field::SetDefaultValue(const std::string& expression) {
  dao().Put("DefaultValue", expression);
}

Variant Field::Value() const { return dao().Call("Value"); }

}  // namespace ambrelio::dao_com
