// Indexes that the storage keeps for the sake of its plans, beside those of the catalogue.
//
// The DAO side does not see them and cannot drop them: they are made when missing, at the opening
// and after every change of the catalogue, and they are in the way of no change.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

struct KeptIndex {
  std::string table;
  std::vector<std::string> columns;
  // Limits the index to some rows: a condition of the storage's SQL, "" for all rows.
  std::string where;
};
using KeptIndexes = std::vector<KeptIndex>;

// Makes those that are missing, as far as their tables have the columns. One that the catalogue's
// own indexes already serve is not needed. To be called in a transaction.
void MakeMissing(Storage& storage, const Catalogue& catalogue, const KeptIndexes& indexes);
// Whether MakeMissing would make one.
bool IsAnyMissing(Storage& storage, const Catalogue& catalogue, const KeptIndexes& indexes);

}  // namespace ambrelio::embedded
