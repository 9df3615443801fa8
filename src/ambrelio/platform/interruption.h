// The wish of a person or of the system that a program which runs until told otherwise shall end.
#pragma once

#include <memory>

namespace ambrelio {

// While it lives, SIGINT (Ctrl+C) and SIGTERM are noted and do not end the program; at its end they
// mean again what they meant before. They also end a wait of an event loop. One at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // Whether one of them has come since the beginning.
  bool Interrupted() const;

 private:
  struct Handlers;
  std::unique_ptr<Handlers> before_;
};

}  // namespace ambrelio
