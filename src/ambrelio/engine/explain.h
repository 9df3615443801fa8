// A look into the engine behind a database, beside the port: the port has DAO's operations only,
// and DAO explains nothing.
#pragma once

#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/execution/explanation.h"

namespace ambrelio::engine {

// How the database would go about the statement, or the name of a table or stored query, which is
// not carried out. Raises 3251 for a database that is not one of the embedded engine, traced ones
// included, else what the statement itself would raise before it begins, and 3129 for a data
// definition.
embedded::Explanation Explain(dao::Database& database, const std::string& source);

}  // namespace ambrelio::engine
