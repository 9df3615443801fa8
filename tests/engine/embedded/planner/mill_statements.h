// What the library asks of a mill's database beyond the statements of known_statements.h: the
// questions over weighings, shares and discharges in all their shapes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/embedded/sql/known_statements.h"

namespace ambrelio::test {

// The questions whose cost must not grow with the season; see mill_plans_test.cpp.
inline const std::string kWeightOfDischarge =
    "select sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=1) and (DESCARGA=17) ";
inline const std::string kWeighingsOfDischarge =
    "select count(partida) as cnt from ExtPesada where (tolva=1) and (descarga=17) ";
inline const std::string kWeightInTank =
    "select sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join Descargas on "
    "(ExtPesada.tolva=Descargas.Tolva) and (ExtPesada.descarga=Descargas.Descarga) where "
    "(Deposito=5) ";
inline const std::string kWeightOfEmptying =
    "select sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join detVaciados on "
    "(ExtPesada.tolva=DetVaciados.Tolva) and (ExtPesada.descarga=detVaciados.Descarga) where "
    "(Deposito=5) and (Vaciado=1) ";
inline const std::string kHistoryOfDischarges =
    "select MomentoHasta as mmto, Descargas.Descarga as cod, Descargas.Tolva as tva, "
    "Descargas.Deposito as dto, sum(PARCIALPESO) as pes from ExtPesada left join Descargas on "
    "(ExtPesada.tolva= Descargas.Tolva) and (ExtPesada.descarga= Descargas.Descarga) where "
    "(Descargas.Deposito > 0) and (MomentoHasta >= #3/5/2003 8:4:9#) and (MomentoHasta <= "
    "#11/15/2026 17:30:0#) and (Descargas.Tolva = 1) group by MomentoHasta, Descargas.Descarga, "
    "Descargas.Tolva, Descargas.Deposito order by MomentoHasta ";

// The composition of what is in a tank, or was in an emptying, by a column of the weighings.
inline std::string Composition(const std::string& by, bool of_emptying) {
  const std::string source = of_emptying ? "detVaciados where (Deposito=5) and (Vaciado=1) "
                                         : "Descargas where (Deposito=5) and (Fraccion>0)";
  return "select " + by +
         " as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join (select Tolva, "
         "Descarga, Molino, Fraccion from " +
         source +
         ") as dgas on (ExtPesada.Tolva=dgas.Tolva) and (ExtPesada.Descarga=dgas.Descarga) where "
         "not isnull(Fraccion) group by " +
         by + " order by " + by + " ";
}

inline std::vector<std::string> MillStatements() {
  std::vector<std::string> all = {kWeightOfDischarge, kWeighingsOfDischarge, kWeightInTank,
                                  kWeightOfEmptying, kHistoryOfDischarges};
  for (const char* by : {"codsoc", "codpro", "codmun", "paraje", "cooperativa", "dgas.Molino"}) {
    all.push_back(Composition(by, false));
    all.push_back(Composition(by, true));
    all.push_back(std::string("select ") + (by[0] == 'd' ? "h_inicio" : by) +
                  " as campo, sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=1) and "
                  "(DESCARGA=17)  group by " +
                  (by[0] == 'd' ? "h_inicio" : by));
  }
  for (const std::string_view text : embedded::sql::LibraryStatements()) all.emplace_back(text);
  return all;
}

}  // namespace ambrelio::test
