#include "ambrelio/kestro/timer.h"

#include <algorithm>
#include <utility>

namespace ambrelio::kestro {
namespace {

constexpr int32_t kLeastInterval = 10;

}  // namespace

Timer::Timer(EventLoop& loop, std::function<void()> tic) : loop_(loop), tic_(std::move(tic)) {}

Timer::~Timer() { Stop(); }

void Timer::Start() {
  Stop();
  enabled_ = true;
  Arm(Milliseconds(std::max(interval_, kLeastInterval)));
}

void Timer::Stop() {
  loop_.StopTimer(timer_);
  enabled_ = false;
}

void Timer::Arm(Milliseconds interval) {
  timer_ = loop_.StartTimer(interval, [this, interval] {
    Arm(interval);
    const std::function<void()> tic = tic_;  // it may destroy the timer
    tic();
  });
}

}  // namespace ambrelio::kestro
