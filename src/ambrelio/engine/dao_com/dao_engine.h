// The engine that drives DAO itself, by name, for the files of Jet.
//
// What is asked of the port is asked of DAO with the same members and arguments, and nothing else:
// a statement, a recordset, a definition is DAO's own. Values keep their types (a Decimal becomes a
// Double), and a failure comes out with DAO's number, source and description.
#pragma once

#include <memory>

#include "ambrelio/dao/database.h"

namespace ambrelio::dao_com {

// DAO 3.6, else the one of the Access database engine; 429 when there is neither. All that came out
// of it has to go before it does.
std::shared_ptr<dao::DBEngine> CreateEngine();

// Whether there is one of the two.
bool IsRegistered();

}  // namespace ambrelio::dao_com
