// The root of the object model: settings, the database, and the way to every other object.
//
// Its destruction ends the sensor service and closes the database for every object of the thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"
#include "ambrelio/value/variant.h"

namespace ambrelio {

class Deposito;
class Referente;
class Tolva;
class TvaInter;

class Trazabilidad : public Object {
 public:
  explicit Trazabilidad(Session& session = Session::Current()) : session_(session) {}
  ~Trazabilidad() override;
  Trazabilidad(const Trazabilidad&) = delete;
  Trazabilidad& operator=(const Trazabilidad&) = delete;
  const char* ClassName() const override { return "Trazabilidad"; }

  // Reads the settings of the host in folder `aPath`, opens the database and brings it up to its
  // schema, then loads the sensor settings and starts the sensor service. Always Empty: ask
  // BaseAbierta. A sensor port that is taken raises 10048, with the database open.
  Variant Constructor(const std::string& path, bool vardex3, const Variant& info = {});
  bool BaseAbierta() const { return session_.IsOpen(); }
  int16_t MaximoTolvas() const { return session_.hopper_count; }
  void Cerrar();
  // Reads the settings again, opens the database and starts the sensor service anew.
  void RecargaValores();
  // Writes the six sensor settings.
  void SalvarValores();

  // A new object each time; null when the database is closed or there is no such number.
  std::shared_ptr<ambrelio::TvaInter> TvaInter(int16_t tva);
  std::shared_ptr<ambrelio::Tolva> Tolva(int16_t tva);
  std::shared_ptr<ambrelio::Deposito> Deposito(int16_t dto);

  // Clients (`pfx` 1) and carriers (2), see referents/catalogue.h.
  std::shared_ptr<Referente> NuevoReferente(int16_t pfx);
  std::shared_ptr<Referente> UnReferente(int16_t pfx, int32_t cod);
  // Raises 91 without a referent.
  bool GuardarReferente(int16_t pfx, const std::shared_ptr<Referente>& ref);
  bool EliminarReferente(int16_t pfx, int32_t cod);
  Variant ListaReferentes(int16_t pfx, int16_t ord = 0);

  // The destinations of sales typed so far, each once; Empty without any.
  Variant ListaDestinoVenta();

  // What the sensor service last heard of a tank: whether there is a reading, and the reading, a
  // Double or Null. hNoHaySensor and Empty for a tank that does not exist.
  tpHayLectura HayLecturaNivel(int16_t dep) const;
  Variant LecturaNivel(int16_t dep) const;

  // Sensor settings. Setting one neither writes the file nor restarts the sensor service.
  const std::string& ObjetoActiveX() const { return sensor_object_; }
  void SetObjetoActiveX(const std::string& value) { sensor_object_ = value; }
  const std::string& PuertoUDP() const { return udp_port_; }
  void SetPuertoUDP(const std::string& value) { udp_port_ = value; }
  int32_t TimeOutUDP() const { return udp_timeout_; }
  void SetTimeOutUDP(int32_t value) { udp_timeout_ = value; }
  int32_t IntervaloPolling() const { return polling_interval_; }
  void SetIntervaloPolling(int32_t value) { polling_interval_ = value; }
  int32_t TiempoControlNivel() const { return level_check_time_; }
  void SetTiempoControlNivel(int32_t value) { level_check_time_ = value; }
  int32_t MargenControlNivel() const { return level_check_margin_; }
  void SetMargenControlNivel(int32_t value) { level_check_margin_ = value; }

  // Moves the share `qto` of the current discharge of hopper `org` into that of hopper `dno`; 0 or
  // above 1 means all of it. False, with nothing written, when refused.
  bool Trasegar(int16_t org, int16_t dno, double qto = 0);

  // All discharges into tanks, readings and emptyings by time, see frame/histories.h for the rows.
  // `dde` and `hta` count when they hold a date or text that reads as one; 0 is no limit.
  Variant HistoriaDescargas(const Variant& dde = {}, const Variant& hta = {}, int16_t tva = 0,
                            int16_t dto = 0);
  Variant HistoriaNiveles(const Variant& dde = {}, const Variant& hta = {}, int16_t dto = 0);
  Variant HistoriaVaciados(const Variant& dde = {}, const Variant& hta = {}, int16_t dto = 0);
  // Deletes the movements of the season. Always true.
  bool IniciarCampana();

 private:
  void OpenConfiguredDatabase();
  void LoadSensorSettings();
  void StartSensors();
  // Whether the factories hand out object `number` of `count`.
  bool HandsOut(int16_t number, int16_t count) const;

  Session& session_;
  std::string path_;
  std::string sensor_object_;
  std::string udp_port_;
  int32_t udp_timeout_ = 0;
  int32_t polling_interval_ = 0;
  int32_t level_check_time_ = 0;
  int32_t level_check_margin_ = 0;
};

}  // namespace ambrelio
