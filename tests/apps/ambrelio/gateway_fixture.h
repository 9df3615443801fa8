// The gateway command with one who asks it, within this process and as a program.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ambrelio/platform/datagram_socket.h"
#include "cli_test.h"
#include "support/child_process.h"
#include "support/udp_ports.h"

namespace ambrelio::cli {

inline constexpr char kGatewayScript[] = R"j({"tank":3,"answer":"12.5"}
{"tank":3,"answer":"13","delay":300,"copies":2}
{"tank":4,"silence":true}
{"tank":6,"bytes":"c3ff00"}
{"call":"Deposito(7).EntradaNivel","args":[null,805]}
)j";

// The command, and one who asks it while it runs, on one loop.
class GatewayCommand : public testing::Test {
 protected:
  GatewayCommand() {
    client->Bind({"127.0.0.1", 0},
                 [this](const std::string& bytes, const Endpoint&) { answers.push_back(bytes); });
  }

  std::string Port() const { return std::to_string(port); }

  // Sends a datagram when so much of the loop's time has passed.
  void AskAt(Milliseconds moment, const std::string& request) {
    events->StartTimer(moment, [this, request] { client->Send({"127.0.0.1", port}, request); });
  }

  test::Outcome Gateway(const std::string& script, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"gateway", "--port", Port(), "--script", "-"});
    return test::RunCli(std::move(more), script, events);
  }

  std::string Listening() const { return "listening on 127.0.0.1:" + Port() + "\n"; }

  const int32_t port = test::FreeUdpPortPair();
  test::TempFolder folder;
  ManualTicks ticks;
  std::shared_ptr<EventLoop> events = std::make_shared<EventLoop>(ticks);
  std::unique_ptr<DatagramSocket> client = MakeUdpSocket(*events);
  std::vector<std::string> answers;
};

// The program itself.
class GatewayProgram : public GatewayCommand {
 protected:
  GatewayProgram() { test::WriteText(script, kGatewayScript); }

  // Runs it until it listens.
  std::unique_ptr<test::ChildProcess> Start(const std::vector<std::string>& more) {
    std::vector<std::string> command = {AMBRELIO_PROGRAM, "gateway",  "--port",
                                        Port(),           "--script", script};
    command.insert(command.end(), more.begin(), more.end());
    auto child = std::make_unique<test::ChildProcess>(command, test::kErrorsToOutput);
    std::string line;
    child->ReadLine(line);
    EXPECT_EQ(line + "\n", Listening());
    return child;
  }

  // Asks by the system's time and waits for the answer.
  std::string Ask(const std::string& request) {
    EventLoop loop;
    std::string answer;
    const auto socket = MakeUdpSocket(loop);
    socket->Bind({"127.0.0.1", 0},
                 [&](const std::string& bytes, const Endpoint&) { answer = bytes; });
    socket->Send({"127.0.0.1", port}, request);
    loop.RunUntil([&] { return !answer.empty(); }, Milliseconds(10000));
    return answer;
  }

  std::string script = folder.File("script.jsonl");
};

}  // namespace ambrelio::cli
