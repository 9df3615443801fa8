#include "ambrelio/automation/path.h"

#include <charconv>
#include <optional>

#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::automation {
namespace {

// Letters of any language are allowed: all bytes of a character beyond ASCII.
bool IsNameCharacter(char c) {
  const char lower = AsciiLower(c);
  return (lower >= 'a' && lower <= 'z') || c == '_' || IsDigit(c) ||
         static_cast<unsigned char>(c) >= 0x80;
}

class PathParser {
 public:
  explicit PathParser(std::string_view text) : text_(text) {}

  Path Parse() {
    Path path;
    do {
      path.push_back(Step());
    } while (Take('.'));
    if (!AtEnd()) Fail("unexpected '" + std::string(1, text_[at_]) + "'");
    DropRoot(path);
    return path;
  }

 private:
  [[noreturn]] void Fail(const std::string& problem) const { FailAt(at_, problem); }
  [[noreturn]] void FailAt(size_t at, const std::string& problem) const {
    throw PathError(Utf8Length(text_.substr(0, at)) + 1, problem);
  }

  // A leading `Trazabilidad` names the object that paths start at anyway.
  void DropRoot(Path& path) const {
    if (!SameName(path.front().name, "Trazabilidad")) return;
    if (path.front().has_arguments) FailAt(0, "Trazabilidad takes no arguments");
    if (path.size() == 1) Fail("a member is missing");
    path.erase(path.begin());
  }

  void SkipBlanks() {
    while (at_ < text_.size() && IsBlank(text_[at_])) ++at_;
  }
  bool AtEnd() {
    SkipBlanks();
    return at_ == text_.size();
  }
  char Peek() { return AtEnd() ? '\0' : text_[at_]; }
  bool Take(char c) {
    if (Peek() != c) return false;
    ++at_;
    return true;
  }

  std::string Name() {
    SkipBlanks();
    const size_t start = at_;
    if (at_ < text_.size() && IsDigit(text_[at_])) Fail("a name is missing");
    while (at_ < text_.size() && IsNameCharacter(text_[at_])) ++at_;
    if (at_ == start) Fail("a name is missing");
    return std::string(text_.substr(start, at_ - start));
  }

  PathStep Step() {
    PathStep step;
    step.name = Name();
    step.has_arguments = Take('(');
    if (!step.has_arguments || Take(')')) return step;
    do {
      step.arguments.push_back(Literal());
    } while (Take(','));
    if (!Take(')')) Fail(AtEnd() ? "')' is missing" : "',' or ')' is missing");
    return step;
  }

  std::optional<Variant> Literal() {
    switch (Peek()) {
      case ',':
      case ')':
        return std::nullopt;
      case '"':
        return Text();
      case '#':
        return Date();
      default:
        return IsNameCharacter(Peek()) && !IsDigit(Peek()) ? Truth() : Number();
    }
  }

  Variant Text() {
    const size_t start = at_++;
    std::string text;
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c != '"') {
        text += c;
      } else if (at_ < text_.size() && text_[at_] == '"') {
        text += text_[at_++];
      } else {
        return text;
      }
    }
    FailAt(start, "the text is not closed");
  }

  Variant Date() {
    const size_t start = at_++;
    const size_t end = text_.find('#', at_);
    if (end == std::string_view::npos) FailAt(start, "the date is not closed");
    const std::optional<OleDate> date = OleDate::FromIso(text_.substr(at_, end - at_));
    if (!date) FailAt(start, "a date has the form #YYYY-MM-DD HH:MM:SS#");
    at_ = end + 1;
    return *date;
  }

  Variant Truth() {
    const size_t start = at_;
    const std::string name = Name();
    if (SameName(name, "True")) return true;
    if (SameName(name, "False")) return false;
    FailAt(start, "'" + name + "' is no value; text stands in quotes");
  }

  // Whole numbers of 32 bits are a Long, all others a Double.
  Variant Number() {
    const size_t start = at_;
    const bool negative = Take('-');
    if (!negative) Take('+');
    if (at_ == text_.size() || !(IsDigit(text_[at_]) || text_[at_] == '.')) {
      FailAt(start, "a number, text, date or ')' is missing");
    }
    const char* const first = text_.data() + (negative ? start : at_);
    double number = 0;
    const auto [end, error] = std::from_chars(first, text_.data() + text_.size(), number);
    if (error == std::errc::result_out_of_range) FailAt(start, "the number is out of range");
    if (error != std::errc()) FailAt(start, "a number is malformed");
    at_ = static_cast<size_t>(end - text_.data());
    int32_t whole = 0;
    const auto [whole_end, whole_error] = std::from_chars(first, end, whole);
    if (whole_error == std::errc() && whole_end == end) return whole;
    return number;
  }

  std::string_view text_;
  size_t at_ = 0;
};

}  // namespace

PathError::PathError(size_t position, const std::string& problem)
    : std::runtime_error("at position " + std::to_string(position) + " of the path: " + problem),
      position_(position) {}

Path ParsePath(std::string_view text) { return PathParser(text).Parse(); }

std::shared_ptr<Object> Owner(const std::shared_ptr<Object>& root, const Path& path) {
  std::shared_ptr<Object> object = root;
  for (size_t i = 0; i + 1 < path.size(); ++i) {
    const PathStep& step = path[i];
    const Variant next = Call(*object, step.name, Access::kCall, step.arguments).result;
    if (!next.is_object()) Raise(RuntimeError::kObjectRequired, step.name);
    if (next.object() == nullptr) Raise(RuntimeError::kObjectNotSet, step.name);
    object = next.object();
  }
  return object;
}

CallResult CallPath(const std::shared_ptr<Object>& root, const Path& path, Access access,
                    Arguments arguments) {
  const std::shared_ptr<Object> owner = Owner(root, path);
  return Call(*owner, path.back().name, access, std::move(arguments));
}

}  // namespace ambrelio::automation
