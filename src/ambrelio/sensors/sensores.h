// The sensor service: asks the level sensor of one tank after the other, in cycles, and keeps the
// last answer of each for the host. It writes nothing to the database.
//
// Everything happens on the thread that runs the session's event loop, between the host's calls.
// An error that the transport or the automation object raises in an event comes out of the loop;
// polling then rests until the service is started again.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ambrelio/data/sensor_service.h"
#include "ambrelio/data/session.h"
#include "ambrelio/kestro/timer.h"
#include "ambrelio/platform/automation_objects.h"
#include "ambrelio/platform/datagram_socket.h"
#include "ambrelio/sensors/frm_udp.h"

namespace ambrelio::sensors {

class Sensores : public SensorService, public std::enable_shared_from_this<Sensores> {
 public:
  using SocketFactory = std::function<std::unique_ptr<DatagramSocket>(EventLoop&)>;

  // For as many tanks as the session counts now. Owned by a shared_ptr.
  explicit Sensores(Session& session, SocketFactory make_socket = MakeUdpSocket);
  ~Sensores() override;

  void StartSensors(Mode mode, const Variant& target, int32_t interval, int32_t timeout) override;
  Mode mode() const override { return mode_; }
  tpHayLectura hay(int16_t dep) const override;
  Variant Lectura(int16_t dep) const override;

  // What the service does next.
  enum class Phase : int16_t {
    kStopped = 0,
    kIdle = 1,     // between cycles
    kReply = 2,    // waits for the answer of a gateway
    kAboutTo = 3,  // is about to ask the current tank
    kResult = 4,   // waits for the result of the automation object
  };
  Phase phase() const { return phase_; }
  int16_t current_tank() const override { return current_tank_; }

 private:
  struct Tank {
    Variant reading = Variant::Null();
    tpHayLectura state = tpHayLectura::hNoHaySensor;
  };

  int16_t tank_count() const { return static_cast<int16_t>(tanks_.size()); }
  bool IsTank(int16_t dep) const { return dep >= 1 && dep <= tank_count(); }
  Tank& CurrentTank() { return tanks_[static_cast<size_t>(current_tank_ - 1)]; }

  void RestartTimer(int32_t milliseconds);
  void EndCycle();
  void mTim_Tic();

  // With a gateway.
  void OpenGateway(const std::string& target);
  void TickOfGateway();
  void SendRequest();
  void mRemoto_rxDat(const std::string& text);
  // For the current tank; then asks the next one.
  void KeepAnswer(Variant reading, tpHayLectura state);

  // With an automation object.
  std::shared_ptr<AutomationObject> CreateRemote(const std::string& name) const;
  void TickOfRemote();
  Variant CallRemote(const char* method) const;
  void TriggerRemote();
  void AskForResult();
  void NextTank();

  Session& session_;
  SocketFactory make_socket_;
  std::vector<Tank> tanks_;
  Mode mode_ = Mode::kNone;
  Phase phase_ = Phase::kStopped;
  int16_t current_tank_ = 0;
  int32_t polling_interval_ = 0;
  int32_t udp_timeout_ = 0;
  int32_t countdown_ = 0;  // questions for a result left
  std::unique_ptr<FrmUDP> mRemoto_;
  std::shared_ptr<AutomationObject> remote_;
  std::unique_ptr<kestro::Timer> mTim_;  // goes first
};

}  // namespace ambrelio::sensors
