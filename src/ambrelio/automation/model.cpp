#include "ambrelio/automation/model.h"

#include <algorithm>

namespace ambrelio::automation {
namespace {

// The byte as a lower-case letter; `before` is the one ahead of it. In UTF-8 the accented capitals
// of Western European languages differ from the small letters in one bit of their second byte.
char Fold(char c, char before) {
  const auto byte = static_cast<unsigned char>(c);
  const bool latin = c >= 'A' && c <= 'Z';
  const bool accented = before == '\xC3' && byte >= 0x80 && byte <= 0x9E && byte != 0x97;
  return latin || accented ? static_cast<char>(byte | 0x20) : c;
}

}  // namespace

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  char before = 0;  // the lead bytes of equal letters are equal
  for (size_t i = 0; i < a.size(); ++i) {
    if (Fold(a[i], before) != Fold(b[i], before)) return false;
    before = a[i];
  }
  return true;
}

const char* TypeName(ValueType type) {
  switch (type) {
    case ValueType::kNone:
      return "";
    case ValueType::kBoolean:
      return "Boolean";
    case ValueType::kInteger:
      return "Integer";
    case ValueType::kLong:
      return "Long";
    case ValueType::kDouble:
      return "Double";
    case ValueType::kDate:
      return "Date";
    case ValueType::kText:
      return "String";
    case ValueType::kVariant:
      return "Variant";
    case ValueType::kObject:
      return "Object";
  }
  return "";
}

const Class* FindClass(std::string_view name) {
  const std::vector<Class>& model = Model();
  const auto found = std::find_if(model.begin(), model.end(),
                                  [&](const Class& c) { return SameName(c.name, name); });
  return found == model.end() ? nullptr : &*found;
}

const Member* FindMember(const Class& owner, std::string_view name, Access access) {
  const auto found =
      std::find_if(owner.members.begin(), owner.members.end(), [&](const Member& member) {
        return (member.kind == MemberKind::kLet) == (access == Access::kLet) &&
               SameName(member.name, name);
      });
  return found == owner.members.end() ? nullptr : &*found;
}

}  // namespace ambrelio::automation
