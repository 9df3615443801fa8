#include "ambrelio/automation/describe.h"

namespace ambrelio::automation {
namespace {

std::string TypeText(const Argument& argument) {
  return argument.object_class != nullptr ? argument.object_class : TypeName(argument.type);
}

std::string ResultText(const Member& member) {
  if (member.result_class != nullptr) return member.result_class;
  if (member.result_enumeration != nullptr) return member.result_enumeration;
  return TypeName(member.result);
}

// The first `count` arguments in brackets; nothing without any.
std::string ArgumentsText(const Member& member, size_t count) {
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    const Argument& argument = member.arguments[i];
    const std::string declared = std::string(argument.name) + " As " + TypeText(argument);
    text += (i == 0 ? "" : ", ") + (argument.optional ? "[" + declared + "]" : declared);
  }
  return text.empty() ? "" : "(" + text + ")";
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
  if (member.kind == MemberKind::kLet) {
    return member.name + ArgumentsText(member, member.arguments.size() - 1) + " = " +
           TypeText(member.arguments.back());
  }
  std::string text = member.name + ArgumentsText(member, member.arguments.size());
  if (member.result != ValueType::kNone) text += " As " + ResultText(member);
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
  for (const Enumeration& described : Enumerations()) {
    text += std::string("\n### ") + described.name + "\n\n" + described.help + "\n\n";
    text += "| Number | Name | Meaning |\n|---:|---|---|\n";
    for (const Enumeration::Value& value : described.values) {
      text +=
          "| " + std::to_string(value.number) + " | `" + value.name + "` | " + value.help + " |\n";
    }
  }
  return text;
}

}  // namespace ambrelio::automation
