// Databases that are Jet files.
#pragma once

#include <memory>
#include <string>

#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// Opens a Jet file: 3024, 3031, 3044, 3045, 3049, 3051, 3343. One of version 3 is read only.
std::unique_ptr<Storage> OpenJet(const std::string& path, const std::string& password,
                                 Storage::Access access);

// Makes an empty one: 3005, 3044, 3051, 3204.
void CreateJet(const std::string& path, const std::string& password);

}  // namespace ambrelio::embedded
