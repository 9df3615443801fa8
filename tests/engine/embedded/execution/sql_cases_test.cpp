// Runs the files of cases/ (see sql_cases.h), with all rewrites of the planner and with none.
#include "sql_cases.h"

#include <gtest/gtest.h>

#include <set>

#include "ambrelio/platform/clock.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using test::SqlCase;
using test::SqlStep;

std::string TypeText(dao::FieldType type) {
  switch (type) {
    case dao::FieldType::kBoolean:
      return "Boolean";
    case dao::FieldType::kByte:
      return "Byte";
    case dao::FieldType::kInteger:
      return "Integer";
    case dao::FieldType::kLong:
      return "Long";
    case dao::FieldType::kCurrency:
      return "Currency";
    case dao::FieldType::kSingle:
      return "Single";
    case dao::FieldType::kDouble:
      return "Double";
    case dao::FieldType::kDate:
      return "Date";
    case dao::FieldType::kText:
      return "Text";
    case dao::FieldType::kMemo:
      return "Memo";
  }
  return "?";
}

// A value as the case files write it.
std::string ValueText(const Variant& value) {
  switch (value.type()) {
    case VariantType::kNull:
      return "Null";
    case VariantType::kDate:
      return value.as<OleDate>().Iso();
    case VariantType::kText: {
      const auto& text = value.as<std::string>();
      const bool plain = !text.empty() && text.front() != ' ' && text.back() != ' ' &&
                         text != "Null" && text.find('|') == std::string::npos;
      return plain ? text : "'" + text + "'";
    }
    case VariantType::kBoolean:
      return value.as<bool>() ? "True" : "False";
    case VariantType::kCurrency:
      return NumberText(static_cast<double>(value.as<Currency>().ten_thousandths) / 10000, '.');
    default:
      return NumberText(ToDouble(value), '.');
  }
}

// Whether the value has the type that its column says.
bool HasType(const Variant& value, dao::FieldType type) {
  static const std::set<std::pair<VariantType, dao::FieldType>> kPairs = {
      {VariantType::kBoolean, dao::FieldType::kBoolean},
      {VariantType::kByte, dao::FieldType::kByte},
      {VariantType::kInteger, dao::FieldType::kInteger},
      {VariantType::kLong, dao::FieldType::kLong},
      {VariantType::kCurrency, dao::FieldType::kCurrency},
      {VariantType::kSingle, dao::FieldType::kSingle},
      {VariantType::kDouble, dao::FieldType::kDouble},
      {VariantType::kDate, dao::FieldType::kDate},
      {VariantType::kText, dao::FieldType::kText},
      {VariantType::kText, dao::FieldType::kMemo},
  };
  return value.is_null() || kPairs.count({value.type(), type}) > 0;
}

std::vector<std::string> Rows(dao::Recordset& rows) {
  const int columns = rows.Fields().Count();
  const auto line = [&](const auto& part) {
    std::string text;
    for (int i = 0; i < columns; ++i) text += (i > 0 ? " | " : "") + part(*rows.Fields().Item(i));
    return text;
  };
  std::vector<std::string> lines = {
      line([](const dao::Field& field) { return field.Name() + ":" + TypeText(field.Type()); })};
  for (; !rows.AtEnd(); rows.MoveNext()) {
    lines.push_back(line([](const dao::Field& field) {
      const Variant value = field.Value();
      EXPECT_TRUE(HasType(value, field.Type())) << field.Name() << " is a " << TypeName(value);
      return ValueText(value);
    }));
  }
  return lines;
}

std::string ErrorText(const AutomationError& error) {
  return "error " + std::to_string(error.number());
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

class SqlCases : public test::EngineTest, public testing::WithParamInterface<SqlCase> {
  const ScopedLocale locale_{Locale::FromName("C")};

 protected:
  void HoldUnder(const PlanOptions& plan) {
    engine_ = CreateEngine(plan);
    database_ = Create();
    for (const SqlStep& step : GetParam().steps) Hold(step);
  }

 private:
  void Hold(const SqlStep& step) {
    const std::vector<std::string> got = Run(step);
    const bool failed = !got.empty() && got[0].compare(0, 6, "error ") == 0;
    if (step.expected.empty()) {
      EXPECT_FALSE(failed) << GetParam().file << ".txt:" << step.line << " " << step.text << "\n"
                           << Joined(got);
    } else {
      EXPECT_EQ(Joined(got), Joined(step.expected))
          << GetParam().file << ".txt:" << step.line << " " << step.text;
    }
  }

  std::vector<std::string> Run(const SqlStep& step) {
    try {
      if (step.kind == SqlStep::Kind::kDirective) {
        Obey(step.text);
        return {};
      }
      const bool strict = step.kind == SqlStep::Kind::kStrictStatement;
      if (IsSelect(step.text)) return Rows(*database_->OpenRecordset(step.text));
      database_->Execute(step.text, strict ? dao::kFailOnError : 0);
      return {"affected " + std::to_string(database_->RecordsAffected())};
    } catch (const AutomationError& error) {
      return {ErrorText(error)};
    }
  }

  static bool IsSelect(const std::string& text) {
    return text.compare(0, 6, "select") == 0 || text[0] == '(' ||
           text.find(' ') == std::string::npos;
  }

  void Obey(const std::string& directive) {
    const auto after = [&](const std::string& words) {
      return directive.compare(0, words.size(), words) == 0 ? directive.substr(words.size())
                                                            : std::string();
    };
    if (const std::string query = after("query "); !query.empty()) {
      const size_t colon = query.find(": ");
      database_->CreateQueryDef(query.substr(0, colon), query.substr(colon + 2));
    } else if (const std::string field = after("zero length "); !field.empty()) {
      FieldOf(field)->SetAllowZeroLength(true);
    } else if (const std::string given = after("default "); !given.empty()) {
      const size_t colon = given.find(": ");
      FieldOf(given.substr(0, colon))->SetDefaultValue(given.substr(colon + 2));
    } else {
      throw std::runtime_error("unknown directive: " + directive);
    }
  }

  std::shared_ptr<dao::Field> FieldOf(const std::string& name) {
    const size_t dot = name.find('.');
    return database_->TableDefs()
        .Item(std::string_view(name).substr(0, dot))
        ->Fields()
        .Item(std::string_view(name).substr(dot + 1));
  }

  // Noon on the day that the cases call today.
  ManualClock clock_{*OleDate::FromIso("2026-11-20 12:30:15")};
  ScopedClock in_force_{clock_};
  std::shared_ptr<dao::Database> database_;
};

TEST_P(SqlCases, Hold) { HoldUnder(PlanOptions()); }

TEST_P(SqlCases, HoldWithoutRewrites) { HoldUnder(PlanOptions::Without("all")); }

std::string TestName(const testing::TestParamInfo<SqlCase>& info) {
  std::string name;
  for (const char c : info.param.file + "_" + info.param.title) {
    name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Text, SqlCases,
                         testing::ValuesIn(test::LoadSqlCases(
                             AMBRELIO_SOURCE_DIR "/tests/engine/embedded/execution/cases")),
                         TestName);

}  // namespace

}  // namespace ambrelio::embedded
