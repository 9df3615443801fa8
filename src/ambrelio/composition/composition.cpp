#include "ambrelio/composition/composition.h"

#include <array>
#include <functional>

#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::composition {
namespace {

using kestro::Tools;

// What one class groups by. Without a lookup the key's own text is the name.
struct Grouping {
  const char* column;
  std::string (*name)(Session&, int32_t);
};

// By class, from 1. The mill line is no column of the weighings but of the rows that hold the
// fractions, so that only the weighted family has it.
constexpr std::array<Grouping, 5> kGroupings = {{{"codsoc", data::MemberName},
                                                 {"codpro", data::ProductName},
                                                 {"codmun", data::MunicipalityName},
                                                 {"paraje", nullptr},
                                                 {"Molino", nullptr}}};
constexpr int16_t kWeightedClasses = 5;
constexpr int16_t kPlainClasses = 4;

const Grouping* FindGrouping(int16_t clase, int16_t classes) {
  return clase >= 1 && clase <= classes ? &kGroupings.at(static_cast<size_t>(clase - 1)) : nullptr;
}

std::string GroupName(Session& session, const Grouping& grouping, const Variant& key) {
  if (grouping.name == nullptr) return Tools::ValueAsText(key);
  return grouping.name(session, ToLong(Tools::ValueOrZero(key)));
}

// The quantity of a row, from the group's weight and its share of the whole.
using QuantityOf = std::function<double(double weight, double share)>;

Variant ReadGroups(Session& session, const Grouping& grouping, const std::string& sql, double total,
                   const QuantityOf& quantity) {
  Variant rows;
  const auto groups =
      session.Database().OpenRecordset(Tools::Replace(sql, "@campo", grouping.column));
  for (; !groups->AtEnd(); groups->MoveNext()) {
    const Variant key = groups->Value("campo");
    std::string name = GroupName(session, grouping, key);
    const double weight = ToDouble(Tools::ValueOrZero(groups->Value("pes")));
    const double share = Quotient(weight, total);
    Tools::Append(
        rows, Variant::Array{key, std::move(name), Checked(share * 100), quantity(weight, share)});
  }
  return rows;
}

}  // namespace

Variant Weighted(Session& session, int16_t clase, double litres, double total,
                 const std::string& source, const std::string& condition) {
  if (litres == 0 || total == 0) return {};
  const std::string sql =
      "select @campo as campo, sum(PARCIALPESO*Fraccion) as pes "
      "from ExtPesada left join "
      "(select Tolva, Descarga, Molino, Fraccion "
      "from " +
      source + "where " + condition +
      ") as dgas "
      "on (ExtPesada.Tolva=dgas.Tolva) and (ExtPesada.Descarga=dgas.Descarga) "
      "where not isnull(Fraccion) "
      "group by @campo "
      "order by @campo ";
  const Grouping* grouping = FindGrouping(clase, kWeightedClasses);
  if (grouping == nullptr) return {};
  return ReadGroups(session, *grouping, sql, total,
                    [litres](double, double share) { return Checked(share * litres); });
}

Variant Plain(Session& session, int16_t clase, int16_t hopper, int32_t discharge) {
  const double total = data::DischargeWeight(session, hopper, discharge);
  // The condition ends with a blank of its own.
  const std::string sql =
      "select @campo as campo, sum(PARCIALPESO) as pes from ExtPesada "
      "where " +
      data::WhereHopperDischarge(hopper, discharge) +
      " group by @campo "
      "order by @campo ";
  const Grouping* grouping = FindGrouping(clase, kPlainClasses);
  if (grouping == nullptr) return {};
  return ReadGroups(session, *grouping, sql, total, [](double weight, double) { return weight; });
}

}  // namespace ambrelio::composition
