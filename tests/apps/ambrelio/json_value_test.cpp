#include "json_value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>

#include "ambrelio/hoppers/tolva.h"
#include "failure.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

std::string Text(const Variant& value) { return JsonLine(ToJson(value)); }
Variant Value(const std::string& json) { return ToVariant(ParseJson(json)); }

std::string ProblemOf(const std::string& json) {
  try {
    Value(json);
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::kWrongInput);
    return failure.what();
  }
  return "";
}

TEST(ToJson, WritesEveryTypeOfValue) {
  Session session;
  EXPECT_EQ(Text(Variant()), R"({"empty":true})");
  EXPECT_EQ(Text(Variant::Null()), "null");
  EXPECT_EQ(Text(Variant::Nothing()), R"({"nothing":true})");
  EXPECT_EQ(Text(Variant(std::make_shared<Tolva>(session, int16_t{2}))), R"({"object":"Tolva"})");
  EXPECT_EQ(Text(true), "true");
  EXPECT_EQ(Text(uint8_t{200}), "200");
  EXPECT_EQ(Text(int16_t{-5}), "-5");
  EXPECT_EQ(Text(int32_t{2147483647}), "2147483647");
  EXPECT_EQ(Text(0.1F), "0.1");
  EXPECT_EQ(Text(Currency{12345}), "1.2345");
  EXPECT_EQ(Text("Cañada \"Honda\"\n"), "\"Cañada \\\"Honda\\\"\\n\"");
  EXPECT_EQ(Text(*OleDate::FromIso("2025-11-03 08:04:09")), "\"2025-11-03 08:04:09\"");
  EXPECT_EQ(Text(Variant::Array{}), "[]");
  EXPECT_EQ(Text(Variant::Array{Variant(int32_t{1}), Variant(Variant::Array{Variant::Null()})}),
            "[1,[null]]");
}

TEST(ToJson, DoublesReadBackToTheSameBits) {
  for (const double value : {0.1, 5.0, -0.0, 1.0 / 3, 1e300, 5e-324, 123456789.123456789,
                             std::numeric_limits<double>::max()}) {
    const Variant read = Value(Text(value));
    ASSERT_EQ(read.type(), VariantType::kDouble) << Text(value);
    EXPECT_EQ(std::signbit(read.as<double>()), std::signbit(value));
    EXPECT_EQ(read.as<double>(), value) << Text(value);
  }
  EXPECT_EQ(Text(5.0), "5.0");
}

TEST(ToJson, BytesThatAreNoTextAreReplaced) { EXPECT_EQ(Text("a\xFF"), "\"a\xEF\xBF\xBD\""); }

TEST(ToVariant, ReadsEveryTypeOfValue) {
  EXPECT_EQ(Value("null"), Variant::Null());
  EXPECT_EQ(Value("true"), Variant(true));
  EXPECT_EQ(Value("-3"), Variant(int32_t{-3}));
  EXPECT_EQ(Value("3.0"), Variant(3.0));
  EXPECT_EQ(Value("2147483647"), Variant(int32_t{2147483647}));
  EXPECT_EQ(Value("2147483648"), Variant(2147483648.0));
  EXPECT_EQ(Value("-2147483648"), Variant(std::numeric_limits<int32_t>::min()));
  EXPECT_EQ(Value("-2147483649"), Variant(-2147483649.0));
  EXPECT_EQ(Value("18446744073709551615"), Variant(18446744073709551615.0));
  EXPECT_EQ(Value("\"2025-11-03 08:04:09\""), Variant("2025-11-03 08:04:09"));
  EXPECT_EQ(Value(R"({"empty":true})"), Variant());
  EXPECT_EQ(Value(R"({"nothing":true})"), Variant::Nothing());
  EXPECT_EQ(Value("[1,[null]]"),
            Variant(Variant::Array{Variant(int32_t{1}), Variant(Variant::Array{Variant::Null()})}));
}

TEST(ToVariant, RefusesOtherObjects) {
  EXPECT_THAT(ProblemOf(R"({"empty":false})"), HasSubstr("is no value"));
  EXPECT_THAT(ProblemOf(R"([{"object":"Tolva"}])"), HasSubstr(R"({"object":"Tolva"})"));
}

TEST(ToVariant, ReadsReferencesAtAnyDepthWhereThereAreSuch) {
  const auto shout = [](const std::string& name) { return Variant(name + "!"); };
  EXPECT_EQ(ToVariant(ParseJson(R"({"ref":"r"})"), shout), Variant("r!"));
  EXPECT_EQ(ToVariant(ParseJson(R"([1,[{"ref":"r"}]])"), shout),
            Variant(Variant::Array{Variant(int32_t{1}), Variant(Variant::Array{Variant("r!")})}));
}

TEST(ToVariant, RefusesReferencesElsewhere) {
  EXPECT_THAT(ProblemOf(R"({"ref":"r"})"), HasSubstr("is no value"));
}

TEST(ToVariant, RefusesReferencesThatAreNone) {
  const auto empty = [](const std::string&) { return Variant(); };
  for (const char* json : {R"({"ref":1})", R"({"ref":"r","more":1})", R"({"rev":"r"})"}) {
    try {
      ToVariant(ParseJson(json), empty);
      ADD_FAILURE() << json;
    } catch (const Failure& failure) {
      EXPECT_THAT(failure.what(), HasSubstr(R"(and {"ref":"name"})"));
    }
  }
}

TEST(ParseJson, RefusesWhatIsNoJson) {
  EXPECT_THAT(ProblemOf("{"), HasSubstr("not JSON: parse error"));
  EXPECT_THAT(ProblemOf(""), HasSubstr("not JSON"));
  EXPECT_THAT(ProblemOf("1 2"), HasSubstr("not JSON"));
  EXPECT_THAT(ProblemOf("\"\xFF\""), HasSubstr("not JSON"));
  EXPECT_THAT(ProblemOf("1e999"), HasSubstr("not JSON"));
  EXPECT_THAT(ProblemOf("'a'"), HasSubstr("not JSON"));
}

TEST(ParseJson, RefusesWhatFollowsANul) {
  EXPECT_THAT(ProblemOf(std::string("{\"a\":1}\0{", 9)), HasSubstr("NUL"));
  EXPECT_EQ(ParseJson(R"("a\u0000b")").get<std::string>(), std::string("a\0b", 3));
}

TEST(ParseJson, RefusesAKeyGivenTwice) {
  EXPECT_THAT(ProblemOf(R"({"a":1,"b":{"a":2},"a":3})"), HasSubstr("the key \"a\" is given twice"));
  EXPECT_NO_THROW(ParseJson(R"([{"a":1},{"a":2,"b":{"a":1}}])"));
}

TEST(ParseJson, RefusesEndlessNesting) {
  EXPECT_THAT(ProblemOf(std::string(100000, '[')), HasSubstr("nested too deeply"));
}

}  // namespace
}  // namespace ambrelio::cli
