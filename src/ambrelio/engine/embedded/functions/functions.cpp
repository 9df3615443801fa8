#include "ambrelio/engine/embedded/functions/functions.h"

#include <charconv>
#include <new>
#include <string>

#include "ambrelio/engine/embedded/functions/function_support.h"

namespace ambrelio::embedded {

namespace {

// Opens an encoded error and parts its number, source and description.
constexpr char kMark = '\x01';

int Compare(void* /*unused*/, int size_a, const void* a, int size_b, const void* b) {
  return CompareText({static_cast<const char*>(a), static_cast<size_t>(size_a)},
                     {static_cast<const char*>(b), static_cast<size_t>(size_b)});
}

}  // namespace

void RegisterFunctions(sqlite3* db) {
  if (sqlite3_create_collation_v2(db, kCollation, SQLITE_UTF8, nullptr, Compare, nullptr) !=
      SQLITE_OK) {
    throw std::bad_alloc();
  }
  RegisterStoring(db);
  RegisterOperators(db);
  RegisterNumberFunctions(db);
  RegisterTextFunctions(db);
  RegisterDateFunctions(db);
  RegisterAggregates(db);
}

void ResultError(sqlite3_context* context, const AutomationError& error) {
  const std::string message =
      kMark + std::to_string(error.number()) + kMark + error.source() + kMark + error.description();
  sqlite3_result_error(context, message.c_str(), static_cast<int>(message.size()));
}

std::optional<AutomationError> DecodeFunctionError(const char* message) {
  if (message == nullptr || *message != kMark) return std::nullopt;
  const std::string_view text = message + 1;
  const size_t source = text.find(kMark);
  const size_t description = text.find(kMark, source + 1);
  if (source == std::string_view::npos || description == std::string_view::npos) {
    return std::nullopt;
  }
  int number = 0;
  std::from_chars(text.data(), text.data() + source, number);
  return AutomationError(number, std::string(text.substr(source + 1, description - source - 1)),
                         std::string(text.substr(description + 1)));
}

}  // namespace ambrelio::embedded
