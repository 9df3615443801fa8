// The files of the stand-in. At the path that a client names lies a file that begins as one of Jet
// does, so that what looks at first bytes takes it for one; the data is an embedded database beside
// it, under the same name with ".stand-in" behind.
#pragma once

#include <string>

namespace ambrelio::stand_in {

inline constexpr const char* kDataSuffix = ".stand-in";

// The embedded database of the file at `path`. Raises 3343 for a file that is not the stand-in's
// (also for a real one of Jet, which it cannot read); a missing one is left to the engine to
// refuse.
std::string DataOf(const std::string& path);

// The embedded database of a file that is to be made; 3204 when there is one of that name.
std::string DataOfNew(const std::string& path);
// Makes the file at `path` once its data is there.
void WriteHeader(const std::string& path);

}  // namespace ambrelio::stand_in
