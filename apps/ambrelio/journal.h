// The replay of a journal: line by line onto a mill, one result line for each.
#pragma once

#include <istream>
#include <map>
#include <memory>
#include <string>

#include "console.h"
#include "journal_line.h"
#include "json_value.h"
#include "mill.h"

namespace ambrelio::cli {

// Carries out lines on a mill, which must outlive it. What a line keeps under a name lives as long
// as it does.
class JournalPlayer {
 public:
  explicit JournalPlayer(Mill& mill) : mill_(mill) {}

  // {"result":...}, with "args":[...] when the member changed one of them, or {"error":...}: an
  // error of the library is a result, and so is 424 (object required) for a name without a value.
  Json CarryOut(const JournalLine& line);

 private:
  Json Act(const WeighingLine& weighing);
  Json Act(const CallLine& call);
  Json Act(const LetLine& let);
  Json Act(const WaitLine& wait);
  Json Act(const SqlLine& sql);

  automation::CallResult Call(const CallLine& call) const;
  const Variant& Kept(const std::string& name) const;
  // The value with what is kept in the place of references.
  Variant Resolve(const Variant& value) const;
  // The object whose member the path's last step names.
  std::shared_ptr<Object> Owner(const std::string& from, const automation::Path& path) const;

  Mill& mill_;
  std::map<std::string, Variant> kept_;  // by name in small letters
};

// What a call gave, as the result of its line.
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
