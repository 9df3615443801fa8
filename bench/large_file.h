// A Jet file of hundreds of megabytes, through all that the library does with files.
#pragma once

#include <cstdint>
#include <string>

namespace ambrelio::bench {

// Makes one of more than so many MiB in a folder, checks it, asks for rows, changes one, and has
// mdbtools count them. Prints time and peak memory of each step; ends the program when one gives
// something else than it should.
void TryLargeFile(const std::string& folder, int64_t megabytes);

}  // namespace ambrelio::bench
