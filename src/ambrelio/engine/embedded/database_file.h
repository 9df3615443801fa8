// Database files of both forms, opened and made.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

enum class FileForm : uint8_t { kJet, kOwn };

// What a name asks for: a Jet file when it ends in .mdb.
FileForm FormByName(std::string_view path);

// Opens a file, whichever form it has: the errors of Storage::Open and OpenJet, 3031 for another
// password.
std::unique_ptr<Storage> OpenFile(const std::string& path, const std::string& password,
                                  Storage::Access access);

// Makes a new file with an empty catalogue and opens it: 3005, 3044, 3051, 3204.
std::unique_ptr<Storage> CreateFile(const std::string& path, const std::string& password,
                                    FileForm form);

}  // namespace ambrelio::embedded
