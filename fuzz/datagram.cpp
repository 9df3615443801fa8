// The answer of a sensor gateway: whatever arrives gives the tank a state, and a reading where the
// state says so.
#include <memory>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/sensors/sensores.h"
#include "ambrelio/value/convert.h"
#include "fuzz.h"

namespace {

using ambrelio::DatagramSocket;
using ambrelio::Endpoint;
using ambrelio::Milliseconds;
using ambrelio::tpHayLectura;

// A gateway that gives one answer to whatever it is asked.
class AnsweringSocket : public DatagramSocket {
 public:
  AnsweringSocket(ambrelio::EventLoop& loop, std::string answer)
      : loop_(loop), answer_(std::move(answer)) {}

  void Bind(const Endpoint& local, Receiver receiver) override {
    port_ = local.port;
    receiver_ = std::move(receiver);
  }
  void Send(const Endpoint& remote, std::string_view) override {
    loop_.StartTimer(Milliseconds(1), [this, remote] {
      if (receiver_) receiver_(answer_, remote);
    });
  }
  void Close() override { receiver_ = nullptr; }
  int32_t LocalPort() const override { return port_; }

 private:
  ambrelio::EventLoop& loop_;
  std::string answer_;
  Receiver receiver_;
  int32_t port_ = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using ambrelio::fuzz::Require;
  const std::string answer(ambrelio::fuzz::TextOf(data, size));
  ambrelio::ManualTicks ticks;
  ambrelio::Session session;
  session.UseEvents(std::make_shared<ambrelio::EventLoop>(ticks));
  session.tank_count = 1;
  {
    const auto service = std::make_shared<ambrelio::sensors::Sensores>(
        session, [&answer](ambrelio::EventLoop& loop) {
          return std::make_unique<AnsweringSocket>(loop, answer);
        });
    service->StartSensors(ambrelio::SensorService::Mode::kUdp, "9084", 1000, 500);
    session.Events().RunFor(Milliseconds(2100));

    const ambrelio::Variant text = ambrelio::Windows1252ToUtf8(answer);
    const bool numeric = ambrelio::IsNumeric(text);
    const tpHayLectura expected = numeric          ? tpHayLectura::hLecturaDisponible
                                  : answer == "NO" ? tpHayLectura::hNoHaySensor
                                                   : tpHayLectura::hErrorLectura;
    Require(service->hay(1) == expected, "the answer's text decides the state");
    Require(service->Lectura(1) ==
                (numeric ? ambrelio::Variant(ambrelio::ToDouble(text)) : ambrelio::Variant::Null()),
            "there is a reading exactly for a number");
    Require(service->phase() == ambrelio::sensors::Sensores::Phase::kIdle, "the cycle has ended");
  }
  session.Events().RunUntilIdle();
  return 0;
}
