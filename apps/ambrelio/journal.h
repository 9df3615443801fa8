// The replay of a journal: line by line onto a mill, one result line for each.
#pragma once

#include <istream>
#include <string>

#include "console.h"
#include "journal_line.h"
#include "json_value.h"
#include "mill.h"

namespace ambrelio::cli {

// {"result":...}, with "args":[...] when the member changed one of them, or {"error":...}: an error
// of the library is a result.
Json CarryOut(Mill& mill, const JournalLine& line);
// What a call gave, in that form.
Json CallJson(const automation::CallResult& call);

struct ReplayOptions {
  std::string name;         // of the input, for messages
  bool keep_going = false;  // past malformed lines
  bool flush_each = false;  // somebody waits for each result
};

// Replays `input`; empty lines are passed over. A malformed line is reported on standard error with
// its number, nothing of it is carried out, and the replay stops there or goes on as told. Returns
// the number of malformed lines met.
int Replay(Mill& mill, std::istream& input, const ReplayOptions& options, Console& console);

}  // namespace ambrelio::cli
