// A mill with rows of its tanks put straight into the tables.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/tanks/deposito.h"
#include "support/mill.h"

namespace ambrelio::test {

class TankTest : public MillTest {
 protected:
  static std::string Date(const std::string& iso) {
    return iso.empty() ? "Null" : data::SqlDate(At(iso));
  }

  // Discharge `number` of `hopper`, ended at `until` ("" for an open one), with a share in `tank`.
  void Hold(int hopper, int number, const std::string& until, int tank, double fraction,
            int line = 1) {
    Execute(
        "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, "
        "Fraccion) values (" +
        std::to_string(hopper) + ", " + std::to_string(number) + ", #11/1/2026 7:0:0#, " +
        Date(until) + ", " + std::to_string(line) + ", " + std::to_string(tank) + ", " +
        data::SqlNum8(fraction) + ")");
  }
  // A reading; `level` and `litres` are SQL ("Null" when not known).
  void Read(int tank, int item, const std::string& moment, const std::string& level,
            const std::string& litres) {
    Execute("insert into Niveles (Deposito, Item, Momento, Nivel, Litros) values (" +
            std::to_string(tank) + ", " + std::to_string(item) + ", " + Date(moment) + ", " +
            level + ", " + litres + ")");
  }
  // An emptying without fractions.
  void Emptied(int tank, int number, const std::string& moment, double litres, int destination) {
    Execute("insert into Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, Uso) values (" +
            std::to_string(tank) + ", " + std::to_string(number) + ", " + Date(moment) + ", " +
            data::SqlNum8(litres) + ", " + std::to_string(destination) + ", 0)");
  }

  // The fractions that a tank holds, as "hopper/discharge=fraction".
  std::vector<std::string> Fractions(int tank) {
    std::vector<std::string> shown;
    auto rows = session.Database().OpenRecordset(
        "select * from Descargas where Deposito=" + std::to_string(tank) +
        " order by Tolva, Descarga");
    for (; !rows->AtEnd(); rows->MoveNext()) {
      shown.push_back(Show(rows->Value("Tolva")) + "/" + Show(rows->Value("Descarga")) + "=" +
                      Show(rows->Value("Fraccion")));
    }
    return shown;
  }

  // What is sent to find the present state of a tank whose last reading was taken at `reading`.
  static std::vector<std::string> StateQueries(const std::string& tank,
                                               const std::string& reading) {
    return {
        "select MomentoHasta from Descargas where (Deposito=" + tank + ") order by MomentoHasta ",
        "select mmto from Vaciados where (Destino=" + tank + ") order by mmto ",
        "select Momento, Litros, Nivel from Niveles where (Deposito=" + tank +
            ") order by Momento ",
        "select max(mmto) from Vaciados where (Deposito=" + tank + ") ",
        "select max(mmto) from Vaciados where (Destino=" + tank + ") ",
        "select sum(Cantidad) from Vaciados where (Deposito=" + tank + ") and (mmto>" +
            Date(reading) + ") ",
        "select sum(Cantidad) from Vaciados where (Destino=" + tank + ") and (mmto>" +
            Date(reading) + ") ",
    };
  }
  // One list of statements behind another.
  static std::vector<std::string> Then(std::vector<std::string> first,
                                       const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
  }

  Deposito tank1{session, 1};
  Deposito tank2{session, 2};
  Deposito tank3{session, 3};
};

}  // namespace ambrelio::test
