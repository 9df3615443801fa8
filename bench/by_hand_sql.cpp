#include "by_hand_sql.h"

#include <array>

#include "ambrelio/kestro/tools.h"

namespace ambrelio::bench::sql {
namespace {

using kestro::Tools;

constexpr const char* kSameWeighing =
    "s.cooperativa=p.COOPERATIVA and s.partida=p.PARTIDA and s.mediana=p.MEDIANA and "
    "s.codpro=p.CODPRO";

std::string Unshared() {
  return std::string("not exists (select 1 from splitDescar s where ") + kSameWeighing + ")";
}

// The weighings of the discharges `d` that `from` gives, with their kilograms as `w`: first those
// with a share in the discharge, then those that are wholly in it.
std::string Weighings(const std::string& columns, const std::string& factor,
                      const std::string& from, const std::string& where) {
  return "select " + columns + "p.PARCIALPESO*s.fraccion" + factor + " as w from " + from +
         " cross join splitDescar s on s.tolva=d.Tolva and s.descarga=d.Descarga "
         "cross join PESADA p on " +
         kSameWeighing + " where " + where + " union all select " + columns + "p.PARCIALPESO" +
         factor + " from " + from +
         " cross join PESADA p on p.TOLVA=d.Tolva and p.DESCARGA=d.Descarga where " + where +
         " and " + Unshared();
}

std::string WeighingsOf(Content content, const std::string& columns) {
  return content == Content::kTank
             ? Weighings(columns, "*d.Fraccion", "Descargas d", "d.Deposito=?1 and d.Fraccion>0")
             : Weighings(columns, "*d.Fraccion", "detVaciados d",
                         "d.Deposito=?1 and d.Vaciado=?2 and d.Fraccion>0");
}

struct Grouping {
  const char* column;
  const char* name;
};
constexpr std::array<Grouping, 5> kGroupings = {
    {{"p.CODSOC", "(select NOMSOC from SOCIO where CODSOC=k)"},
     {"p.CODPRO", "(select NOMPRO from PRODUCTO where CODPRO=k)"},
     {"p.CODMUN", "(select NOMMUN from MUNICIPIO where CODMUN=k)"},
     {"p.PARAJE", "k"},
     {"d.Molino", "cast(k as varchar)"}}};

}  // namespace

std::string Weight() {
  return std::string(
             "select sum(w) from (select p.PARCIALPESO*s.fraccion as w from splitDescar s "
             "cross join PESADA p on ") +
         kSameWeighing +
         " where s.tolva=?1 and s.descarga=?2 union all select p.PARCIALPESO from PESADA p where "
         "p.TOLVA=?1 and p.DESCARGA=?2 and " +
         Unshared() + ") as weighings";
}

std::string Kilos(Content content) {
  return "select sum(w) from (" + WeighingsOf(content, "") + ") as weighings";
}

std::string Composition(Content content, int clase, bool with_names) {
  const Grouping& grouping = kGroupings.at(static_cast<size_t>(clase - 1));
  const std::string groups = "select k, sum(w) as kilos from (" +
                             WeighingsOf(content, std::string(grouping.column) + " as k, ") +
                             ") as weighings group by k";
  if (!with_names) return groups + " order by k";
  return std::string("select k, ") + grouping.name + ", kilos from (" + groups +
         ") as per_key order by k";
}

std::string HistoryOfDischarges() {
  // Each discharge adds up its own weighings, so that nothing has to be sorted into groups.
  return std::string(
             "select m, n, h, t, coalesce(shared+whole, shared, whole) from (select "
             "d.MomentoHasta as m, d.Descarga as n, d.Tolva as h, d.Deposito as t, "
             "(select sum(p.PARCIALPESO*s.fraccion) from splitDescar s cross join PESADA p on ") +
         kSameWeighing +
         " where s.tolva=d.Tolva and s.descarga=d.Descarga) as shared, "
         "(select sum(p.PARCIALPESO) from PESADA p where p.TOLVA=d.Tolva and "
         "p.DESCARGA=d.Descarga and " +
         Unshared() +
         ") as whole from Descargas d where d.Deposito>0 and d.MomentoHasta>=?1 and "
         "d.MomentoHasta<=?2) as discharges where coalesce(shared, whole) is not null order by m";
}

std::string HistoryOfReadings() {
  return "select Momento, Item, Deposito, Litros from Niveles where Momento>=?1 and Momento<=?2 "
         "order by Momento";
}

std::string HistoryOfEmptyings() {
  return "select mmto, Vaciado, Deposito, Cantidad, Destino, Lote, Uso, Cliente, Transportista, "
         "DestinoVenta from Vaciados where mmto>=?1 and mmto<=?2 order by mmto";
}

std::string StateOfAllTanks() {
  return "with discharge as (select Deposito, max(MomentoHasta) as m from Descargas group by "
         "Deposito), inflow as (select Destino, max(mmto) as m from Vaciados group by Destino), "
         "reading as (select Deposito, max(Momento) as m, arg_max(Nivel, Momento) as level, "
         "arg_max(Litros, Momento) as litres from Niveles group by Deposito), "
         "taken as (select v.Deposito, sum(v.Cantidad) as q from Vaciados v join reading r on "
         "r.Deposito=v.Deposito where v.mmto>r.m group by v.Deposito), "
         "brought as (select v.Destino, sum(v.Cantidad) as q from Vaciados v join reading r on "
         "r.Deposito=v.Destino where v.mmto>r.m group by v.Destino) "
         "select case when (d.m is null and i.m is null) or t.q is not null or b.q is not null "
         "then "
         "null else r.level end, case when d.m is null and i.m is null then null when d.m>r.m and "
         "(i.m is null or i.m<=d.m) then 0 "
         "else r.litres-coalesce(t.q, 0)+coalesce(b.q, 0) end "
         "from reading r left join discharge d on d.Deposito=r.Deposito "
         "left join inflow i on i.Destino=r.Deposito left join taken t on t.Deposito=r.Deposito "
         "left join brought b on b.Destino=r.Deposito order by r.Deposito";
}

std::string ForDuckDb(const std::string& text) {
  return Tools::Replace(Tools::Replace(text, "cross join", "join"), "?", "$");
}

}  // namespace ambrelio::bench::sql
