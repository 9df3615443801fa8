#include <csignal>

#include "gateway_fixture.h"
#include "support/interruptions.h"

namespace ambrelio::cli {
namespace {

TEST_F(GatewayCommand, EndsAtASignal) {
  for (const auto& interrupt : test::Interruptions()) {
    events->StartTimer(Milliseconds(5), interrupt);
    AskAt(Milliseconds(10), "3?");
    const auto outcome = Gateway("");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "") << "what comes later is no matter of the command";
    events->RunFor(Milliseconds(10));
  }
}

TEST_F(GatewayProgram, EndsAtASignalWhileItWaits) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const auto child = Start({});
    EXPECT_EQ(Ask("3?"), "12.5");
    child->Signal(signal);
    EXPECT_EQ(child->Wait(), 0);
  }
}

}  // namespace
}  // namespace ambrelio::cli
