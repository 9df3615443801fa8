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

std::string NameOfReference(const Variant& value) {
  const auto reference = std::dynamic_pointer_cast<Reference>(value.object());
  return reference == nullptr ? "" : reference->name();
}

TEST(ParseJournalLine, ReadsTheNameThatAResultIsKeptUnder) {
  for (const char* name : {"r", "_", "Cliente_2", "campaña"}) {
    const JournalLine line =
        ParseJournalLine(R"j({"call":"NuevoReferente(1)","as":")j" + std::string(name) + "\"}");
    EXPECT_EQ(std::get<CallLine>(line.action).as, name);
  }
}

TEST(ParseJournalLine, ReadsAPathThatStartsAtAName) {
  const JournalLine line = ParseJournalLine(R"j({"call":"r.Info(2)"})j");
  const auto& call = std::get<CallLine>(line.action);
  EXPECT_EQ(call.from, "r");
  ASSERT_EQ(call.path.size(), 1U);
  EXPECT_EQ(call.path.back().name, "Info");
  EXPECT_EQ(call.arguments, (automation::Arguments{Variant(int32_t{2})}));
}

TEST(ParseJournalLine, APathStartsAtTheRootUnlessANameLeadsOn) {
  for (const char* path : {"r", "r(1).Nombre", "Tolva.Descargar", "tolva.Descargar", "PuertoUDP.x",
                           "Deposito(3).Nombre"}) {
    const JournalLine line = ParseJournalLine("{\"call\":\"" + std::string(path) + "\"}");
    EXPECT_EQ(std::get<CallLine>(line.action).from, "") << path;
  }
}

TEST(ParseJournalLine, ReadsALetWithAnIndex) {
  const JournalLine line = ParseJournalLine(R"j({"let":"r.Info(2)","value":"x"})j");
  const auto& let = std::get<LetLine>(line.action);
  EXPECT_EQ(let.from, "r");
  EXPECT_EQ(let.path.back().arguments, (automation::Arguments{Variant(int32_t{2})}));
  EXPECT_EQ(let.value, Variant("x"));
}

TEST(ParseJournalLine, ReadsReferencesAsArgumentsAndValues) {
  const JournalLine call = ParseJournalLine(R"({"call":"A","args":[{"ref":"r"},[{"ref":"s"}]]})");
  const automation::Arguments& arguments = std::get<CallLine>(call.action).arguments;
  EXPECT_EQ(NameOfReference(*arguments[0]), "r");
  EXPECT_EQ(NameOfReference(arguments[1]->array()[0]), "s");
  const JournalLine let = ParseJournalLine(R"({"let":"A","value":{"ref":"r"}})");
  EXPECT_EQ(NameOfReference(std::get<LetLine>(let.action).value), "r");
}

TEST(ParseJournalLine, ReadsAWait) {
  const JournalLine line = ParseJournalLine(R"({"m":"2025-11-03 08:04:09","wait":2147483647})");
  EXPECT_EQ(std::get<WaitLine>(line.action).milliseconds, 2147483647);
  EXPECT_TRUE(line.moment.has_value());
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
                  "one of \"pesada\", \"call\", \"let\", \"wait\" and \"sql\" is needed"},
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
        Malformed{"LetArgs", R"({"let":"A","value":1,"args":[]})", "the key \"args\" is unknown"},
        Malformed{"LetAs", R"({"let":"A","value":1,"as":"r"})", "the key \"as\" is unknown"},
        Malformed{"EmptyKey", R"({"sql":"a","":1})", "the key \"\" is unknown"},
        Malformed{"AsNoText", R"({"call":"A","as":1})", "\"as\" must be text"},
        Malformed{"AsEmpty", R"({"call":"A","as":""})", "\"as\" must be a name"},
        Malformed{"AsDigitFirst", R"({"call":"A","as":"1r"})", "\"as\" must be a name"},
        Malformed{"AsBlank", R"({"call":"A","as":"r "})", "\"as\" must be a name"},
        Malformed{"AsPath", R"({"call":"A","as":"r.s"})", "\"as\" must be a name"},
        Malformed{"AsMember", R"({"call":"A","as":"Deposito"})", "a name of the object model"},
        Malformed{"AsMemberInCapitals", R"({"call":"A","as":"TOLVA"})",
                  "a name of the object model"},
        Malformed{"AsSetting", R"({"call":"A","as":"PuertoUDP"})", "a name of the object model"},
        Malformed{"AsNewSeason", R"({"call":"A","as":"IniciarCampana"})",
                  "a name of the object model"},
        Malformed{"AsRoot", R"({"call":"A","as":"trazabilidad"})", "a name of the object model"},
        Malformed{"WaitNoNumber", R"({"wait":"2"})", "\"wait\" must be whole milliseconds"},
        Malformed{"WaitNegative", R"({"wait":-1})", "\"wait\" must be whole milliseconds"},
        Malformed{"WaitBroken", R"({"wait":1.5})", "\"wait\" must be whole milliseconds"},
        Malformed{"WaitTooLong", R"({"wait":2147483648})", "\"wait\" must be whole milliseconds"},
        Malformed{"WaitArgs", R"({"wait":1,"args":[]})", "the key \"args\" is unknown"},
        Malformed{"WeighingOfAReference", R"({"pesada":{"TOLVA":{"ref":"r"}}})",
                  "must be a plain value"},
        Malformed{"WeighingNoObject", R"({"pesada":[1]})", "\"pesada\" must be an object"},
        Malformed{"WeighingEmpty", R"({"pesada":{}})", "\"pesada\" must be an object"},
        Malformed{"WeighingNested", R"({"pesada":{"TOLVA":[1]}})",
                  "the column \"TOLVA\" must be a plain value"},
        Malformed{"StatementNoText", R"({"sql":null})", "\"sql\" must be text"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace ambrelio::cli
