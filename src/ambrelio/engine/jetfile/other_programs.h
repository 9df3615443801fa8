// Programs that share Jet files in the original engine's way: each user has a slot in the file
// `<base>.ldb`, locks a byte that belongs to it for as long as the database is open, and marks
// what it commits in its entry of the commit table. Enough is known of that to stay out of their
// way, not to join them.
#pragma once

#include <string>

#include "ambrelio/engine/jetfile/header.h"

namespace ambrelio::jetfile {

// Raises 3045 when such a program has the file open, with the computer and the user as far as
// they are known.
void RefuseWhileOthersHaveIt(const std::string& path);

// Raises 3049 when a user of such a program ended in the middle of a change: no one is writing, but
// a commit entry says so.
void RefuseUnfinishedChange(const std::string& path, const Header& header);

}  // namespace ambrelio::jetfile
