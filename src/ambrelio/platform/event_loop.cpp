#include "ambrelio/platform/event_loop.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "ambrelio/platform/socket_wait.h"

namespace ambrelio {
namespace {

// A run looks up at least this often from waiting: what ends it may be something that no event
// tells of, as a signal that came just before the waiting began.
constexpr Milliseconds kLongestWait(200);

class SteadyTicks : public TickClock {
 public:
  Milliseconds Now() const override {
    return std::chrono::duration_cast<Milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
  }
  Milliseconds Pass(Milliseconds duration) override { return duration; }
};

// A negative duration counts as none; one that reaches beyond the end of time ends there.
Milliseconds After(Milliseconds now, Milliseconds duration) {
  return now + std::clamp(duration, Milliseconds(0), Milliseconds::max() - now);
}

}  // namespace

TickClock& TickClock::System() {
  static SteadyTicks clock;
  return clock;
}

struct EventLoop::State {
  // A handler is out of the timers, or shared with its watch, while it runs: it may change both.
  using Event = std::shared_ptr<Handler>;

  explicit State(TickClock& ticks) : clock(ticks) {}

  // Delivers one event; false when there is none. Timers and sockets take turns, so that neither
  // can starve the other.
  bool DeliverOne() {
    for (int kind = 0; kind < 2; ++kind) {
      timers_turn = !timers_turn;
      if (const Event event = timers_turn ? TakeDueTimer() : FindReadable()) {
        (*event)();
        return true;
      }
    }
    return false;
  }

  Event TakeDueTimer() {
    if (timers.empty() || timers.begin()->first.first > clock.Now()) return nullptr;
    return timers.extract(timers.begin()).mapped();
  }

  // The next readable socket after the one served last.
  Event FindReadable() {
    if (watches.empty()) return nullptr;
    const std::vector<SocketHandle> readable = WaitForSockets(Sockets(), Milliseconds(0));
    if (readable.empty()) return nullptr;
    const auto next = std::upper_bound(readable.begin(), readable.end(), last_served);
    last_served = next != readable.end() ? *next : readable.front();
    return watches.at(last_served);
  }

  // Lets time pass until the next timer, the next datagram or `end`.
  void Wait(Milliseconds end) {
    if (!timers.empty()) end = std::min(end, timers.begin()->first.first);
    const Milliseconds rest = clock.Pass(std::max(end - clock.Now(), Milliseconds(0)));
    if (rest > Milliseconds(0)) WaitForSockets(Sockets(), std::min(rest, kLongestWait));
  }

  std::vector<SocketHandle> Sockets() const {
    std::vector<SocketHandle> sockets;
    sockets.reserve(watches.size());
    for (const auto& [socket, handler] : watches) sockets.push_back(socket);
    return sockets;
  }

  TickClock& clock;
  std::map<std::pair<Milliseconds, TimerId>, Event> timers;  // by moment due, then by start
  TimerId last_timer = 0;
  std::map<SocketHandle, Event> watches;
  SocketHandle last_served = -1;
  bool timers_turn = false;
  Waiter* waiter = nullptr;
};

EventLoop::EventLoop(TickClock& clock) : state_(std::make_unique<State>(clock)) {}

EventLoop::~EventLoop() = default;

void EventLoop::RunFor(Milliseconds duration) {
  RunUntil([] { return false; }, duration);
}

bool EventLoop::RunUntil(const std::function<bool()>& done, Milliseconds limit) {
  const Milliseconds end = After(state_->clock.Now(), limit);
  while (!done()) {
    const bool delivered = state_->DeliverOne();
    // What is due at the very end still belongs to this run; what goes on beyond it does not.
    const Milliseconds now = state_->clock.Now();
    if (now > end || (now == end && !delivered)) return delivered && done();
    if (!delivered) state_->Wait(end);
  }
  return true;
}

void EventLoop::RunUntilIdle() {
  while (RunNext()) {
  }
}

bool EventLoop::RunNext() { return state_->DeliverOne(); }

EventLoop::TimerId EventLoop::StartTimer(Milliseconds delay, Handler handler) {
  const TimerId timer = ++state_->last_timer;
  state_->timers.emplace(std::pair(After(state_->clock.Now(), delay), timer),
                         std::make_shared<Handler>(std::move(handler)));
  if (state_->waiter != nullptr) state_->waiter->TimersChanged();
  return timer;
}

void EventLoop::StopTimer(TimerId timer) {
  const auto at = std::find_if(state_->timers.begin(), state_->timers.end(),
                               [timer](const auto& entry) { return entry.first.second == timer; });
  // The handler goes after its entry: what it holds may stop other timers as it goes.
  if (at == state_->timers.end()) return;
  const auto stopped = state_->timers.extract(at);
  if (state_->waiter != nullptr) state_->waiter->TimersChanged();
}

void EventLoop::Watch(SocketHandle socket, Handler readable) {
  state_->watches[socket] = std::make_shared<Handler>(std::move(readable));
  if (state_->waiter != nullptr) state_->waiter->Watching(socket);
}

void EventLoop::StopWatching(SocketHandle socket) {
  const auto stopped = state_->watches.extract(socket);
  if (!stopped.empty() && state_->waiter != nullptr) state_->waiter->StoppedWatching(socket);
}

void EventLoop::SetWaiter(Waiter* waiter) {
  state_->waiter = waiter;
  if (waiter == nullptr) return;
  waiter->TimersChanged();
  for (const SocketHandle socket : state_->Sockets()) waiter->Watching(socket);
}

std::optional<Milliseconds> EventLoop::UntilNextTimer() const {
  if (state_->timers.empty()) return std::nullopt;
  const Milliseconds due = state_->timers.begin()->first.first;
  return std::max(due - state_->clock.Now(), Milliseconds(0));
}

}  // namespace ambrelio
