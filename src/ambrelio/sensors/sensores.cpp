#include "ambrelio/sensors/sensores.h"

#include <algorithm>
#include <utility>

#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::sensors {
namespace {

constexpr char kDefaultHost[] = "127.0.0.1";
constexpr int32_t kDefaultPort = 9084;

// In milliseconds.
constexpr int32_t kDefaultTimeout = 2000;
constexpr int32_t kFirstCycle = 2000;
constexpr int32_t kRemoteStep = 20;

// How often an automation object is asked for its result.
constexpr int32_t kResultQuestions = 100;

// What a gateway answers for a tank without a sensor.
constexpr char kNoSensorText[] = "NO";

// What DisparoLectura answers.
constexpr int16_t kNoSensor = 0;
constexpr int16_t kSensorFailed = 1;
constexpr int16_t kResultFollows = 2;

// What ResultadoLectura answers before it has one.
constexpr double kNotReady = -1;

}  // namespace

Sensores::Sensores(Session& session, SocketFactory make_socket)
    : session_(session),
      make_socket_(std::move(make_socket)),
      tanks_(static_cast<size_t>(std::max<int16_t>(session.tank_count, 0))) {}

Sensores::~Sensores() = default;

void Sensores::StartSensors(Mode mode, const Variant& target, int32_t interval, int32_t timeout) {
  const auto self = shared_from_this();  // an object made here may have the service released
  mode_ = Mode::kNone;
  if (!mTim_) {
    mTim_ = std::make_unique<kestro::Timer>(session_.Events(), [weak = weak_from_this()] {
      if (const auto service = weak.lock()) service->mTim_Tic();
    });
  }
  mTim_->Stop();
  switch (mode) {
    case Mode::kUdp:
      OpenGateway(ToText(target));
      udp_timeout_ = timeout >= 1 ? timeout : kDefaultTimeout;
      break;
    case Mode::kAutomationObject:
      remote_ = CreateRemote(ToText(target));
      if (!remote_) return;
      break;
    default:
      return;
  }
  mode_ = mode;
  if (tanks_.empty()) return;
  polling_interval_ = interval;
  current_tank_ = 0;
  RestartTimer(kFirstCycle);
  phase_ = Phase::kIdle;
}

tpHayLectura Sensores::hay(int16_t dep) const {
  return IsTank(dep) ? tanks_[static_cast<size_t>(dep - 1)].state : tpHayLectura::hNoHaySensor;
}

Variant Sensores::Lectura(int16_t dep) const {
  return IsTank(dep) ? tanks_[static_cast<size_t>(dep - 1)].reading : Variant();
}

// "port" or "host:port"; any other text means the default port of this machine.
void Sensores::OpenGateway(const std::string& target) {
  std::string host = kDefaultHost;
  int32_t port = kDefaultPort;
  if (IsNumeric(target)) {
    port = ToLong(target);
  } else if (target.find(':') != std::string::npos) {
    std::string rest = target;
    host = kestro::Tools::NextToken(rest, ':');
    if (IsNumeric(rest)) port = ToLong(rest);
  }
  if (!mRemoto_) {
    const auto rx_dat = [weak = weak_from_this()](const std::string& text) {
      if (const auto service = weak.lock()) service->mRemoto_rxDat(text);
    };
    mRemoto_ = std::make_unique<FrmUDP>(make_socket_(session_.Events()), rx_dat);
  }
  mRemoto_->Configure(host, port);
}

void Sensores::RestartTimer(int32_t milliseconds) {
  mTim_->Stop();
  mTim_->SetInterval(milliseconds);
  mTim_->Start();
}

void Sensores::EndCycle() {
  phase_ = Phase::kIdle;
  current_tank_ = 0;
  RestartTimer(polling_interval_);
}

void Sensores::mTim_Tic() {
  mTim_->Stop();
  if (mode_ == Mode::kUdp) TickOfGateway();
  if (mode_ == Mode::kAutomationObject) TickOfRemote();
}

void Sensores::TickOfGateway() {
  switch (phase_) {
    case Phase::kIdle:
    case Phase::kAboutTo:
      current_tank_ = 1;
      SendRequest();
      break;
    case Phase::kReply:
      KeepAnswer(Variant::Null(), tpHayLectura::hErrorLectura);
      break;
    case Phase::kStopped:
    case Phase::kResult:
      break;
  }
}

void Sensores::SendRequest() {
  phase_ = Phase::kReply;
  mRemoto_->Request(current_tank_);
  RestartTimer(udp_timeout_);
}

// An answer does not name its tank: whatever arrives while one is waited for is the current tank's.
void Sensores::mRemoto_rxDat(const std::string& text) {
  switch (phase_) {
    case Phase::kReply:
      mTim_->Stop();
      phase_ = Phase::kAboutTo;
      if (IsNumeric(text)) {
        KeepAnswer(ToDouble(text), tpHayLectura::hLecturaDisponible);
      } else if (text == kNoSensorText) {
        KeepAnswer(Variant::Null(), tpHayLectura::hNoHaySensor);
      } else {
        KeepAnswer(Variant::Null(), tpHayLectura::hErrorLectura);
      }
      break;
    case Phase::kIdle:
    case Phase::kAboutTo:
      EndCycle();
      break;
    case Phase::kStopped:
    case Phase::kResult:
      break;
  }
}

void Sensores::KeepAnswer(Variant reading, tpHayLectura state) {
  Tank& tank = CurrentTank();
  tank.reading = std::move(reading);
  tank.state = state;
  if (current_tank_ >= tank_count()) {
    EndCycle();
  } else {
    ++current_tank_;
    SendRequest();
  }
}

std::shared_ptr<AutomationObject> Sensores::CreateRemote(const std::string& name) const {
  try {
    return session_.AutomationObjects().Create(name);
  } catch (const AutomationError&) {
    return nullptr;
  }
}

void Sensores::TickOfRemote() {
  switch (phase_) {
    case Phase::kIdle:
      current_tank_ = 1;
      phase_ = Phase::kAboutTo;
      TriggerRemote();
      break;
    case Phase::kAboutTo:
      TriggerRemote();
      break;
    case Phase::kResult:
      AskForResult();
      break;
    case Phase::kStopped:
    case Phase::kReply:
      break;
  }
}

Variant Sensores::CallRemote(const char* method) const {
  const auto remote = remote_;  // it may have the service started anew
  return remote->Call(method, {current_tank_});
}

void Sensores::TriggerRemote() {
  Tank& tank = CurrentTank();
  int16_t code = kSensorFailed;
  try {
    code = ToInteger(CallRemote("DisparoLectura"));
  } catch (const AutomationError&) {
    // The sensor has failed then.
  }
  switch (code) {
    case kNoSensor:
      tank.state = tpHayLectura::hNoHaySensor;
      NextTank();
      break;
    case kSensorFailed:
      tank.state = tpHayLectura::hErrorLectura;
      NextTank();
      break;
    case kResultFollows:
      phase_ = Phase::kResult;
      countdown_ = kResultQuestions;
      RestartTimer(kRemoteStep);
      break;
    default:
      break;  // the timer stays stopped: an object that says this is not asked again
  }
}

void Sensores::AskForResult() {
  Tank& tank = CurrentTank();
  const Variant result = CallRemote("ResultadoLectura");
  if (result.is_null() || ToDouble(result) != kNotReady) {
    tank.reading = CallRemote("LecturaNivel");  // the state stays, other than over UDP
    NextTank();
  } else if (--countdown_ >= 1) {
    RestartTimer(kRemoteStep);
  } else {
    tank.state = tpHayLectura::hErrorLectura;
    NextTank();
  }
}

void Sensores::NextTank() {
  if (current_tank_ >= tank_count()) {
    EndCycle();
    return;
  }
  ++current_tank_;
  phase_ = Phase::kAboutTo;
  RestartTimer(kRemoteStep);
}

}  // namespace ambrelio::sensors
