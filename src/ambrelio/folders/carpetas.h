// Labels of well-known folders at the start of configured paths: "{Escritorio}/datos".
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "ambrelio/platform/well_known_folders.h"

namespace ambrelio::folders {

using FolderSource = std::function<std::string(WellKnownFolder)>;

// Replaces a label in braces at the very start of `text` by its folder, or by nothing when the
// folder is not known; whatever follows stays as it stands. The labels, in the order in which they
// are tried:
//
//   Datos de programa  Datos de programa (usuario)  Archivos de programa  Mis documentos
//   Escritorio  Windows  System  SysWow  Temporal  Descargas
std::string ExpandSpecialFolder(std::string_view text, const FolderSource& source = FolderPath);

}  // namespace ambrelio::folders
