#include "ambrelio/engine/mill_indexes.h"

namespace ambrelio::engine {

const embedded::KeptIndexes& MillIndexes() {
  static const embedded::KeptIndexes indexes = {
      // The weighings of a discharge, and the shares moved into it.
      {"PESADA", {"TOLVA", "DESCARGA"}, ""},
      {"PESADA", {"COOPERATIVA", "PARTIDA", "MEDIANA", "CODPRO"}, ""},
      {"splitDescar", {"cooperativa", "partida", "mediana", "codpro"}, ""},
      {"splitDescar", {"tolva", "descarga"}, ""},
      // Shares that have become a whole or nothing, which every re-assignment looks for.
      {"splitDescar", {"fraccion"}, "fraccion >= 0.999 OR fraccion < 0.001"},
      // The discharges of a hopper, of a tank, of some days.
      {"Descargas", {"Tolva", "Descarga"}, ""},
      {"Descargas", {"Deposito"}, ""},
      {"Descargas", {"MomentoHasta"}, ""},
      // The readings of a tank by number and by time, and of some days.
      {"Niveles", {"Deposito", "Item"}, ""},
      {"Niveles", {"Deposito", "Momento"}, ""},
      {"Niveles", {"Momento"}, ""},
      // The emptyings of a tank, into a tank, of some days, of a client.
      {"Vaciados", {"Deposito", "Vaciado"}, ""},
      {"Vaciados", {"Destino"}, ""},
      {"Vaciados", {"mmto"}, ""},
      {"Vaciados", {"Cliente", "mmto"}, ""},
      {"detVaciados", {"Deposito", "Vaciado"}, ""},
  };
  return indexes;
}

}  // namespace ambrelio::engine
