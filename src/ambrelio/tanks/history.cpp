#include "ambrelio/tanks/history.h"

#include <algorithm>

#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::tanks {
namespace {

using kestro::Tools;

// The places of a history row.
constexpr size_t kMoment = 0;
constexpr size_t kKind = 1;
constexpr size_t kNumber = 2;
constexpr size_t kCode = 3;

bool Is(const Variant& value, int32_t number) {
  return !value.is_null() && ToLong(value) == number;
}

}  // namespace

std::string ConsultaHistorial(int16_t tank) {
  const std::string t = Tools::IntegerText(tank);
  return "(select MomentoHasta as mmto, 1 as tpo, Tolva as dto, Descarga as cod "
         "from Descargas where Deposito=" +
         t +
         ") union (select mmto, 2 as tpo, Deposito as dto, Vaciado as cod "
         "from Vaciados where Deposito=" +
         t +
         ") union (select mmto, 2 as tpo, Deposito as dto, Vaciado as cod "
         "from Vaciados where Destino=" +
         t +
         ") union (select Momento as mmto, 3 as tpo, Deposito as dto, Item as cod "
         "from Niveles where Deposito=" +
         t + ") order by mmto ";
}

Variant ReadHistory(Session& session, int16_t tank) {
  Variant history;
  const auto rows = session.Database().OpenRecordset(ConsultaHistorial(tank));
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Tools::Append(history, Variant::Array{rows->Value("mmto"), rows->Value("tpo"),
                                          rows->Value("dto"), rows->Value("cod")});
  }
  return history;
}

std::optional<Neighbours> FindNeighbours(const Variant& history, int32_t kind, int16_t number,
                                         int32_t code) {
  if (!history.is_array()) return std::nullopt;
  const Variant::Array& events = history.array();
  const auto found = std::find_if(events.begin(), events.end(), [&](const Variant& event) {
    const Variant::Array& row = event.array();
    return Is(row[kKind], kind) && Is(row[kNumber], number) && Is(row[kCode], code);
  });
  if (found == events.end()) return std::nullopt;
  Neighbours neighbours;
  if (found != events.begin()) neighbours.before = std::prev(found)->array()[kMoment];
  if (std::next(found) != events.end()) neighbours.after = std::next(found)->array()[kMoment];
  return neighbours;
}

bool IsLater(const Variant& a, const Variant& b) {
  return a.is_date() && b.is_date() && a.as<OleDate>() > b.as<OleDate>();
}

bool FitsBetween(OleDate moment, const Variant& before, const Variant& after) {
  return (!before.is_date() || moment > before.as<OleDate>()) &&
         (!after.is_date() || moment < after.as<OleDate>());
}

}  // namespace ambrelio::tanks
