// Making and changing sets of pages.
#pragma once

#include <cstdint>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// A new map, with nothing in it: a row of a page of maps that has room, else of a new one.
RowPointer NewMap(JetFile& file);

// Takes a map out of the file. The pages that it names are not its business.
void DropMap(JetFile& file, RowPointer map);

// Does nothing when the page is there already. A map whose row cannot name the page grows, or moves
// its bits to pages of their own. Raises Damage, and 3026 when the file cannot grow.
void AddToMap(JetFile& file, RowPointer map, uint32_t page);

// Does nothing when the page is not there. Raises Damage.
void RemoveFromMap(JetFile& file, RowPointer map, uint32_t page);

}  // namespace ambrelio::jetfile
