#include "journal_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "failure.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

TEST(ParseJournalLine, ReadsAWeighing) {
  const JournalLine line =
      ParseJournalLine(R"({"m":"2025-11-03 08:04:09","pesada":{"TOLVA":2,"PARAJE":null}})");
  EXPECT_EQ(line.moment, OleDate::FromIso("2025-11-03 08:04:09"));
  EXPECT_EQ(std::get<WeighingLine>(line.action).columns,
            (host::WeighingColumns{{"TOLVA", Variant(int32_t{2})}, {"PARAJE", Variant::Null()}}));
}

TEST(ParseJournalLine, ReadsACall) {
  const JournalLine line =
      ParseJournalLine(R"({"call":"Tolva(2).Descargar","args":[3,null,{"empty":true}]})");
  EXPECT_FALSE(line.moment.has_value());
  const auto& call = std::get<CallLine>(line.action);
  EXPECT_EQ(call.path.back().name, "Descargar");
  EXPECT_EQ(call.arguments, (automation::Arguments{Variant(int32_t{3}), std::nullopt, Variant()}));
}

TEST(ParseJournalLine, ReadsArgumentsInThePath) {
  const JournalLine line = ParseJournalLine(R"j({"call":"Tolva(2).Descargar(3, 1)","args":[]})j");
  EXPECT_EQ(std::get<CallLine>(line.action).arguments,
            (automation::Arguments{Variant(int32_t{3}), Variant(int32_t{1})}));
}

TEST(ParseJournalLine, ReadsALet) {
  const JournalLine line = ParseJournalLine(R"({"value":[[1,2]],"let":"Deposito(1).Formula"})");
  const auto& let = std::get<LetLine>(line.action);
  EXPECT_EQ(let.path.size(), 2U);
  EXPECT_TRUE(let.value.is_array());
}

TEST(ParseJournalLine, ReadsAStatement) {
  const JournalLine line = ParseJournalLine(R"({"sql":"select 1"})");
  EXPECT_EQ(std::get<SqlLine>(line.action).statement, "select 1");
}

struct Malformed {
  const char* name;
  const char* line;
  const char* problem;
};

class MalformedLine : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedLine, IsRefusedWithAReason) {
  try {
    ParseJournalLine(GetParam().line);
    FAIL() << "accepted";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::kWrongInput);
    EXPECT_THAT(failure.what(), HasSubstr(GetParam().problem));
  }
}

INSTANTIATE_TEST_SUITE_P(
    ParseJournalLine, MalformedLine,
    testing::Values(
        Malformed{"NoJson", "{\"call\":", "not JSON"},
        Malformed{"NoObject", "[1]", "a line must be a JSON object"},
        Malformed{"NoAction", "{\"m\":\"2025-11-03 08:04:09\"}",
                  "one of \"pesada\", \"call\", \"let\" and \"sql\" is needed"},
        Malformed{"TwoActions", R"({"call":"A","sql":"b"})", "both \"call\" and \"sql\""},
        Malformed{"UnknownKey", R"({"call":"A","arg":[]})", "the key \"arg\" is unknown"},
        Malformed{"ArgsOfAStatement", R"({"sql":"a","args":[]})", "the key \"args\" is unknown"},
        Malformed{"ValueOfACall", R"({"call":"A","value":1})", "the key \"value\" is unknown"},
        Malformed{"KeyTwice", R"({"call":"A","call":"B"})", "given twice"},
        Malformed{"MomentNoText", R"({"m":45000,"call":"A"})", "\"m\" must be text"},
        Malformed{"MomentWithoutTime", R"({"m":"2025-11-03","call":"A"})", "\"m\" is no moment"},
        Malformed{"MomentNotInTheCalendar", R"({"m":"2025-02-30 08:00:00","call":"A"})",
                  "\"m\" is no moment"},
        Malformed{"CallNoText", R"({"call":5})", "\"call\" must be text"},
        Malformed{"PathBroken", R"({"call":"Tolva(2"})", "at position 8 of the path"},
        Malformed{"LetPathBroken", R"({"let":".","value":1})", "at position 1 of the path"},
        Malformed{"ArgsNoList", R"({"call":"A","args":{"x":1}})", "\"args\" must be a list"},
        Malformed{"ArgsNoValue", R"({"call":"A","args":[{"x":1}]})", "is no value"},
        Malformed{"ArgsTwice", R"j({"call":"A(1)","args":[1]})j", "both in the path and beside it"},
        Malformed{"LetWithoutValue", R"({"let":"A"})", "\"value\" is missing"},
        Malformed{"LetWithArguments", R"j({"let":"A(1)","value":1})j", "takes no arguments"},
        Malformed{"WeighingNoObject", R"({"pesada":[1]})", "\"pesada\" must be an object"},
        Malformed{"WeighingEmpty", R"({"pesada":{}})", "\"pesada\" must be an object"},
        Malformed{"WeighingNested", R"({"pesada":{"TOLVA":[1]}})",
                  "the column \"TOLVA\" must be a plain value"},
        Malformed{"StatementNoText", R"({"sql":null})", "\"sql\" must be text"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace ambrelio::cli
