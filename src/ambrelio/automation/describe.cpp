#include "ambrelio/automation/describe.h"

namespace ambrelio::automation {
namespace {

std::string TypeText(ValueType type, const char* object_class) {
  return type == ValueType::kObject ? object_class : TypeName(type);
}

const char* KindText(MemberKind kind) {
  switch (kind) {
    case MemberKind::kMethod:
      return "method";
    case MemberKind::kGet:
      return "property get";
    case MemberKind::kLet:
      return "property let";
  }
  return "";
}

std::string InstancingText(const Class& described) {
  if (described.application_object) {
    return "Creatable; the application object, whose members need no instance named.";
  }
  return described.creatable ? "Creatable." : "Handed out by other objects.";
}

}  // namespace

std::string DescribeMember(const Member& member) {
  std::string text = member.name;
  if (member.kind == MemberKind::kLet) {
    const Argument& value = member.arguments.front();
    return text + " = " + TypeText(value.type, value.object_class);
  }
  if (!member.arguments.empty()) text += '(';
  for (const Argument& argument : member.arguments) {
    if (&argument != &member.arguments.front()) text += ", ";
    if (argument.optional) text += '[';
    text += std::string(argument.name) + " As " + TypeText(argument.type, argument.object_class);
    if (argument.optional) text += ']';
  }
  if (!member.arguments.empty()) text += ')';
  if (member.result != ValueType::kNone) {
    text += " As " + TypeText(member.result, member.result_class);
  }
  return text;
}

std::string DescribeModel() {
  std::string text;
  for (const Class& described : Model()) {
    if (!text.empty()) text += '\n';
    text += std::string("### ") + described.name + "\n\n" + described.help + " " +
            InstancingText(described) + "\n\n";
    text += "| DISPID | Member | Kind | Meaning |\n|---:|---|---|---|\n";
    for (const Member& member : described.members) {
      text += "| " + std::to_string(member.dispid) + " | `" + DescribeMember(member) + "` | " +
              KindText(member.kind) + " | " + member.help + " |\n";
    }
  }
  return text;
}

}  // namespace ambrelio::automation
