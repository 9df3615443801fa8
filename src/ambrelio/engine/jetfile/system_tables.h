// The four tables that every file has, as those of a new file are.
#pragma once

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// Where their definitions are in a new file, that of MSysObjects apart, which is there in every
// file.
inline constexpr uint32_t kRightsPage = 3;
inline constexpr uint32_t kQueriesPage = 4;
inline constexpr uint32_t kRelationshipsPage = 5;

// Writes their definitions on these pages, which must be theirs, and gives them their maps and
// empty indexes.
void MakeSystemTables(JetFile& file);

}  // namespace ambrelio::jetfile
