#include "journal_item.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "ambrelio/com/conversion.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/host/sql_literal.h"
#include "ambrelio/value/convert.h"
#include "journal_line.h"
#include "json_value.h"
#include "library_clock.h"

namespace ambrelio::script_host {
namespace {

using cli::CallLine;
using cli::Json;
using cli::LetLine;
using cli::WeighingLine;

void Write(const Json& answer) { std::puts(cli::JsonLine(answer).c_str()); }

class Journal {
 public:
  void Open(const std::string& path) {
    input_ = std::ifstream(path);
    if (!input_) Raise(RuntimeError::kPathFileAccess, path);
  }

  bool NextLine() {
    std::string text;
    if (!std::getline(input_, text)) return false;
    line_ = cli::ParseJournalLine(text);
    if (line_.moment) SetLibraryClock(*line_.moment);
    return true;
  }

  std::string Kind() const {
    constexpr const char* kKinds[] = {"pesada", "call", "let", "wait", "sql"};
    return kKinds[line_.action.index()];
  }
  std::string Owner() const {
    if (!From().empty()) return From();
    return Path().size() == 1 ? "Trazabilidad" : Path().front().name;
  }
  Variant Number() const { return Path().front().arguments.at(0).value(); }
  std::string Member() const { return Path().back().name; }
  Variant Value() const { return std::get<LetLine>(line_.action).value; }
  Variant Arguments() const {
    const auto& call = std::get<CallLine>(line_.action);
    Variant::Array list;
    for (const auto& argument : call.arguments) {
      list.push_back(argument.value_or(Variant()));
      if (list.back().is_object()) list.back() = Variant();  // kept by the script
    }
    return list;
  }

  Variant Column(const std::string& name) const {
    for (const auto& [column, value] : Columns()) {
      if (column == name) return value;
    }
    Raise(RuntimeError::kSubscriptOutOfRange, name);
  }
  // The text of the statement that stores it.
  std::string Insertion(int32_t discharge) const {
    std::string names = "DESCARGA, H_INICIO";
    std::string values =
        std::to_string(discharge) + ", " + host::SqlLiteral(line_.moment.value_or(OleDate()));
    for (const auto& [column, value] : Columns()) {
      names += ", " + column;
      values += ", " + host::SqlLiteral(value);
    }
    return "insert into PESADA (" + names + ") values (" + values + ")";
  }
  void Store(const std::string& file, int32_t discharge) {
    if (!database_) {
      engine_ = engine::Create();
      database_ = engine_->DefaultWorkspace().OpenDatabase(file, false, false, ";pwd=");
    }
    database_->Execute(Insertion(discharge), dao::kFailOnError);
  }

  void Answer(const Variant& result, const Variant& after) const {
    Json answer = {{"result", cli::ToJson(result)}};
    if (after.is_array()) {
      Json changed = cli::ToJson(after);
      const Json before = cli::ToJson(Arguments());
      if (changed != before) answer["args"] = WithNulls(changed);
    }
    Write(answer);
  }

 private:
  // Empty stands for what was left out, which an answer shows as null.
  static Json WithNulls(Json list) {
    for (Json& element : list) {
      if (element.is_object()) element = nullptr;
    }
    return list;
  }
  const cli::WeighingLine& Weighing() const { return std::get<WeighingLine>(line_.action); }
  const host::WeighingColumns& Columns() const { return Weighing().columns; }
  const automation::Path& Path() const {
    const auto* let = std::get_if<LetLine>(&line_.action);
    return let != nullptr ? let->path : std::get<CallLine>(line_.action).path;
  }
  const std::string& From() const {
    const auto* let = std::get_if<LetLine>(&line_.action);
    return let != nullptr ? let->from : std::get<CallLine>(line_.action).from;
  }

  std::ifstream input_;
  cli::JournalLine line_;
  std::shared_ptr<dao::DBEngine> engine_;
  std::shared_ptr<dao::Database> database_;
};

Variant At(Arguments arguments, size_t index) {
  return index < arguments.size() ? com::FromCom(arguments[index].get()) : Variant();
}

}  // namespace

com::ComPtr<ScriptObject> MakeJournal() {
  auto item = ScriptObject::Make();
  const auto journal = std::make_shared<Journal>();
  // A reading of the journal without arguments.
  const auto add = [&item, &journal](const char* name, auto read) {
    item->Add(name, [journal, read](Arguments) { return com::ToCom((*journal.*read)()); });
  };
  add("NextLine", &Journal::NextLine);
  add("Kind", &Journal::Kind);
  add("Owner", &Journal::Owner);
  add("Number", &Journal::Number);
  add("Member", &Journal::Member);
  add("Value", &Journal::Value);
  add("Arguments", &Journal::Arguments);
  const auto act = [&item](const char* name, auto action) {
    item->Add(name, [action](Arguments given) {
      action(given);
      return com::OwnedVariant();
    });
  };
  act("Open", [journal](Arguments given) { journal->Open(TextArgument(given, 0)); });
  act("Store", [journal](Arguments given) {
    journal->Store(TextArgument(given, 0), LongArgument(given, 1));
  });
  act("Answer", [journal](Arguments given) { journal->Answer(At(given, 0), At(given, 1)); });
  act("AnswerObject", [](Arguments given) {
    Write({{"result", {{"object", TextArgument(given, 0)}}}});
  });
  act("AnswerError", [](Arguments given) {
    Write(cli::ErrorJson(AutomationError(LongArgument(given, 0), "", TextArgument(given, 1))));
  });
  item->Add("Column", [journal](Arguments given) {
    return com::ToCom(journal->Column(TextArgument(given, 0)));
  });
  item->Add("Insertion", [journal](Arguments given) {
    return TextValue(journal->Insertion(LongArgument(given, 0)));
  });
  return item;
}

}  // namespace ambrelio::script_host
