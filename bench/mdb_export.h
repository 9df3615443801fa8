// The rival at reading Jet files: mdb-export of mdbtools, one process for each table.
#pragma once

#include <string>

#include "ambrelio/dao/database.h"
#include "answer.h"

namespace ambrelio::bench {

bool HasMdbExport();

// Has it print a table, and gives how many lines that was.
int64_t LinesExported(const std::string& path, const std::string& table);

// What it prints of a table, taken for values by the types of `fields`.
void AddExported(const std::string& path, const std::string& table,
                 dao::Collection<dao::Field>& fields, Answer& answer);

}  // namespace ambrelio::bench
