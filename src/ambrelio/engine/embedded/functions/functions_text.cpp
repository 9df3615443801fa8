// The functions of text. They count characters, not bytes.
#include <optional>

#include "ambrelio/engine/embedded/functions/function_support.h"
#include "ambrelio/platform/characters.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::embedded {

namespace {

// A count of characters; 5 below 0.
size_t CountOf(sqlite3_value* value) {
  const int32_t count = LongOf(value);
  if (count < 0) Raise(RuntimeError::kInvalidCall);
  return static_cast<size_t>(count);
}

// A place in a text, counted from 1, as characters before it; 5 below 1.
size_t PlaceOf(sqlite3_value* value) {
  const int32_t place = LongOf(value);
  if (place < 1) Raise(RuntimeError::kInvalidCall);
  return static_cast<size_t>(place) - 1;
}

std::string_view WithoutFirst(std::string_view text, size_t count) {
  return text.substr(Utf8Prefix(text, count).size());
}

void Left(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  SetText(context, Utf8Prefix(TextOf(arguments[0], buffer), CountOf(arguments[1])));
}

void Right(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  const std::string_view text = TextOf(arguments[0], buffer);
  const size_t length = Utf8Length(text);
  const size_t count = CountOf(arguments[1]);
  SetText(context, count >= length ? text : WithoutFirst(text, length - count));
}

void Mid(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  std::string_view text = WithoutFirst(TextOf(arguments[0], buffer), PlaceOf(arguments[1]));
  if (arguments.size() > 2) text = Utf8Prefix(text, CountOf(arguments[2]));
  SetText(context, text);
}

void Len(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  sqlite3_result_int64(context, static_cast<int64_t>(Utf8Length(TextOf(arguments[0], buffer))));
}

template <bool kLeft, bool kRight>
void Trim(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  std::string_view text = TextOf(arguments[0], buffer);
  while (kLeft && text.starts_with(' ')) text.remove_prefix(1);
  while (kRight && text.ends_with(' ')) text.remove_suffix(1);
  SetText(context, text);
}

template <std::string (*Change)(std::string_view)>
void ChangeCase(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  SetText(context, Change(TextOf(arguments[0], buffer)));
}

// InStr([start,] text, find) or InStr(start, text, find, compare), where a compare of 0 minds case.
void InStr(sqlite3_context* context, Arguments arguments) {
  const bool has_start = arguments.size() > 2;
  const size_t skipped = has_start ? PlaceOf(arguments[0]) : 0;
  std::string text = TextOf(arguments[has_start ? 1 : 0]);
  std::string find = TextOf(arguments[has_start ? 2 : 1]);
  const bool minds_case = arguments.size() > 3 && LongOf(arguments[3]) == 0;
  if (!minds_case) {  // a letter and its capital may differ in bytes, so both are changed
    text = LowerCase(text);
    find = LowerCase(find);
  }
  int64_t place = 0;
  if (skipped < Utf8Length(text)) {
    const size_t found = text.find(find, Utf8Prefix(text, skipped).size());
    if (found != std::string::npos) {
      place = static_cast<int64_t>(Utf8Length(std::string_view(text).substr(0, found))) + 1;
    }
  }
  sqlite3_result_int64(context, place);
}

void Replace(sqlite3_context* context, Arguments arguments) {
  const std::string text = TextOf(arguments[0]);
  const std::string find = TextOf(arguments[1]);
  const std::string by = TextOf(arguments[2]);
  if (find.empty()) return SetText(context, text);
  std::string replaced;
  size_t from = 0;
  for (size_t at; (at = text.find(find, from)) != std::string::npos; from = at + find.size()) {
    replaced.append(text, from, at - from).append(by);
  }
  SetText(context, replaced.append(text, from));
}

// A text of `count` times the same character, or SQLite's error when that is too much.
void SetRepeated(sqlite3_context* context, size_t count, std::string_view character) {
  const int limit = sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LENGTH, -1);
  if (count * character.size() > static_cast<size_t>(limit)) {
    return sqlite3_result_error_toobig(context);
  }
  std::string text;
  text.reserve(count * character.size());
  for (size_t i = 0; i < count; ++i) text += character;
  SetText(context, text);
}

void Space(sqlite3_context* context, Arguments arguments) {
  SetRepeated(context, CountOf(arguments[0]), " ");
}

// The character of a code of Windows-1252; 5 outside 0 to 255.
std::string CharacterOf(int32_t code) {
  if (code < 0 || code > 255) Raise(RuntimeError::kInvalidCall);
  return Windows1252ToUtf8(std::string(1, static_cast<char>(code)));
}

// The character is a text's first one, or that of a number.
void String(sqlite3_context* context, Arguments arguments) {
  std::string character;
  if (sqlite3_value_type(arguments[1]) == SQLITE_TEXT) {
    character = Utf8Prefix(StoredText(arguments[1]), 1);
    if (character.empty()) Raise(RuntimeError::kInvalidCall);
  } else {
    character = CharacterOf(LongOf(arguments[1]) & 0xFF);
  }
  SetRepeated(context, CountOf(arguments[0]), character);
}

void Chr(sqlite3_context* context, Arguments arguments) {
  SetText(context, CharacterOf(LongOf(arguments[0])));
}

void Asc(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  const std::string_view first = Utf8Prefix(TextOf(arguments[0], buffer), 1);
  if (first.empty()) Raise(RuntimeError::kInvalidCall);
  sqlite3_result_int(context, static_cast<unsigned char>(Utf8ToWindows1252(first).front()));
}

constexpr Function kTextFunctions[] = {
    {"jet_left", 2, 2, Left},
    {"jet_right", 2, 2, Right},
    {"jet_mid", 2, 3, Mid},
    {"jet_len", 1, 1, Len},
    {"jet_trim", 1, 1, Trim<true, true>},
    {"jet_ltrim", 1, 1, Trim<true, false>},
    {"jet_rtrim", 1, 1, Trim<false, true>},
    {"jet_ucase", 1, 1, ChangeCase<UpperCase>},
    {"jet_lcase", 1, 1, ChangeCase<LowerCase>},
    {"jet_instr", 2, 4, InStr},
    {"jet_replace", 3, 3, Replace},
    {"jet_space", 1, 1, Space},
    {"jet_string", 2, 2, String},
    {"jet_chr", 1, 1, Chr},
    {"jet_asc", 1, 1, Asc},
};

}  // namespace

void RegisterTextFunctions(sqlite3* db) { RegisterScalars(db, kTextFunctions); }

}  // namespace ambrelio::embedded
