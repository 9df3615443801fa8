// A database as mdbtools prints it: what `expected/tell` prints.
#pragma once

#include <string>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

std::string MdbtoolsText(const JetFile& file);

}  // namespace ambrelio::jetfile
