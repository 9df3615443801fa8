// Relationships, which know tables and columns by name.
#pragma once

#include "ambrelio/engine/jetfile/catalogue.h"

namespace ambrelio::jetfile {

// Raises 3281, naming the table, or the column, when a relationship is over it.
void RequireNoRelationship(const Catalogue& catalogue, std::string_view table);
void RequireNoRelationship(const Catalogue& catalogue, std::string_view table,
                           std::string_view column);

// Lets relationships know a table, or a column of a table, by another name.
void RenameInRelationships(JetFile& file, const Catalogue& catalogue, std::string_view table,
                           std::string_view new_table);
void RenameInRelationships(JetFile& file, const Catalogue& catalogue, std::string_view table,
                           std::string_view column, std::string_view new_column);

}  // namespace ambrelio::jetfile
