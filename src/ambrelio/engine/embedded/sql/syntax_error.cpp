#include "ambrelio/engine/embedded/sql/syntax_error.h"

#include <algorithm>

namespace ambrelio::embedded::sql {
namespace {

constexpr size_t kExcerpt = 40;

bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

std::string TextNear(std::string_view text, size_t offset) {
  const size_t last = text.find_last_not_of(" \t\r\n");
  text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
  const bool at_end = offset >= text.size();
  size_t begin = at_end ? text.size() - std::min(text.size(), kExcerpt) : offset;
  size_t end = std::min(text.size(), begin + kExcerpt);
  while (begin < end && ContinuesCharacter(text[begin])) ++begin;
  while (end < text.size() && ContinuesCharacter(text[end])) ++end;
  return std::string(text.substr(begin, end - begin));
}

void RaiseNear(dao::DaoError error, std::string_view text, size_t offset) {
  dao::Raise(error, dao::source::kDatabase, TextNear(text, offset));
}

void RaiseTooComplex(std::string_view text, size_t offset) {
  dao::Raise(dao::DaoError::kExpressionSyntax, dao::source::kDatabase,
             "too complex: " + TextNear(text, offset));
}

}  // namespace ambrelio::embedded::sql
