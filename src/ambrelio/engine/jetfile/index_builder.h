// Making an index as a whole, and taking it away.
#pragma once

#include <vector>

#include "ambrelio/engine/jetfile/index_pages.h"

namespace ambrelio::jetfile {

// A page that is an empty index, added to its map.
uint32_t NewIndexRoot(JetFile& file, uint32_t table_page, RowPointer map);

// Fills an index that is empty, its pages to the brim. Raises Damage when it is not empty.
void BuildIndex(IndexPages& pages, uint32_t root, const std::vector<IndexEntry>& entries);

// Gives all pages of an index back, and empties its map.
void FreeIndexPages(JetFile& file, const IndexDefinition& index);

}  // namespace ambrelio::jetfile
