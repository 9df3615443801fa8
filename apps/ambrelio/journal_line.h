// One line of a journal: what happened at the mill at a moment, as a JSON object with exactly one
// of the keys below, and "m", the moment (YYYY-MM-DD HH:MM:SS) that the library's clock then shows.
//
//   {"m":"...","pesada":{"COOPERATIVA":1,...}}          the host stores a weighing
//   {"m":"...","call":"Tolva(2).Descargar","args":[3,1,0.6]}   a member is called; null: left out
//   {"m":"...","let":"Deposito(3).Nombre","value":"..."}       a property is set
//   {"m":"...","wait":2000}                             events are delivered for milliseconds
//   {"m":"...","sql":"..."}                             the host's own statement
//
// Without "m" the clock is the system's. A call may keep what it gives under a name, for paths that
// begin there and for values:
//
//   {"call":"NuevoReferente(1)","as":"r"}
//   {"let":"r.Info(2)","value":"..."}
//   {"call":"GuardarReferente","args":[1,{"ref":"r"}]}
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "ambrelio/automation/path.h"
#include "ambrelio/host/weighing.h"

namespace ambrelio::cli {

struct WeighingLine {
  host::WeighingColumns columns;
};
struct CallLine {
  automation::Path path;
  automation::Arguments arguments;
  std::string from{};  // the name of the kept object that the path starts at, "" for the root
  std::string as{};    // the name to keep the result under, or ""
};
struct LetLine {
  automation::Path path;  // an index stands in its last step
  Variant value;
  std::string from{};
};
struct WaitLine {
  int32_t milliseconds;
};
struct SqlLine {
  std::string statement;
};

// Stands among the values of a line for what is kept under a name.
class Reference : public Object {
 public:
  explicit Reference(std::string name) : name_(std::move(name)) {}
  const char* ClassName() const override { return "Reference"; }
  const std::string& name() const { return name_; }

 private:
  std::string name_;
};

struct JournalLine {
  std::optional<OleDate> moment;
  std::variant<WeighingLine, CallLine, LetLine, WaitLine, SqlLine> action;
};

// Checks the whole line: JSON, keys, types, moment, path. Raises Failure (wrong input) naming what
// is wrong.
JournalLine ParseJournalLine(std::string_view text);

// A path with the arguments of its last member, which may stand in the path or beside it, but not
// in both.
CallLine MakeCall(automation::Path path, automation::Arguments beside);

}  // namespace ambrelio::cli
