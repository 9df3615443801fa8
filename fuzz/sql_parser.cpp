// Statements, stored queries and lone expressions: a tree or an error of DAO's, whatever the text.
#include "ambrelio/engine/embedded/sql/parser.h"

#include "ambrelio/value/automation_error.h"
#include "fuzz.h"

namespace {

template <class Parse>
void Try(Parse parse) {
  try {
    parse();
  } catch (const ambrelio::AutomationError& error) {
    ambrelio::fuzz::Require(error.number() >= 3000, "a syntax error has a number of DAO's");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  namespace sql = ambrelio::embedded::sql;
  const std::string_view text = ambrelio::fuzz::TextOf(data, size);
  Try([text] { sql::Parse(text); });
  Try([text] { sql::ParseQuery(text); });
  Try([text] { sql::ParseExpression(text); });
  return 0;
}
