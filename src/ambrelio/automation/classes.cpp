// The table itself. A row's number is its place among the members of its class; it never changes
// and is never used again.
#include "ambrelio/automation/binding.h"
#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/hoppers/descarga.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/hoppers/tva_inter.h"
#include "ambrelio/referents/referente.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/nivel.h"
#include "ambrelio/tanks/vaciado.h"

namespace ambrelio::automation {

template <>
inline constexpr const char* kClassName<Trazabilidad> = "Trazabilidad";
template <>
inline constexpr const char* kClassName<Referente> = "Referente";
template <>
inline constexpr const char* kClassName<Tolva> = "Tolva";
template <>
inline constexpr const char* kClassName<Descarga> = "Descarga";
template <>
inline constexpr const char* kClassName<TvaInter> = "TvaInter";
template <>
inline constexpr const char* kClassName<Deposito> = "Deposito";
template <>
inline constexpr const char* kClassName<Nivel> = "Nivel";
template <>
inline constexpr const char* kClassName<Vaciado> = "Vaciado";
template <>
inline constexpr const char* kEnumerationName<tpHayLectura> = "tpHayLectura";

namespace {

constexpr const char* kKilosByClass =
    "Content by 1 member, 2 product, 3 municipality or 4 place: rows of key, name, percentage and "
    "kilograms.";
constexpr const char* kLitresByClass =
    "Content by 1 member, 2 product, 3 municipality, 4 place or 5 mill line: rows of key, name, "
    "percentage and litres.";

Class TrazabilidadTable() {
  using T = Trazabilidad;
  return ClassTable<T>("The root: settings, the database, and the way to every other object.")
      .Creatable()
      .ApplicationObject()
      .Method(1, "Constructor", &T::Constructor, {"aPath", "vardex3", Optional("Info")},
              "Reads the settings of the host in a folder, opens the database, brings it up to its "
              "schema and starts the sensor service.")
      .Method(2, "BaseAbierta", &T::BaseAbierta, "Whether the database is open.")
      .Method(3, "MaximoTolvas", &T::MaximoTolvas, "The number of hoppers.")
      .Method(4, "Cerrar", &T::Cerrar, "Closes the database.")
      .Method(5, "RecargaValores", &T::RecargaValores,
              "Reads the settings again, opens the database and starts the sensor service anew.")
      .Method(6, "SalvarValores", &T::SalvarValores, "Writes the sensor settings to the INI file.")
      .Method(7, "TvaInter", &T::TvaInter, {"tva"},
              "The intermediate hopper of that number, or Nothing.")
      .Method(8, "Tolva", &T::Tolva, {"tva"}, "The hopper of that number, or Nothing.")
      .Method(9, "Deposito", &T::Deposito, {"dto"}, "The tank of that number, or Nothing.")
      .Method(10, "NuevoReferente", &T::NuevoReferente, {"pfx"},
              "A new client (1) or carrier (2) with the next free code, not yet saved.")
      .Method(11, "UnReferente", &T::UnReferente, {"pfx", "cod"},
              "The client (1) or carrier (2) of that code, or Nothing.")
      .Method(12, "GuardarReferente", &T::GuardarReferente, {"pfx", "ref"},
              "Saves a client (1) or carrier (2): inserts a new one, updates one that was loaded.")
      .Method(13, "EliminarReferente", &T::EliminarReferente, {"pfx", "cod"},
              "Deletes the client (1) or carrier (2) of that code.")
      .Method(14, "ListaReferentes", &T::ListaReferentes, {"pfx", Optional("ord")},
              "All clients (1) or carriers (2), by name when ord is 1, else by code: rows of code, "
              "name and tax identifier, or Empty.")
      .Method(15, "ListaDestinoVenta", &T::ListaDestinoVenta,
              "The destinations of sales typed so far, each once, or Empty.")
      .Method(16, "hayLecturaNivel", &T::HayLecturaNivel, {"dep"},
              "Whether the level sensor of a tank has given a reading.")
      .Method(17, "LecturaNivel", &T::LecturaNivel, {"dep"},
              "The last reading of a tank's level sensor, Null without one.")
      .Property(18, "ObjetoActiveX", &T::ObjetoActiveX, &T::SetObjetoActiveX,
                "Name of the automation object that reads the level sensors.")
      .Property(19, "PuertoUDP", &T::PuertoUDP, &T::SetPuertoUDP,
                "The sensor gateway: a UDP port of this machine, or host:port.")
      .Property(20, "TimeOutUDP", &T::TimeOutUDP, &T::SetTimeOutUDP,
                "Milliseconds that an answer of the gateway is waited for.")
      .Property(21, "IntervaloPolling", &T::IntervaloPolling, &T::SetIntervaloPolling,
                "Milliseconds of rest between two rounds of questions to the sensors.")
      .Property(22, "TiempoControlNivel", &T::TiempoControlNivel, &T::SetTiempoControlNivel,
                "Time between checks of a level, for the host.")
      .Property(23, "MargenControlNivel", &T::MargenControlNivel, &T::SetMargenControlNivel,
                "Margin of the check of a level, for the host.")
      .Method(24, "Trasegar", &T::Trasegar, {"org", "dno", Optional("qto")},
              "Moves a share of what lies in one hopper into another.")
      .Method(
          25, "HistoriaDescargas", &T::HistoriaDescargas,
          {Optional("dde"), Optional("hta"), Optional("tva"), Optional("dto")},
          "Discharges into tanks by time: rows of moment, number, hopper, tank and kilograms, or "
          "Empty.")
      .Method(26, "HistoriaNiveles", &T::HistoriaNiveles,
              {Optional("dde"), Optional("hta"), Optional("dto")},
              "Level readings by time: rows of moment, number, tank and litres, or Empty.")
      .Method(27, "HistoriaVaciados", &T::HistoriaVaciados,
              {Optional("dde"), Optional("hta"), Optional("dto")},
              "Emptyings by time: rows of moment, number, tank, litres, destination and sale, or "
              "Empty.")
      .Method(28, "IniciarCampaña", &T::IniciarCampana,
              "Starts a season: deletes discharges, emptyings and readings.")
      .Take();
}

Class ReferenteTable() {
  using T = Referente;
  return ClassTable<T>("A client or carrier, as a record in memory.")
      .Creatable()
      .Property(1, "Codigo", &T::Codigo, &T::SetCodigo, "The code.")
      .Property(2, "Nombre", &T::Nombre, &T::SetNombre, "The name.")
      .Property(3, "NIF", &T::NIF, &T::SetNIF, "The tax identifier.")
      .Property(4, "Info", &T::Info, &T::SetInfo, "ix", "Line 1, 2 or 3 of free information.")
      .Get(5, "esNuevo", &T::EsNuevo, "Whether it was not loaded from the database.")
      .Get(6, "datosValidos", &T::DatosValidos,
           "Whether it may be saved: a code above 0, and a name.")
      .Take();
}

Class TolvaTable() {
  using T = Tolva;
  bool (T::*const descargar)(int16_t, int16_t, double&) = &T::Descargar;
  return ClassTable<T>("A hopper, and the life of its discharges.")
      .Get(1, "MomentoInicio", &T::MomentoInicio, "When the current discharge was opened.")
      .Get(2, "DescargaEnCurso", &T::DescargaEnCurso, "Number of the current discharge.")
      .Method(3, "Descargar", descargar, {"dto", "mol", Optional("qto")},
              "Closes the current discharge towards a tank over a mill line, or a share of it, and "
              "opens the next one.")
      .Method(4, "RestaurarCarga", &T::RestaurarCarga, "Undoes the last Descargar.")
      .Method(5, "Descarga", &T::Descarga, {"cod"}, "The discharge of that number, or Nothing.")
      .Method(6, "Partidas", &T::Partidas, "Weighing lines in the current discharge.")
      .Method(7, "Acumulado", &T::Acumulado, "Kilograms in the current discharge.")
      .Method(8, "Composicion", &T::Composicion, {"clase"}, kKilosByClass)
      .Take();
}

Class DescargaTable() {
  using T = Descarga;
  return ClassTable<T>("One discharge of a hopper.")
      .Get(1, "Tolva", &T::Tolva, "The hopper's number.")
      .Get(2, "Codigo", &T::Codigo, "The discharge's number within the hopper.")
      .Method(3, "Kilos", &T::Kilos, "Kilograms of olives, re-assigned shares included.")
      .Method(4, "MomentoDesde", &T::MomentoDesde, "When it was opened.")
      .Method(5, "MomentoHasta", &T::MomentoHasta,
              "When it was closed; the zero date while it is open.")
      .Method(6, "Composicion", &T::Composicion, {"clase"}, kKilosByClass)
      .Take();
}

Class TvaInterTable() {
  using T = TvaInter;
  return ClassTable<T>("An intermediate hopper, where weighings wait.")
      .Method(1, "DescargarEn", &T::DescargarEn, {"dno"},
              "Moves all that waits into the current discharge of a hopper.")
      .Method(2, "Partidas", &T::Partidas, "Weighing lines waiting.")
      .Method(3, "Acumulado", &T::Acumulado, "Whole kilograms waiting.")
      .Take();
}

Class DepositoTable() {
  using T = Deposito;
  return ClassTable<T>("A tank: name, capacity, readings, emptyings and content.")
      .Get(1, "Nombre", &T::Nombre, "The tank's name, empty when it has none.")
      .Let(1, "Nombre", &T::SetNombre, "Names the tank; the empty text removes its name.")
      .Get(2, "Formula", &T::Formula,
           "The capacity table: rows of level, A0, A1, A2 and A3, or Empty.")
      .Let(2, "Formula", &T::SetFormula,
           "Replaces the capacity table; anything but an array clears it.")
      .Method(3, "Capacidad", &T::Capacidad, {"h"}, "Litres at a level.")
      .Method(4, "EntradaNivel", &T::EntradaNivel,
              {Optional("mmt"), Optional("Nivel"), Optional("litrs")},
              "Records a level reading; litres not given come from the capacity table.")
      .Method(5, "EntradaDensidad", &T::EntradaDensidad, {"dens", Optional("itm")},
              "Sets the density of a reading, the last one unless told.")
      .Method(6, "EliminarUltimoNivel", &T::EliminarUltimoNivel, "Deletes the last reading.")
      .Method(7, "NivelActual", &T::NivelActual, "The level now, Null when not known.")
      .Method(8, "LitrosActual", &T::LitrosActual, "The litres now, Null when not known.")
      .Method(9, "KilosActual", &T::KilosActual,
              "Kilograms of weighed olives whose oil is in the tank.")
      .Method(10, "Nivel", &T::Nivel, {"cod"}, "The reading of that number, or Nothing.")
      .Method(11, "NuevoVaciado", &T::NuevoVaciado,
              {"dno", "qty", Optional("mmto"), Optional("referentes")},
              "Empties litres into another tank, or out of the mill for a use; the number of the "
              "emptying, 0 when refused.")
      .Method(12, "DeshacerVaciado", &T::DeshacerVaciado, "Undoes the last emptying.")
      .Method(13, "Vaciado", &T::Vaciado, {"cod"}, "The emptying of that number, or Nothing.")
      .Method(14, "UltimoVaciado", &T::UltimoVaciado,
              "The number of the last emptying, 0 without any.")
      .Method(15, "Historial", &T::Historial,
              "All movements by time: rows of moment, kind (1 discharge, 2 emptying, 3 reading), "
              "hopper or tank, and number; or Empty.")
      .Method(16, "UltimoMovimiento", &T::UltimoMovimiento,
              {Output("hay"), Output("niv"), Output("mmto")},
              "The code of the last movement, with the litres and the level now and its moment.")
      .Method(17, "Composicion", &T::Composicion, {"clase"}, kLitresByClass)
      .Take();
}

Class NivelTable() {
  using T = Nivel;
  return ClassTable<T>("One level reading of a tank.")
      .Get(1, "Deposito", &T::Deposito, "The tank's number.")
      .Get(2, "Codigo", &T::Codigo, "The reading's number within the tank.")
      .Get(3, "Momento", &T::Momento, "When the level was read.")
      .Let(3, "Momento", &T::SetMomento,
           "Moves the reading in time, strictly between its neighbouring movements.")
      .Method(4, "GetCotasMomento", &T::GetCotasMomento, {Output("mmt1"), Output("mmt2")},
              "The moments between which the reading may be moved, Null where there is no bound.")
      .Get(5, "Nivel", &T::NivelLeido, "The level, 0 when not known.")
      .Let(5, "Nivel", &T::SetNivel, "Corrects the level; the litres stay.")
      .Get(6, "Litros", &T::Litros, "The litres.")
      .Let(6, "Litros", &T::SetLitros, "Corrects the litres; whole litres are stored.")
      .Take();
}

Class VaciadoTable() {
  using T = Vaciado;
  return ClassTable<T>("One emptying of a tank.")
      .Get(1, "Deposito", &T::Deposito, "The emptied tank's number.")
      .Get(2, "Codigo", &T::Codigo, "The emptying's number within the tank.")
      .Get(3, "Uso", &T::Uso, "Use of the oil: 0, 1, or 2 for a sale.")
      .Get(4, "Cliente", &T::Cliente, "Client code of a sale, else 0.")
      .Get(5, "Transportista", &T::Transportista, "Carrier code of a sale, else 0.")
      .Get(6, "DestinoVenta", &T::DestinoVenta, "Destination of a sale, else empty.")
      .Method(7, "fijarUso", &T::FijarUso, {"u", "cli", "trp", "dno"},
              "Sets use, client, carrier and sale destination.")
      .Get(8, "Lote", &T::Lote, "The lot.")
      .Let(8, "Lote", &T::SetLote, "Sets the lot.")
      .Method(9, "Litros", &T::Litros, "The litres taken out.")
      .Get(10, "Momento", &T::Momento, "When the tank was emptied.")
      .Let(10, "Momento", &T::SetMomento,
           "Moves the emptying in time, strictly between its neighbouring movements.")
      .Method(11, "GetCotasMomento", &T::GetCotasMomento, {Output("mmt1"), Output("mmt2")},
              "The moments between which the emptying may be moved, Null where there is no bound.")
      .Get(12, "Destino", &T::Destino, "The receiving tank, 0 when the oil left the mill.")
      .Method(13, "Composicion", &T::Composicion, {"clase"}, kLitresByClass)
      .Take();
}

}  // namespace

const std::vector<Class>& Model() {
  static const std::vector<Class> model = {TrazabilidadTable(), ReferenteTable(), TolvaTable(),
                                           DescargaTable(),     TvaInterTable(),  DepositoTable(),
                                           NivelTable(),        VaciadoTable()};
  return model;
}

const std::vector<Enumeration>& Enumerations() {
  const auto value = [](const char* name, tpHayLectura number, const char* help) {
    return Enumeration::Value{name, static_cast<int32_t>(number), help};
  };
  using H = tpHayLectura;
  static const std::vector<Enumeration> enumerations = {
      {"tpHayLectura",
       "Whether a tank has a reading of its level sensor.",
       {value("hNoHaySensor", H::hNoHaySensor, "The tank has no sensor, or none was asked yet."),
        value("hNoHayLectura", H::hNoHayLectura, "Kept for hosts; the library never says it."),
        value("hErrorLectura", H::hErrorLectura, "Its sensor gave no usable answer."),
        value("hLecturaDisponible", H::hLecturaDisponible, "There is a reading.")}}};
  return enumerations;
}

}  // namespace ambrelio::automation
