// Taking pages that nobody owns, and giving them back.
#pragma once

#include <cstdint>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// A page for the caller to write and to own: the lowest free one of the file, else a new one at its
// end. Raises 3026 when the file cannot grow.
uint32_t AllocatePage(JetFile& file);

// Gives a page back that is in no owner's map any more. Its bytes stay, but data and definitions
// are marked as given up.
void FreePage(JetFile& file, uint32_t page);

// A new page behind all others, of zeros. The map of free pages need not know of it.
uint32_t AppendPage(JetFile& file);

}  // namespace ambrelio::jetfile
