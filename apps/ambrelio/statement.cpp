#include "statement.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ambrelio/value/ascii.h"

namespace ambrelio::cli {
namespace {

std::string_view FirstWord(std::string_view sql) {
  const auto is_letter = [](char c) { return AsciiLower(c) >= 'a' && AsciiLower(c) <= 'z'; };
  const auto start = std::find_if(sql.begin(), sql.end(),
                                  [](char c) { return !IsBlank(c) && c != '\n' && c != '\r'; });
  return {start, std::find_if_not(start, sql.end(), is_letter)};
}

bool IsAction(std::string_view sql) {
  constexpr std::array kActionWords = {"insert", "update", "delete", "create", "alter", "drop"};
  const std::string_view word = FirstWord(sql);
  return std::any_of(kActionWords.begin(), kActionWords.end(), [word](std::string_view action) {
    return EqualsIgnoringAsciiCase(word, action);
  });
}

}  // namespace

StatementResult RunStatement(dao::Database& database, const std::string& sql) {
  StatementResult result;
  if (IsAction(sql)) {
    database.Execute(sql);
    result.affected = database.RecordsAffected();
    return result;
  }
  result.has_rows = true;
  const auto recordset = database.OpenRecordset(sql, dao::RecordsetType::kSnapshot);
  auto& fields = recordset->Fields();
  const int count = fields.Count();
  for (int i = 0; i < count; ++i) result.columns.push_back(fields.Item(i)->Name());
  for (; !recordset->AtEnd(); recordset->MoveNext()) {
    std::vector<Variant>& row = result.rows.emplace_back();
    for (int i = 0; i < count; ++i) row.push_back(recordset->Value(i));
  }
  return result;
}

Json StatementJson(const StatementResult& result) {
  if (!result.has_rows) return {{"result", result.affected}};
  Json rows = Json::array();
  for (const std::vector<Variant>& row : result.rows) {
    rows.push_back(ToJson(Variant(row)));
  }
  return {{"result", std::move(rows)}};
}

}  // namespace ambrelio::cli
