// The words of a statement, and its shape, agree on its literals. The shape alone takes a malformed
// literal that it does not take out: the words refuse it when the text is parsed.
#include "ambrelio/engine/embedded/sql/lexer.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "ambrelio/value/automation_error.h"
#include "fuzz.h"

namespace {

using ambrelio::Variant;

template <class Read>
auto Refusing(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const ambrelio::AutomationError&) {
    return std::nullopt;
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using ambrelio::fuzz::Require;
  namespace sql = ambrelio::embedded::sql;
  const std::string_view text = ambrelio::fuzz::TextOf(data, size);
  const auto tokens = Refusing([text] { return sql::Tokenize(text); });
  const auto shape = Refusing([text] { return sql::ShapeOf(text); });
  if (!tokens) return 0;
  Require(shape.has_value(), "what has words has a shape");
  Require(!tokens->empty() && tokens->back().kind == sql::TokenKind::kEnd, "words have an end");
  std::vector<Variant> literals;
  for (const sql::Token& token : *tokens) {
    Require(token.offset >= 0 && static_cast<size_t>(token.offset) <= size,
            "words lie in the text");
    if (token.slot < 0) continue;
    Require(static_cast<size_t>(token.slot) == literals.size(), "slots count up");
    literals.push_back(token.value);
  }
  Require(literals == shape->literals, "words and shape hold the same literals");
  return 0;
}
