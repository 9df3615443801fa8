// What the session and the root know of the level sensors.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/value/variant.h"

namespace ambrelio {

// Whether a tank has a reading: an enumeration of the object model.
enum class tpHayLectura : int32_t {
  hNoHaySensor = 0,
  hNoHayLectura = 1,  // kept for hosts; the service never says it
  hErrorLectura = 2,
  hLecturaDisponible = 3,
};

class SensorService {
 public:
  enum class Mode : int16_t { kNone = 0, kUdp = 1, kAutomationObject = 2 };

  virtual ~SensorService() = default;

  // Polls from two seconds after, in cycles with a pause of `interval` milliseconds between them.
  // `target` is the UDP port of the gateway ("9084" on this machine, or "host:9084") or the
  // programmatic identifier of the automation object; `timeout`, in milliseconds, is for an answer
  // over UDP, 2000 when below 1. States and readings stay.
  virtual void StartSensors(Mode mode, const Variant& target, int32_t interval,
                            int32_t timeout) = 0;
  // The mode that StartSensors has set: kNone also when the automation object cannot be made.
  virtual Mode mode() const = 0;
  // The tank being asked, 0 between cycles.
  virtual int16_t current_tank() const = 0;
  // The state of a tank, hNoHaySensor for a tank that does not exist.
  virtual tpHayLectura hay(int16_t dep) const = 0;
  // The last reading of a tank: a Double, or Null; Empty for a tank that does not exist.
  virtual Variant Lectura(int16_t dep) const = 0;
};

}  // namespace ambrelio
