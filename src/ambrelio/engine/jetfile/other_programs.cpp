#include "ambrelio/engine/jetfile/other_programs.h"

#include <algorithm>
#include <optional>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/platform/byte_locks.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint64_t kFirstUserLock = 0x10000001;
constexpr uint64_t kMostUsers = 255;
constexpr size_t kUserBytes = 64;
constexpr size_t kNameBytes = 32;

// A name of a slot, which ends before its first zero.
std::string NameAt(const std::string& slots, size_t at) {
  if (at >= slots.size()) return {};
  const std::string field = slots.substr(at, kNameBytes);
  return Windows1252ToUtf8(field.substr(0, field.find('\0')));
}

// " by 'Admin' on the computer 'MILL'", or as much of it as the slot says.
std::string UserText(const std::string& slots, size_t slot) {
  const std::string computer = NameAt(slots, slot * kUserBytes);
  const std::string user = NameAt(slots, slot * kUserBytes + kNameBytes);
  return (user.empty() ? "" : " by '" + user + "'") +
         (computer.empty() ? "" : " on the computer '" + computer + "'");
}

}  // namespace

void RefuseWhileOthersHaveIt(const std::string& path) {
  const std::string users = Utf8Path(FilePath(path).replace_extension(".ldb"));
  const std::optional<uint64_t> locked = LockedByte(users, kFirstUserLock, kMostUsers);
  if (!locked) return;
  const std::string slots = ReadWholeFile(users).value_or("");
  Refuse(dao::DaoError::kFileInUse,
         "The file '" + path + "' is already in use" +
             UserText(slots, static_cast<size_t>(*locked - kFirstUserLock)) +
             ", with another program that would not see the change.");
}

void RefuseUnfinishedChange(const std::string& path, const Header& header) {
  if (std::find(header.commits.begin(), header.commits.end(), 0) == header.commits.end()) return;
  Refuse(dao::DaoError::kNotADatabaseOrDamaged,
         "The database '" + path +
             "' was left in the middle of a change by another program. Repair it there, or copy "
             "what can be read with 'ambrelio convert'.");
}

}  // namespace ambrelio::jetfile
