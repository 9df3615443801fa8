// The folders that every system has under a name of its own.
#pragma once

#include <cstdint>
#include <string>

namespace ambrelio {

enum class WellKnownFolder : uint8_t {
  kSharedData,    // application data shared by all users
  kUserData,      // the user's application data
  kPrograms,      // programs
  kDocuments,     // the user's documents
  kDesktop,       // the user's desktop
  kSystemRoot,    // the system's root folder
  kSystem,        // the system's libraries
  kSystem32Bits,  // those for programs of 32 bits
  kTemporary,     // files of no lasting worth
  kDownloads,     // the user's downloads
};

// Without a separator at its end; "" when this system or user has no such folder.
std::string FolderPath(WellKnownFolder folder);

}  // namespace ambrelio
