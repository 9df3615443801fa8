// The steps that bring an older database up to the schema, in the order in which they run. Each
// looks for its own trace and does nothing when it finds it. They trap nothing, and none runs in a
// transaction: an error leaves the steps before it done.
#pragma once

#include "ambrelio/dao/database.h"

namespace ambrelio::frame {

// The tables of shares. Looks at splitDescar only: a database that has it without `split` is left
// as it is.
void EnsureSplitTables(dao::Database& database);
// The stored query ExtPesada, rewritten at every opening. A query whose name differs in case is not
// taken for it; the creation then fails on the existing name (3012).
void EnsureExtPesada(dao::Database& database);
// The tank in the key of the discharges, so that a discharge may have a row for each tank it went
// to, and the destination of emptyings.
void UpgradeDischargeKey(dao::Database& database);
void EnsureTankNames(dao::Database& database);
// The mill line of discharges, and of emptying details when it is new to discharges.
void EnsureMillLine(dao::Database& database);
void EnsureLevelAlert(dao::Database& database);
// Referents and sale columns. Its guard is the table that EnsureTankNames makes, so that it finds
// nothing to do after that: hosts bring their own.
void EnsureSaleColumns(dao::Database& database);

}  // namespace ambrelio::frame
