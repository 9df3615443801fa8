// A database copied into a new file, of the same form or the other.
#pragma once

#include <string>
#include <vector>

namespace ambrelio::engine {

// Copies tables with their rows, properties and indexes, and queries, into a Jet file when its name
// ends in .mdb, else into one of the embedded engine. The new file has the password of the old one
// and appears only once it is complete. Returns what of the old file could not be taken along, each
// a phrase for engineers. Raises what opening, reading and creating raise, 3204 when `to` exists.
std::vector<std::string> Convert(const std::string& from, const std::string& to,
                                 const std::string& password);

}  // namespace ambrelio::engine
