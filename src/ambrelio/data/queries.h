// Questions with a single answer, and statements that tell what they did.
#pragma once

#include <optional>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::data {

// Whether a query has any row.
bool HasRows(Session& session, const std::string& sql);
// The first column of the first or of the last row; nothing without rows.
std::optional<Variant> FirstValue(Session& session, const std::string& sql);
std::optional<Variant> LastValue(Session& session, const std::string& sql);
// The value of an aggregate, which always has one row.
Variant Aggregate(Session& session, const std::string& sql);
// Carries out a statement; the number of rows it wrote.
int32_t Execute(Session& session, const std::string& sql);

}  // namespace ambrelio::data
