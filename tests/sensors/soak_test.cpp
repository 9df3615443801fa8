// A hundred thousand datagrams, about half of them broken, beside a model of what must be known of
// each tank.
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <random>

#include "sensors/sensors_test.h"
#include "support/memory_in_use.h"
#include "support/udp_gateway.h"

namespace ambrelio::sensors {
namespace {

constexpr int kDatagrams = 100'000;
constexpr int16_t kTankCount = 12;
constexpr size_t kLongest = 65507;
// What differs from one cycle to another stays below this; a byte lost with each datagram does not.
constexpr size_t kMemoryMargin = 32 * 1024;

// A datagram, and the state and reading of the tank that it is taken for, as "3 12.5".
struct Datagram {
  std::string bytes;
  std::string meaning;
};

constexpr char kNoSensor[] = "0 Null";
constexpr char kError[] = "2 Null";

Datagram Reading(std::string bytes, double value) {
  return {std::move(bytes), "3 " + ToText(value)};
}
Datagram Error(std::string bytes) { return {std::move(bytes), kError}; }

// What the gateway sends in a cycle: the answers to each tank's request.
using Cycle = std::vector<std::vector<Datagram>>;

// Writes answers, good and broken, the same in every run of the test.
class Writer {
 public:
  Cycle Next() {
    Cycle cycle(kTankCount);
    for (auto& answers : cycle) {
      while (answers.size() < Count()) answers.push_back(Number(0, 1) == 0 ? Good() : Broken());
    }
    // Long ones come when nothing else waits to be read: systems keep little more than two.
    if (Number(0, 59) == 0) cycle.front() = {Long()};
    return cycle;
  }

  Datagram Good() {
    if (Number(0, 9) == 0) return {"NO", kNoSensor};
    const int tenths = Number(-999, 9999);
    std::string text = tenths < 0 ? "-" : "";
    text += std::to_string(std::abs(tenths) / 10) + "." + std::to_string(std::abs(tenths) % 10);
    return Reading(Number(0, 3) == 0 ? "  " + text + " " : text, tenths / 10.0);
  }

 private:
  int Number(int first, int last) { return std::uniform_int_distribution(first, last)(random_); }

  // Mostly one; now and then silence, or more than was asked for.
  size_t Count() {
    const int lot = Number(0, 19);
    return lot == 0 ? 0 : lot == 1 ? 2 : lot == 2 ? 3 : 1;
  }

  Datagram Broken() {
    static const char* const kTexts[] = {"", "no", "12.5.1", "--7", "1e999", "12 cm", "x1", "-"};
    const int lot = Number(0, 2 * static_cast<int>(std::size(kTexts)));
    if (lot < static_cast<int>(std::size(kTexts))) return Error(kTexts[lot]);
    // Any bytes at all, one of which is in no number.
    std::string bytes(static_cast<size_t>(Number(1, 60)), '#');
    std::generate(bytes.begin() + 1, bytes.end(),
                  [this] { return static_cast<char>(Number(0, 255)); });
    std::shuffle(bytes.begin(), bytes.end(), random_);
    return Error(std::move(bytes));
  }

  Datagram Long() {
    if (Number(0, 1) == 0) return Reading(std::string(kLongest - 1, '0') + "7", 7);
    return Error(std::string(kLongest, Number(0, 1) == 0 ? 'x' : '9'));
  }

  std::mt19937 random_{20261115};
};

// What is known after a cycle: answers are taken in the order in which they were sent, each for the
// tank that is being asked. What is left after the last tank says nothing.
std::vector<std::string> Expected(const Cycle& cycle) {
  std::vector<std::string> tanks;
  std::deque<Datagram> arrived;
  for (const auto& answers : cycle) {
    arrived.insert(arrived.end(), answers.begin(), answers.end());
    tanks.push_back(arrived.empty() ? kError : arrived.front().meaning);
    if (!arrived.empty()) arrived.pop_front();
  }
  return tanks;
}

class SensorSoak : public SensorsTest {
 protected:
  SensorSoak() : SensorsTest(kTankCount) { service = std::make_shared<Sensores>(session); }

  void RunTo(Phase phase) {
    ASSERT_TRUE(loop->RunUntil([&] { return service->phase() == phase; }, Milliseconds(60000)));
  }
  std::vector<std::string> Send(const std::string& request) const {
    const auto tank = static_cast<size_t>(std::stoi(request));
    std::vector<std::string> texts;
    for (const Datagram& datagram : cycle.at(tank - 1)) texts.push_back(datagram.bytes);
    return texts;
  }
  Writer writer;
  Cycle cycle;
};

TEST_F(SensorSoak, KnowsOfEachTankWhatWasLastSaid) {
  test::UdpGateway gateway(*loop, [this](const std::string& request) { return Send(request); });
  StartUdp(std::to_string(gateway.port()));
  std::vector<std::string> requests;
  for (int16_t dep = 1; dep <= kTankCount; ++dep) requests.push_back(std::to_string(dep) + "?");

  size_t memory_after_a_tenth = 0;
  for (int sent = 0; sent < kDatagrams;) {
    cycle = writer.Next();
    ASSERT_NO_FATAL_FAILURE(RunTo(Phase::kReply));
    ASSERT_NO_FATAL_FAILURE(RunTo(Phase::kIdle));
    gateway.SendStray(writer.Good().bytes);
    loop->RunUntilIdle();
    ASSERT_EQ(std::exchange(gateway.requests, {}), requests) << "after " << sent;
    ASSERT_EQ(Tanks(), Expected(cycle)) << "after " << sent;
    for (const auto& answers : cycle) sent += static_cast<int>(answers.size());
    ++sent;  // the stray
    if (memory_after_a_tenth == 0 && sent >= kDatagrams / 10) {
      cycle.clear();
      memory_after_a_tenth = test::MemoryInUse();
    }
  }
  cycle.clear();
  EXPECT_LE(test::MemoryInUse(), memory_after_a_tenth + kMemoryMargin);
}

}  // namespace
}  // namespace ambrelio::sensors
