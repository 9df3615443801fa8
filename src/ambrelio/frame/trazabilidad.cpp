#include "ambrelio/frame/trazabilidad.h"

#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/stretch.h"
#include "ambrelio/frame/connection.h"
#include "ambrelio/frame/histories.h"
#include "ambrelio/frame/settings.h"
#include "ambrelio/hoppers/reassign.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/hoppers/tva_inter.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/referents/catalogue.h"
#include "ambrelio/sensors/sensores.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {

using kestro::Tools;

namespace {

constexpr char kSensorSection[] = "SENSORES";
// Hours between level checks and their margin when the settings name no time.
constexpr int32_t kDefaultCheckTime = 24;
constexpr int32_t kDefaultCheckMargin = 5;

}  // namespace

Trazabilidad::~Trazabilidad() {
  session_.SetSensors(nullptr);
  try {
    Cerrar();
  } catch (const AutomationError&) {
    // The client let go of the object: there is nobody left to tell.
  }
}

Variant Trazabilidad::Constructor(const std::string& path, bool vardex3, const Variant&) {
  path_ = path;
  session_.vardex3 = vardex3;
  OpenConfiguredDatabase();
  if (BaseAbierta()) {
    frame::EnsureSchema(session_);
    LoadSensorSettings();
    StartSensors();
  }
  return {};
}

void Trazabilidad::Cerrar() { session_.CloseDatabase(); }

void Trazabilidad::RecargaValores() {
  OpenConfiguredDatabase();
  if (!BaseAbierta()) return;
  LoadSensorSettings();
  StartSensors();
}

void Trazabilidad::SalvarValores() {
  frame::HostIni ini = frame::OpenHostIni(path_, session_.vardex3);
  ini.file.SetSection(kSensorSection);
  ini.file.Write("ActiveX", sensor_object_);
  ini.file.Write("PortUDP", udp_port_);
  ini.file.Write("TimeOut", Tools::LongText(udp_timeout_));
  ini.file.Write("Periodo", Tools::LongText(polling_interval_));
  ini.file.Write("TiempoControl", Tools::LongText(level_check_time_));
  ini.file.Write("MargenControl", Tools::LongText(level_check_margin_));
}

std::shared_ptr<ambrelio::TvaInter> Trazabilidad::TvaInter(int16_t tva) {
  if (!HandsOut(tva, session_.intermediate_hopper_count)) return nullptr;
  return std::make_shared<ambrelio::TvaInter>(session_, tva);
}

std::shared_ptr<ambrelio::Tolva> Trazabilidad::Tolva(int16_t tva) {
  if (!HandsOut(tva, session_.hopper_count)) return nullptr;
  return std::make_shared<ambrelio::Tolva>(session_, tva);
}

std::shared_ptr<ambrelio::Deposito> Trazabilidad::Deposito(int16_t dto) {
  if (!HandsOut(dto, session_.tank_count)) return nullptr;
  return std::make_shared<ambrelio::Deposito>(session_, dto);
}

std::shared_ptr<Referente> Trazabilidad::NuevoReferente(int16_t pfx) {
  return referents::NewReferent(session_, pfx);
}

std::shared_ptr<Referente> Trazabilidad::UnReferente(int16_t pfx, int32_t cod) {
  return referents::FindReferent(session_, pfx, cod);
}

bool Trazabilidad::GuardarReferente(int16_t pfx, const std::shared_ptr<Referente>& ref) {
  if (ref == nullptr) Raise(RuntimeError::kObjectNotSet);
  return referents::SaveReferent(session_, pfx, *ref);
}

bool Trazabilidad::EliminarReferente(int16_t pfx, int32_t cod) {
  return referents::DeleteReferent(session_, pfx, cod);
}

Variant Trazabilidad::ListaReferentes(int16_t pfx, int16_t ord) {
  return referents::ListReferents(session_, pfx, ord);
}

Variant Trazabilidad::ListaDestinoVenta() { return frame::SaleDestinations(session_); }

tpHayLectura Trazabilidad::HayLecturaNivel(int16_t dep) const {
  return session_.Sensors() ? session_.Sensors()->hay(dep) : tpHayLectura::hNoHaySensor;
}

Variant Trazabilidad::LecturaNivel(int16_t dep) const {
  if (dep < 1 || dep > session_.tank_count || !session_.Sensors()) return {};
  return session_.Sensors()->Lectura(dep);
}

bool Trazabilidad::Trasegar(int16_t org, int16_t dno, double qto) {
  const auto is_hopper = [this](int16_t tva) { return tva >= 1 && tva <= session_.hopper_count; };
  if (!(qto >= 0)) return false;  // a NaN is refused too
  if (org == dno || !is_hopper(org) || !is_hopper(dno)) return false;
  if (qto == 0 || qto > 1) qto = 1;
  bool moved = false;
  data::InOneStretch(session_, [&] {
    const auto origin = data::CurrentDischarge(session_, org);
    if (!origin) return;
    const auto target = data::CurrentDischarge(session_, dno);
    if (!target) return;
    moved = ReassignDischarge(session_, org, origin->number, dno, target->number, qto);
  });
  return moved;
}

Variant Trazabilidad::HistoriaDescargas(const Variant& dde, const Variant& hta, int16_t tva,
                                        int16_t dto) {
  return frame::DischargeHistory(session_, {dde, hta, tva, dto});
}

Variant Trazabilidad::HistoriaNiveles(const Variant& dde, const Variant& hta, int16_t dto) {
  return frame::ReadingHistory(session_, {dde, hta, 0, dto});
}

Variant Trazabilidad::HistoriaVaciados(const Variant& dde, const Variant& hta, int16_t dto) {
  return frame::EmptyingHistory(session_, {dde, hta, 0, dto});
}

bool Trazabilidad::IniciarCampana() {
  frame::StartSeason(session_);
  return true;
}

void Trazabilidad::OpenConfiguredDatabase() {
  const frame::DatabaseSettings settings = frame::LoadGeneralSettings(session_, path_);
  frame::OpenDatabaseSession(session_, settings.path, settings.password);
}

void Trazabilidad::LoadSensorSettings() {
  session_.SetSensors(nullptr);  // frees its port before the new service wants it
  session_.SetSensors(std::make_shared<sensors::Sensores>(session_));
  frame::HostIni ini = frame::OpenHostIni(path_, session_.vardex3);
  ini.file.SetSection(kSensorSection);
  const auto number = [&ini](const char* key) {
    return RoundToLong(LeadingNumber(ini.file.Read(key)));
  };
  sensor_object_ = ini.file.Read("ActiveX");
  udp_port_ = ini.file.Read("PortUDP");
  udp_timeout_ = number("TimeOut");
  polling_interval_ = number("Periodo");
  const bool checked = !ini.file.Read("TiempoControl").empty();
  level_check_time_ = checked ? number("TiempoControl") : kDefaultCheckTime;
  level_check_margin_ = checked ? number("MargenControl") : kDefaultCheckMargin;
}

void Trazabilidad::StartSensors() {
  using Mode = SensorService::Mode;
  Mode mode = Mode::kNone;
  Variant target;
  if (!sensor_object_.empty()) {
    mode = Mode::kAutomationObject;
    target = sensor_object_;
  } else if (!udp_port_.empty()) {
    mode = Mode::kUdp;
    target = udp_port_;
  }
  session_.Sensors()->StartSensors(mode, target, polling_interval_, udp_timeout_);
}

bool Trazabilidad::HandsOut(int16_t number, int16_t count) const {
  return BaseAbierta() && number >= 1 && number <= count;
}

}  // namespace ambrelio
