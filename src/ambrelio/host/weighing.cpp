#include "ambrelio/host/weighing.h"

#include <algorithm>
#include <optional>

#include "ambrelio/data/stretch.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/host/sql_literal.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::host {
namespace {

const Variant* Find(const WeighingColumns& columns, std::string_view name) {
  const auto found = std::find_if(columns.begin(), columns.end(), [name](const auto& column) {
    return EqualsIgnoringAsciiCase(column.first, name);
  });
  return found == columns.end() ? nullptr : &found->second;
}

int32_t DischargeFor(Session& session, int16_t hopper) {
  if (hopper <= 0) return 0;
  if (hopper > session.hopper_count) {
    Raise(RuntimeError::kInvalidCall, "the mill has no hopper " + std::to_string(hopper));
  }
  return Tolva(session, hopper).DescargaEnCurso();
}

Variant AsColumn(const Variant& value, dao::FieldType type) {
  if (type != dao::FieldType::kDate || !value.is_text()) return value;
  const std::optional<OleDate> moment = OleDate::FromIso(value.as<std::string>());
  return moment ? Variant(*moment) : value;
}

int32_t Store(Session& session, const WeighingColumns& columns) {
  const auto table = session.Database().TableDefs().Item("PESADA");
  std::string names;
  std::string values;
  const auto add = [&](const std::string& name, const Variant& value) {
    const auto field = table->Fields().Item(name);
    names += (names.empty() ? "" : ", ") + field->Name();
    values += (values.empty() ? "" : ", ") + SqlLiteral(AsColumn(value, field->Type()));
  };
  for (const auto& [name, value] : columns) add(name, value);
  if (Find(columns, "H_INICIO") == nullptr) add("H_INICIO", session.Now());

  int32_t discharge = 0;
  if (const Variant* given = Find(columns, "DESCARGA")) {
    if (!given->is_null()) discharge = ToLong(*given);
  } else if (const Variant* hopper = Find(columns, "TOLVA");
             hopper != nullptr && !hopper->is_null()) {
    discharge = DischargeFor(session, ToInteger(*hopper));
    add("DESCARGA", discharge);
  }
  session.Database().Execute("insert into PESADA (" + names + ") values (" + values + ")",
                             dao::kFailOnError);
  return discharge;
}

}  // namespace

// The first weighing of a hopper makes its discharge, too.
int32_t StoreWeighing(Session& session, const WeighingColumns& columns) {
  int32_t discharge = 0;
  data::InOneStretch(session, [&] { discharge = Store(session, columns); });
  return discharge;
}

}  // namespace ambrelio::host
