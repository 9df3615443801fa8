#include <cstdlib>

#include "ambrelio/value/locale.h"

namespace ambrelio {

Locale Locale::OfSystem() {
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const char* name = std::getenv(variable);
    if (name != nullptr && *name != '\0') return FromName(name);
  }
  return {};
}

}  // namespace ambrelio
