// Files that are read and replaced as a whole.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ambrelio {

// The file's bytes; nothing when there is no such file, or when it cannot be read (a folder, a
// device, no permission).
std::optional<std::string> ReadWholeFile(const std::string& path);

// Puts `bytes` in place of the file's content, or makes the file, in one step: a reader finds the
// old file or the new one, also after a power failure. Permissions are kept; a symbolic link stays
// and its target is replaced. Raises 75 (path/file access error) with the old file untouched when
// that cannot be done, as for a file without write permission.
void WriteFileAtomically(const std::string& path, std::string_view bytes);

// Makes the names of the files in the folder of `path` last. Where the system has no such thing, or
// the file system cannot do it, nothing happens.
void SyncFolderOf(const std::string& path);

}  // namespace ambrelio
