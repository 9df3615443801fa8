// The from clause of a stored query: its tables, and how they are joined.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/embedded/jet/statement_words.h"
#include "ambrelio/engine/jetfile/stored_query.h"

namespace ambrelio::embedded::jet {

// Whether the words are a query, perhaps in brackets.
bool IsQuery(const Words& words);

// Adds to `rows` those of the tables and joins behind FROM, or behind UPDATE, and gives the names
// by which the statement calls the tables. Raises 3001.
std::vector<std::string> TakeSources(const Words& from, std::vector<jetfile::QueryRow>& rows);

}  // namespace ambrelio::embedded::jet
