// Variables of the environment, set for a test and put back at its end.
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace ambrelio::test {

class ScopedEnvironment {
 public:
  ScopedEnvironment() = default;
  ~ScopedEnvironment() {
    for (const auto& [name, value] : before_) Put(name, value);
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  void Set(const std::string& name, const std::string& value) { Change(name, value); }
  void Unset(const std::string& name) { Change(name, std::nullopt); }

 private:
  using Value = std::optional<std::string>;

  void Change(const std::string& name, const Value& value) {
    const char* const present = std::getenv(name.c_str());
    before_.try_emplace(name, present == nullptr ? Value() : Value(present));
    Put(name, value);
  }
  static void Put(const std::string& name, const Value& value) {
#if defined(_WIN32)
    ::_putenv_s(name.c_str(), value ? value->c_str() : "");  // which takes an empty one away
#else
    if (value) {
      ::setenv(name.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name.c_str());
    }
#endif
  }

  std::map<std::string, Value> before_;
};

}  // namespace ambrelio::test
