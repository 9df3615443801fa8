// The file of a database as the file system sees it: what it is before anything opens it, and how a
// new one comes into being.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace ambrelio::embedded {

// How a file of this engine is marked in its header.
inline constexpr int32_t kApplicationId = 0x414D4252;  // "AMBR"
inline constexpr int32_t kFormatVersion = 1;

// Raises unless there is a file of this engine that can be read: 3005, 3024, 3044, 3045, 3051,
// 3343, 3049.
void CheckDatabaseFile(const std::string& path);

// Whether there is a file that begins as those of Jet and its successor do.
bool IsJetFile(const std::string& path);

// Whether there is a file `path` + `suffix`.
bool CompanionExists(const std::string& path, const char* suffix);

// Makes the file `path` in one step: `write` makes it under another name in the same folder, from
// which it is moved when complete. Raises 3005, 3044, 3051, and 3204 when the file exists, or the
// log of a former one, which may still hold what was committed there.
void CreateWhole(const std::string& path, const std::function<void(const std::string&)>& write);

// `path` as a URI for a file that nobody can change while it is read.
std::string ImmutableUri(const std::string& path);

}  // namespace ambrelio::embedded
