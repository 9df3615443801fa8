#include "ambrelio/referents/referente.h"

#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {
namespace {

using kestro::Tools;

bool IsLine(int16_t ix) { return ix >= 1 && ix <= Referente::kInfoLines; }

}  // namespace

std::string Referente::Info(int16_t ix) const { return IsLine(ix) ? info_[ix - 1] : ""; }

void Referente::SetInfo(int16_t ix, const std::string& value) {
  if (IsLine(ix)) info_[ix - 1] = value;
}

void Referente::Load(dao::Recordset& record) {
  const auto text = [&record](const char* field) {
    return Tools::ValueAsText(record.Value(field));
  };
  loaded_code_ = ToLong(record.Value("Codigo"));
  code_ = loaded_code_;
  name_ = text("Nombre");
  tax_id_ = text("NIF");
  info_ = {text("Info1"), text("Info3"), text("Info2")};
}

}  // namespace ambrelio
