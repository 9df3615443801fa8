#include "gateway_script.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/convert.h"
#include "failure.h"
#include "journal_line.h"

namespace ambrelio::cli {
namespace {

constexpr int32_t kMostTanks = std::numeric_limits<int16_t>::max();
constexpr int32_t kMostCopies = 1000;

int32_t WholeNumber(const Json& line, const char* key, int32_t least, int32_t most) {
  const Variant number = ToVariant(line.at(key));
  if (number.type() != VariantType::kLong || number.as<int32_t>() < least ||
      number.as<int32_t>() > most) {
    FailInput(fmt::format("\"{}\" must be a whole number from {} to {}", key, least, most));
  }
  return number.as<int32_t>();
}

std::string AnswerBytes(const std::string& text) {
  std::string bytes = Utf8ToWindows1252(text);
  if (Windows1252ToUtf8(bytes) != text) {
    FailInput(R"("answer" has a character that Windows-1252 does not have)");
  }
  return bytes;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  FailInput(R"("bytes" must be hexadecimal digits)");
}

std::string HexBytes(const std::string& digits) {
  constexpr int kBase = 16;
  if (digits.size() % 2 != 0) FailInput(R"("bytes" must be two digits for each byte)");
  std::string bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    bytes += static_cast<char>(HexDigit(digits[i]) * kBase + HexDigit(digits[i + 1]));
  }
  return bytes;
}

std::string Hex(const std::string& bytes) {
  std::string digits;
  for (const char c : bytes) digits += fmt::format("{:02x}", static_cast<unsigned char>(c));
  return digits;
}

bool IsPrintable(const std::string& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// The one of three keys that says what is answered.
const char* KindOf(const Json& line) {
  const char* kind = nullptr;
  for (const char* key : {"answer", "bytes", "silence"}) {
    if (!line.contains(key)) continue;
    if (kind != nullptr) FailInput(fmt::format("both \"{}\" and \"{}\" are given", kind, key));
    kind = key;
  }
  if (kind == nullptr) FailInput(R"(one of "answer", "bytes" and "silence" is needed)");
  return kind;
}

void CheckKeys(const Json& line, const std::string& kind) {
  for (const auto& [key, value] : line.items()) {
    const bool shapes_answer = kind != "silence" && (key == "delay" || key == "copies");
    if (key == "tank" || key == kind || shapes_answer) continue;
    FailInput(fmt::format("the key \"{}\" is unknown beside \"{}\"", key, kind));
  }
}

GatewayAnswer ParseAnswer(const Json& line) {
  const std::string kind = KindOf(line);
  CheckKeys(line, kind);
  GatewayAnswer answer;
  if (kind == "silence") {
    if (line["silence"] != true) FailInput(R"("silence" must be true)");
    answer.copies = 0;
    return answer;
  }
  answer.bytes =
      kind == "bytes" ? HexBytes(TextOf(line, "bytes")) : AnswerBytes(TextOf(line, "answer"));
  constexpr int32_t kLongest = std::numeric_limits<int32_t>::max();
  if (line.contains("delay")) answer.delay = Milliseconds(WholeNumber(line, "delay", 0, kLongest));
  if (line.contains("copies")) answer.copies = WholeNumber(line, "copies", 1, kMostCopies);
  return answer;
}

// The tank that a call enters a level of; nothing for any other call.
std::optional<int16_t> TankOfReading(const CallLine& call) {
  const automation::Path& path = call.path;
  if (!call.from.empty() || path.size() != 2) return std::nullopt;
  if (!automation::SameName(path[0].name, "Deposito") ||
      !automation::SameName(path[1].name, "EntradaNivel")) {
    return std::nullopt;
  }
  const automation::Arguments& key = path[0].arguments;
  if (key.size() != 1 || !key[0] || key[0]->type() != VariantType::kLong) return std::nullopt;
  const auto tank = key[0]->as<int32_t>();
  if (tank < 1 || tank > kMostTanks) return std::nullopt;
  return static_cast<int16_t>(tank);
}

// A level as a gateway sends it; nothing for a reading that gives litres instead of a level.
std::optional<std::string> LevelOf(const automation::Arguments& arguments) {
  if (arguments.size() < 2 || !arguments[1]) return std::nullopt;
  const Variant& level = *arguments[1];
  const bool is_number = level.type() == VariantType::kLong || level.type() == VariantType::kDouble;
  if (!is_number || ToDouble(level) < 0) return std::nullopt;
  return NumberText(ToDouble(level), '.');
}

JournalLine ParseReading(const std::string& text) {
  try {
    return ParseJournalLine(text);
  } catch (const Failure& failure) {
    FailInput(fmt::format("neither an answer (\"tank\" is missing) nor a line of a journal: {}",
                          failure.what()));
  }
}

void AddReading(GatewayScript& script, const std::string& text) {
  const JournalLine line = ParseReading(text);
  const auto* call = std::get_if<CallLine>(&line.action);
  if (call == nullptr) return;
  const auto tank = TankOfReading(*call);
  const auto level = LevelOf(call->arguments);
  if (tank && level) script.Add(*tank, {*level});
}

void AddLine(GatewayScript& script, const std::string& text) {
  const Json line = ParseJson(text);
  if (!line.is_object()) FailInput("a line must be a JSON object");
  if (!line.contains("tank")) {
    AddReading(script, text);
    return;
  }
  const auto tank = static_cast<int16_t>(WholeNumber(line, "tank", 1, kMostTanks));
  script.Add(tank, ParseAnswer(line));
}

}  // namespace

void GatewayScript::Add(int16_t tank, GatewayAnswer answer) {
  tanks_[tank].answers.push_back(std::move(answer));
}

const GatewayAnswer& GatewayScript::Next(int16_t tank) {
  Tank& script = tanks_[tank];
  if (script.answers.empty()) script.answers.push_back({"NO"});
  const size_t next = std::min(script.given, script.answers.size() - 1);
  script.given = next + 1;
  return script.answers[next];
}

GatewayScript ReadGatewayScript(std::istream& input, const std::string& name) {
  GatewayScript script;
  std::string text;
  for (size_t number = 1; std::getline(input, text); ++number) {
    if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
    try {
      AddLine(script, text);
    } catch (const Failure& failure) {
      throw Failure(failure.code(), fmt::format("{}:{}: {}", name, number, failure.what()));
    }
  }
  if (input.bad()) throw Failure(ExitCode::kFileProblem, name + " cannot be read further");
  return script;
}

Json ScriptLine(int16_t tank, const GatewayAnswer& answer) {
  Json line = {{"tank", tank}};
  if (answer.copies == 0) {
    line["silence"] = true;
    return line;
  }
  if (IsPrintable(answer.bytes)) {
    line["answer"] = answer.bytes;
  } else {
    line["bytes"] = Hex(answer.bytes);
  }
  if (answer.delay > Milliseconds(0)) line["delay"] = answer.delay.count();
  if (answer.copies != 1) line["copies"] = answer.copies;
  return line;
}

std::string DescribeAnswer(const GatewayAnswer& answer) {
  if (answer.copies == 0) return "(silence)";
  const bool plain = !answer.bytes.empty() && IsPrintable(answer.bytes);
  const std::string text = plain ? answer.bytes : "0x" + Hex(answer.bytes);
  std::string manner;
  if (answer.delay > Milliseconds(0)) manner = fmt::format("after {} ms", answer.delay.count());
  if (answer.copies != 1) {
    manner += fmt::format("{}{} copies", manner.empty() ? "" : ", ", answer.copies);
  }
  return manner.empty() ? text : text + " (" + manner + ")";
}

}  // namespace ambrelio::cli
