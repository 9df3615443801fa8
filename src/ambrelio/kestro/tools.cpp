#include "ambrelio/kestro/tools.h"

#include <filesystem>

#include "ambrelio/platform/characters.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::kestro {
namespace {

constexpr std::string_view kSeparators = "/\\";

bool IsAbsolute(std::string_view path) {
  if (path.empty()) return false;
  return kSeparators.find(path.front()) != std::string_view::npos ||
         (path.size() >= 2 && path[1] == ':');
}

}  // namespace

std::string Tools::IntegerText(int16_t value) { return std::to_string(value); }
std::string Tools::LongText(int32_t value) { return std::to_string(value); }

Variant Tools::ValueOrZero(const Variant& value) { return value.is_null() ? int16_t{0} : value; }

int16_t Tools::ValueAsInteger(const Variant& value) {
  return value.is_null() ? int16_t{0} : ToInteger(value);
}

std::string Tools::ValueAsText(const Variant& value) {
  return value.is_null() ? "" : ToText(value);
}

bool Tools::TextAsBoolean(std::string_view text) {
  std::string word = LowerCase(TrimBlanks(text));
  for (std::string_view yes : {"true", "verdadero", "yes", "si", "sí", "on"}) {
    if (word == yes) return true;
  }
  return ParseNumber(word).value_or(0) != 0;
}

std::string Tools::NextToken(std::string& held, char separator) {
  size_t end = held.find(separator);
  std::string token = held.substr(0, end);
  held.erase(0, end == std::string::npos ? end : end + 1);
  return token;
}

std::string Tools::Replace(std::string_view text, std::string_view what, std::string_view by) {
  std::string result;
  while (!what.empty()) {
    size_t at = text.find(what);
    if (at == std::string_view::npos) break;
    result.append(text.substr(0, at)).append(by);
    text.remove_prefix(at + what.size());
  }
  return result.append(text);
}

std::string Tools::Join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) text += separator;
    text += parts[i];
  }
  return text;
}

std::string Tools::CombinePath(std::string_view folder, std::string_view file) {
  if (folder.empty() || IsAbsolute(file)) return std::string(file);
  size_t last = folder.find_last_not_of(kSeparators);
  std::string path(folder.substr(0, last + 1));  // the root leaves nothing
  path += static_cast<char>(std::filesystem::path::preferred_separator);
  return path.append(file);
}

void Tools::Append(Variant& list, Variant value) {
  if (list.is_empty()) list = Variant::Array();
  if (!list.is_array()) Raise(RuntimeError::kTypeMismatch);
  list.array().push_back(std::move(value));
}

}  // namespace ambrelio::kestro
