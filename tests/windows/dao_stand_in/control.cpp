#include "control.h"

#include <cstdlib>
#include <memory>

#include "ambrelio/platform/file_path.h"
#include "ambrelio/value/automation_error.h"
#include "automation_class.h"

namespace ambrelio::stand_in {
namespace {

// The value with Visual Basic's sign for its type.
std::string Shown(const Variant& value) {
  switch (value.type()) {
    case VariantType::kEmpty:
      return "";
    case VariantType::kNull:
      return "Null";
    case VariantType::kText:
      return '"' + value.as<std::string>() + '"';
    case VariantType::kInteger:
      return ToText(value) + "%";
    case VariantType::kDouble:
      return ToText(value) + "#";
    case VariantType::kBoolean:
      return value.as<bool>() ? "True" : "False";
    case VariantType::kObject: {
      const DispatchObject* const object = DispatchObject::Own(value);
      return object == nullptr ? "<object>" : "<" + object->class_name() + ">";
    }
    default:
      return ToText(value);
  }
}

std::string Line(const std::string& class_name, const std::string& member, bool put,
                 const Arguments& arguments) {
  std::string line = class_name + "." + member;
  if (put) return line + " = " + Shown(arguments[0]);
  if (arguments.size() == 0) return line;
  line += "(";
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) line += ", ";
    line += Shown(arguments[i]);
  }
  return line + ")";
}

}  // namespace

Control::Control() {
  if (const char* const file = std::getenv("AMBRELIO_DAO_STAND_IN_LOG")) {
    log_.open(FilePath(file), std::ios::app);
  }
  if (const char* const failure = std::getenv("AMBRELIO_DAO_STAND_IN_FAIL")) {
    char* rest = nullptr;
    const long call = std::strtol(failure, &rest, 10);
    if (*rest == ':') FailAt(int32_t{call}, int32_t{std::strtol(rest + 1, nullptr, 10)});
  }
}

Control& Control::Instance() {
  // Never destroyed: objects may be let go after it would be.
  static auto* const control = new Control;
  return *control;
}

com::ComPtr<IDispatch> Control::Object() {
  static const auto kClass =
      AutomationClass<Control>(kClassName)
          .Method("Record", &Control::Record)
          .Property("Calls", &Control::Calls)
          .Property("Lookups", &Control::Lookups)
          .Property("Living", &Control::Living)
          .Method("FailAt", 2, 2, [](const auto& control, const Arguments& arguments) {
            control->FailAt(ToLong(arguments[0]), ToLong(arguments[1]));
            return Variant();
          });
  return kClass.Wrap({std::shared_ptr<void>(), &Instance()});
}

void Control::Meet(const std::string& class_name, const std::string& member, bool put,
                   const Arguments& arguments) {
  if (recording_ || log_.is_open()) {
    const std::string line = Line(class_name, member, put, arguments);
    if (recording_) calls_.push_back(line);
    if (log_.is_open()) log_ << line << std::endl;  // a killed process has its lines written
  }
  if (countdown_ == 0 || --countdown_ > 0) return;
  throw AutomationError(number_, class_name, "A failure made for the test.");
}

void Control::Record() {
  recording_ = true;
  calls_.clear();
  lookups_ = 0;
}

Variant Control::Calls() const { return Variant::Array(calls_.begin(), calls_.end()); }

void Control::FailAt(int32_t call, int32_t number) {
  countdown_ = call;
  number_ = number;
}

}  // namespace ambrelio::stand_in
