// What a mill's host program does before the library comes in: it makes the database. For mills,
// consultants and tests that have no such program.
#pragma once

#include <string>

#include "ambrelio/dao/database.h"

namespace ambrelio::host {

// Makes a new database with every table the library and its host use, and closes it. 3204 when the
// file exists. Descargas.Molino and detVaciados.Molino default to 0.
void CreateMillDatabase(dao::DBEngine& engine, const std::string& path,
                        const std::string& password);

// Loads a master table (SOCIO, PRODUCTO, MUNICIPIO) from a UTF-8 file of comma-separated values
// whose first line names the columns. All rows or none. Raises 5 (invalid call) naming file and
// line for a malformed one, and 3026 and 3043 as the disk does. Returns the number of rows.
int LoadMaster(dao::DBEngine& engine, dao::Database& database, const std::string& table,
               const std::string& csv_path);

}  // namespace ambrelio::host
