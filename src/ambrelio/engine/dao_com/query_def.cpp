#include "ambrelio/engine/dao_com/query_def.h"

#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

std::string QueryDef::Name() const { return ToText(dao().Call("Name")); }
std::string QueryDef::Sql() const { return ToText(dao().Call("SQL")); }
void QueryDef::SetSql(const std::string& sql) { dao().Put("SQL", sql); }

}  // namespace ambrelio::dao_com
