#include <csignal>

#include "ambrelio/platform/interruption.h"

namespace ambrelio {
namespace {

// The only thing that a signal's handler may touch.
volatile std::sig_atomic_t interrupted = 0;

void Note(int) { interrupted = 1; }

}  // namespace

struct Interruption::Handlers {
  struct sigaction of_int {};
  struct sigaction of_term {};
};

Interruption::Interruption() : before_(std::make_unique<Handlers>()) {
  interrupted = 0;
  struct sigaction note {};
  note.sa_handler = Note;
  sigemptyset(&note.sa_mask);
  sigaction(SIGINT, &note, &before_->of_int);
  sigaction(SIGTERM, &note, &before_->of_term);
}

Interruption::~Interruption() {
  sigaction(SIGINT, &before_->of_int, nullptr);
  sigaction(SIGTERM, &before_->of_term, nullptr);
}

bool Interruption::Interrupted() const { return interrupted != 0; }

}  // namespace ambrelio
