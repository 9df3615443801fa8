#include "ambrelio/platform/thread_value.h"

namespace ambrelio {

ThreadValues& ThreadValues::Current() {
  thread_local ThreadValues values;
  return values;
}

}  // namespace ambrelio
