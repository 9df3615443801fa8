#include "gateway.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::cli {
namespace {

// The tank of "3?"; nothing for what is no request.
std::optional<int16_t> RequestedTank(std::string_view request) {
  if (!request.ends_with('?')) return std::nullopt;
  request.remove_suffix(1);
  if (request.empty() || !IsDigit(request.front()) || request.front() == '0') return std::nullopt;
  const char* const end = request.data() + request.size();
  int16_t tank = 0;
  const auto [read, error] = std::from_chars(request.data(), end, tank);
  return error == std::errc() && read == end ? std::optional(tank) : std::nullopt;
}

std::string EndpointText(const Endpoint& endpoint) {
  return fmt::format("{}:{}", endpoint.host, endpoint.port);
}

// The start of a datagram, whatever it holds, on one line.
std::string Quoted(const std::string& bytes) {
  constexpr size_t kMost = 40;
  const std::string text = Windows1252ToUtf8(bytes.substr(0, kMost));
  return JsonLine(text) + (bytes.size() > kMost ? "..." : "");
}

}  // namespace

Gateway::Gateway(EventLoop& loop, GatewayScript script, Listener listener)
    : loop_(loop),
      script_(std::move(script)),
      listener_(std::move(listener)),
      socket_(MakeUdpSocket(loop)) {}

Gateway::~Gateway() {
  for (const auto& [request, timer] : delayed_) loop_.StopTimer(timer);
}

void Gateway::Listen(const Endpoint& local) {
  socket_->Bind(
      local, [this](const std::string& bytes, const Endpoint& sender) { Receive(bytes, sender); });
}

void Gateway::Receive(const std::string& bytes, const Endpoint& sender) {
  const std::optional<int16_t> tank = RequestedTank(bytes);
  if (!tank) {
    listener_.problem(fmt::format("no request from {}: {}", EndpointText(sender), Quoted(bytes)));
    return;
  }
  ++requests_;
  const GatewayAnswer& answer = script_.Next(*tank);
  Answer(answer, sender);
  listener_.request(*tank, answer);
}

void Gateway::Answer(const GatewayAnswer& answer, const Endpoint& sender) {
  if (answer.copies > 0 && answer.delay > Milliseconds(0)) {
    const int64_t request = requests_;
    delayed_[request] = loop_.StartTimer(answer.delay, [this, request, answer, sender] {
      delayed_.erase(request);
      Send(answer, sender);
    });
    return;
  }
  Send(answer, sender);
}

void Gateway::Send(const GatewayAnswer& answer, const Endpoint& sender) {
  try {
    for (int32_t i = 0; i < answer.copies; ++i) socket_->Send(sender, answer.bytes);
  } catch (const AutomationError& error) {
    listener_.problem(fmt::format("an answer to {} cannot be sent: error {}: {}",
                                  EndpointText(sender), error.number(), error.description()));
  }
}

}  // namespace ambrelio::cli
