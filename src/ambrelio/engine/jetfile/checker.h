// Holds a whole file against the rules of its format.
#pragma once

#include <vector>

#include "ambrelio/engine/jetfile/findings.h"
#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// Everything that is wrong, at most a thousand findings; nothing for a sound file. A file that the
// original engine has closed is sound, as far as is known. Not checked: the row counters of system
// tables, which that engine itself leaves behind; keys of an unknown order, of which only the rows
// they point to are.
std::vector<Finding> Check(const JetFile& file);

}  // namespace ambrelio::jetfile
