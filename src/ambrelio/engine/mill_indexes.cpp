#include "ambrelio/engine/mill_indexes.h"

namespace ambrelio::engine {

// An index by time ends with the columns that decide between equal times, so that the last row is
// found without sorting.
const embedded::KeptIndexes& MillIndexes() {
  static const embedded::KeptIndexes indexes = {
      // The weighings of a discharge, and the shares moved into it.
      {"PESADA", {"TOLVA", "DESCARGA"}, ""},
      {"PESADA", {"COOPERATIVA", "PARTIDA", "MEDIANA", "CODPRO"}, ""},
      {"splitDescar", {"cooperativa", "partida", "mediana", "codpro"}, ""},
      {"splitDescar", {"tolva", "descarga"}, ""},
      // Shares that have become a whole or nothing, which every re-assignment looks for.
      {"splitDescar", {"fraccion"}, "fraccion >= 0.999 OR fraccion < 0.001"},
      // The discharges of a hopper; those of a tank by time; of some days; fractions become dust.
      {"Descargas", {"Tolva", "Descarga"}, ""},
      {"Descargas", {"Deposito", "MomentoHasta", "Tolva", "Descarga"}, ""},
      {"Descargas", {"MomentoHasta"}, ""},
      {"Descargas", {"Fraccion"}, ""},
      // The readings of a tank by number and by time; of some days.
      {"Niveles", {"Deposito", "Item"}, ""},
      {"Niveles", {"Deposito", "Momento", "Item"}, ""},
      {"Niveles", {"Momento", "Deposito", "Item"}, ""},
      // The emptyings of a tank by number and by time; into a tank by time; of some days; of a
      // client.
      {"Vaciados", {"Deposito", "Vaciado"}, ""},
      {"Vaciados", {"Deposito", "mmto", "Vaciado"}, ""},
      {"Vaciados", {"Destino", "mmto", "Deposito", "Vaciado"}, ""},
      {"Vaciados", {"mmto", "Deposito", "Vaciado"}, ""},
      {"Vaciados", {"Cliente", "mmto"}, ""},
      {"detVaciados", {"Deposito", "Vaciado"}, ""},
  };
  return indexes;
}

}  // namespace ambrelio::engine
