#include "ambrelio/engine/explain.h"

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/database.h"

namespace ambrelio::engine {

embedded::Explanation Explain(dao::Database& database, const std::string& source) {
  auto* const explained = dynamic_cast<embedded::Database*>(&database);
  if (explained == nullptr) {
    dao::Raise(dao::DaoError::kNotSupported, dao::source::kDatabase,
               "Only the embedded engine explains a statement.");
  }
  return explained->Explain(source);
}

}  // namespace ambrelio::engine
