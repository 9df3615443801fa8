// One line of a journal: what happened at the mill at a moment, as a JSON object with exactly one
// of the keys below, and "m", the moment (YYYY-MM-DD HH:MM:SS) that the library's clock then shows.
//
//   {"m":"...","pesada":{"COOPERATIVA":1,...}}          the host stores a weighing
//   {"m":"...","call":"Tolva(2).Descargar","args":[3,1,0.6]}   a member is called; null: left out
//   {"m":"...","let":"Deposito(3).Nombre","value":"..."}       a property is set
//   {"m":"...","sql":"..."}                             the host's own statement
//
// Without "m" the clock is the system's.
#pragma once

#include <optional>
#include <string>
#include <string_view>
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
};
struct LetLine {
  automation::Path path;
  Variant value;
};
struct SqlLine {
  std::string statement;
};

struct JournalLine {
  std::optional<OleDate> moment;
  std::variant<WeighingLine, CallLine, LetLine, SqlLine> action;
};

// Checks the whole line: JSON, keys, types, moment, path. Raises Failure (wrong input) naming what
// is wrong.
JournalLine ParseJournalLine(std::string_view text);

// A path with the arguments of its last member, which may stand in the path or beside it, but not
// in both.
CallLine MakeCall(automation::Path path, automation::Arguments beside);

}  // namespace ambrelio::cli
