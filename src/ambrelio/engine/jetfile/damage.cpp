#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {

Damage::Damage(Place place, const std::string& what)
    : AutomationError(static_cast<int>(dao::DaoError::kNotADatabaseOrDamaged),
                      dao::source::kDatabase,
                      "The database is damaged at " + PlaceText(place) + ": " + what + "."),
      place_(place),
      what_is_wrong_(what) {}

void Refuse(dao::DaoError error, const std::string& why) {
  throw AutomationError(static_cast<int>(error), dao::source::kDatabase, why);
}

}  // namespace ambrelio::jetfile
