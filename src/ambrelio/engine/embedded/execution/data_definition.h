// The statements that define tables and indexes.
#pragma once

#include "ambrelio/engine/embedded/sql/ast.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"

namespace ambrelio::embedded {

// Fields made this way are optional unless `not null` stands with them, and take no text of length
// zero. Raises 3292 for an unknown type, 3295, 3372 for an index that is not there, 3380 for a
// field that is, and what CatalogueStore raises.
void Define(const sql::CreateTable& statement, CatalogueStore& catalogue);
void Define(const sql::CreateIndex& statement, CatalogueStore& catalogue);
void Define(const sql::AlterTable& statement, CatalogueStore& catalogue);
void Define(const sql::Drop& statement, CatalogueStore& catalogue);

}  // namespace ambrelio::embedded
