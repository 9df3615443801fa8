#include "ambrelio/sensors/frm_udp.h"

#include <limits>
#include <utility>

#include "ambrelio/kestro/tools.h"
#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::sensors {
namespace {

// The port above it is the one listened at.
constexpr int32_t kLastGatewayPort = std::numeric_limits<uint16_t>::max() - 1;

bool IsThisMachine(const std::string& host) {
  return EqualsIgnoringAsciiCase(host, "localhost") || host.starts_with("127.");
}

}  // namespace

FrmUDP::FrmUDP(std::unique_ptr<DatagramSocket> socket,
               std::function<void(const std::string&)> rx_dat)
    : socket_(std::move(socket)), rx_dat_(std::move(rx_dat)) {}

FrmUDP::~FrmUDP() { socket_->Close(); }

void FrmUDP::Configure(const std::string& host, int32_t port) {
  socket_->Close();
  if (port < 1 || port > kLastGatewayPort) {
    Raise(RuntimeError::kInvalidPropertyValue, "UDP port " + kestro::Tools::LongText(port));
  }
  remote_ = {host, port};
  socket_->Bind({IsThisMachine(host) ? "127.0.0.1" : "", port + 1},
                [rx_dat = rx_dat_](const std::string& bytes, const Endpoint&) {
                  rx_dat(Windows1252ToUtf8(bytes));
                });
}

void FrmUDP::Request(int16_t tank) {
  socket_->Send(remote_, kestro::Tools::IntegerText(tank) + "?");
}

}  // namespace ambrelio::sensors
