#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

constexpr const char* kSource = "DAO.Database";

}  // namespace

Damage::Damage(Place place, const std::string& what)
    : AutomationError(static_cast<int>(dao::DaoError::kNotADatabaseOrDamaged), kSource,
                      "The database is damaged at " + PlaceText(place) + ": " + what + "."),
      place_(place),
      what_is_wrong_(what) {}

void Refuse(dao::DaoError error, const std::string& why) {
  throw AutomationError(static_cast<int>(error), kSource, why);
}

}  // namespace ambrelio::jetfile
