// SQL of the storage engine, broken into lines for a reader.
#pragma once

#include <string>
#include <string_view>

namespace ambrelio::cli {

// Each clause of a select or a write starts a line, what stands in brackets around a select is set
// in by two. Nothing but blanks is changed. Lines end with a line feed.
std::string LaidOutSql(std::string_view sql);

}  // namespace ambrelio::cli
