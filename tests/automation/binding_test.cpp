// Calls through rows of the table, on a class made for it.
#include "ambrelio/automation/binding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "ambrelio/automation/call.h"
#include "ambrelio/value/locale.h"

namespace ambrelio::automation {
namespace {

enum class Grade : int16_t { kLow = -1, kHigh = 7 };

class Other : public Object {
 public:
  const char* ClassName() const override { return "Other"; }
};

class Sample : public Object {
 public:
  const char* ClassName() const override { return "Sample"; }

  bool Types(int16_t i, int32_t l, double d, bool b, const std::string& t, OleDate m) {
    integer = i;
    number = l;
    real = d;
    flag = b;
    text = t;
    moment = m;
    return true;
  }
  void Change(int16_t& i, double& d, std::string& t, Variant& v, OleDate& m) {
    i = 7;
    d = 1;
    t += "!";
    v = Variant::Null();
    m = OleDate::FromDays(2);
  }
  void Leave(int16_t&, double&) {}
  void ChangeAndFail(int16_t&, double& d) {
    d = 1;
    Raise(RuntimeError::kOverflow);
  }
  std::string Missing(const Variant& empty, const std::optional<Variant>& missing, double zero) {
    return std::string(empty.is_empty() ? "Empty" : "given") + "," +
           (missing ? "given" : "missing") + "," + (zero == 0 ? "0" : "given");
  }
  bool Takes(const std::shared_ptr<Other>& given) {
    other = given;
    return given != nullptr;
  }
  void Give(std::shared_ptr<Other>& out) { out = std::make_shared<Other>(); }
  const std::string& Text() const { return text; }
  void SetText(const std::string& value) { text = value; }
  double Cell(int16_t i) const { return real + i; }
  void SetCell(int16_t i, double value) { real = value - i; }
  Grade High() const { return Grade::kHigh; }
  Grade Low() const { return Grade::kLow; }

  int16_t integer = 0;
  int32_t number = 0;
  double real = 0;
  bool flag = false;
  std::string text;
  OleDate moment;
  std::shared_ptr<Other> other;
};

int32_t Twice(Sample& sample, int32_t by) { return sample.number * 2 + by; }

}  // namespace

template <>
inline constexpr const char* kClassName<Sample> = "Sample";
template <>
inline constexpr const char* kClassName<Other> = "Other";
template <>
inline constexpr const char* kEnumerationName<Grade> = "Grade";

namespace {

class Binding : public ::testing::Test {
 protected:
  CallResult Call(const char* name, Arguments arguments, Access access = Access::kCall) {
    const Member* member = FindMember(table, name, access);
    EXPECT_NE(member, nullptr) << name;
    return automation::Call(sample, *member, std::move(arguments));
  }
  int ErrorOf(const char* name, Arguments arguments) {
    try {
      Call(name, std::move(arguments));
    } catch (const AutomationError& error) {
      return error.number();
    }
    return 0;
  }

  ScopedLocale locale{Locale{}};
  Class table = ClassTable<Sample>("A class for tests.")
                    .Method(1, "Types", &Sample::Types, {"i", "l", "d", "b", "t", "m"}, "Types.")
                    .Method(2, "Change", &Sample::Change, {"i", "d", "t", "v", "m"}, "Changes.")
                    .Method(3, "Leave", &Sample::Leave, {"i", Optional("d")}, "Changes nothing.")
                    .Method(20, "ChangeAndFail", &Sample::ChangeAndFail, {"i", "d"}, "Fails.")
                    .Method(4, "Missing", &Sample::Missing,
                            {Optional("e"), Optional("v"), Optional("d")}, "What is missing.")
                    .Method(5, "Takes", &Sample::Takes, {"o"}, "Takes an object.")
                    .Method(6, "Give", &Sample::Give, {Output("o")}, "Gives an object.")
                    .Method(7, "Twice", &Twice, {"by"}, "A function beside the class.")
                    .Get(8, "Text", &Sample::Text, "Text.")
                    .Let(8, "Text", &Sample::SetText, "Text.")
                    .Property(9, "Cell", &Sample::Cell, &Sample::SetCell, "i", "A cell.")
                    .Get(10, "High", &Sample::High, "A grade.")
                    .Get(11, "Low", &Sample::Low, "A grade.")
                    .Take();
  Sample sample;
};

TEST_F(Binding, DerivesTypesFromTheMember) {
  const Member& member = *FindMember(table, "Types", Access::kCall);
  std::vector<ValueType> types;
  for (const Argument& argument : member.arguments) types.push_back(argument.type);
  EXPECT_THAT(types, testing::ElementsAre(ValueType::kInteger, ValueType::kLong, ValueType::kDouble,
                                          ValueType::kBoolean, ValueType::kText, ValueType::kDate));
  EXPECT_EQ(member.result, ValueType::kBoolean);
  EXPECT_EQ(FindMember(table, "Leave", Access::kCall)->result, ValueType::kNone);
  EXPECT_STREQ(FindMember(table, "Takes", Access::kCall)->arguments[0].object_class, "Other");
}

TEST_F(Binding, ConvertsEveryArgumentToItsType) {
  const CallResult call =
      Call("Types", {Variant("3"), Variant(2.5), Variant(int16_t{4}), Variant(1.0),
                     Variant(int32_t{12}), Variant(OleDate::FromDays(45000))});
  EXPECT_EQ(call.result, Variant(true));
  EXPECT_EQ(sample.integer, 3);
  EXPECT_EQ(sample.number, 2);  // half to even
  EXPECT_EQ(sample.real, 4.0);
  EXPECT_TRUE(sample.flag);
  EXPECT_EQ(sample.text, "12");
  EXPECT_EQ(sample.moment, OleDate::FromDays(45000));
}

TEST_F(Binding, RoundsAHalfToTheEvenNeighbour) {
  Call("Leave", {Variant(0.5)});
  for (const auto& [given, expected] : {std::pair(1.5, 2), {2.5, 2}, {-0.5, 0}, {-1.5, -2}}) {
    Call("Types", {Variant(given), Variant(), Variant(), Variant(), Variant(), Variant()});
    EXPECT_EQ(sample.integer, expected) << given;
  }
}

TEST_F(Binding, OverflowsBeyondSixteenBits) {
  EXPECT_EQ(ErrorOf("Leave", {Variant(32767.49)}), 0);
  EXPECT_EQ(ErrorOf("Leave", {Variant(32767.5)}), 6);
  EXPECT_EQ(ErrorOf("Leave", {Variant(int32_t{40000})}), 6);
}

TEST_F(Binding, RefusesTextThatIsNoNumber) { EXPECT_EQ(ErrorOf("Leave", {Variant("x")}), 13); }

TEST_F(Binding, RefusesNullForANumber) { EXPECT_EQ(ErrorOf("Leave", {Variant::Null()}), 94); }

TEST_F(Binding, WritesChangedArgumentsBackInTheirType) {
  const CallResult call =
      Call("Change", {Variant("1"), Variant(int32_t{5}), Variant("a"), Variant(9.0), Variant(0.0)});
  EXPECT_THAT(call.changed, testing::Each(true));
  EXPECT_EQ(call.arguments[0], Variant(int16_t{7}));
  EXPECT_EQ(call.arguments[1], Variant(1.0));
  EXPECT_EQ(call.arguments[2], Variant("a!"));
  EXPECT_EQ(call.arguments[3], Variant::Null());
  EXPECT_EQ(call.arguments[4], Variant(OleDate::FromDays(2)));
}

TEST_F(Binding, KeepsAnUnchangedArgumentAsItWasGiven) {
  const CallResult call = Call("Leave", {Variant("3"), Variant(int32_t{5})});
  EXPECT_FALSE(call.AnyChanged());
  EXPECT_EQ(call.arguments[0], Variant("3"));
  EXPECT_EQ(call.arguments[1], Variant(int32_t{5}));
}

TEST_F(Binding, AnArgumentSetToTheValueItHadIsNotChanged) {
  const CallResult call =
      Call("Change", {Variant(7.0), Variant(1.0), Variant("a"), Variant::Null(), Variant(0.0)});
  EXPECT_THAT(call.changed, testing::ElementsAre(false, false, true, false, true));
}

TEST_F(Binding, OmittedArgumentsAreZeroAndMissing) {
  EXPECT_EQ(Call("Missing", {}).result, Variant("Empty,missing,0"));
  EXPECT_EQ(Call("Missing", {std::nullopt, Variant(), Variant(2.0)}).result,
            Variant("Empty,given,given"));
}

TEST_F(Binding, OmittedArgumentsStayOmitted) {
  const CallResult call = Call("Missing", {std::nullopt, Variant("v")});
  ASSERT_EQ(call.arguments.size(), 2U);
  EXPECT_FALSE(call.arguments[0].has_value());
  EXPECT_FALSE(call.AnyChanged());
}

TEST_F(Binding, TooFewArgumentsAreAWrongCount) { EXPECT_EQ(ErrorOf("Leave", {}), 450); }

TEST_F(Binding, TooManyArgumentsAreAWrongCount) {
  EXPECT_EQ(ErrorOf("Leave", {Variant(1.0), Variant(1.0), Variant(1.0)}), 450);
  EXPECT_EQ(ErrorOf("Text", {Variant(1.0)}), 450);
}

TEST_F(Binding, LeavingOutARequiredArgumentIsRefused) {
  EXPECT_EQ(ErrorOf("Leave", {std::nullopt, Variant(1.0)}), 449);
}

TEST_F(Binding, TakesAnObjectOfItsClass) {
  const auto other = std::make_shared<Other>();
  EXPECT_EQ(Call("Takes", {Variant(other)}).result, Variant(true));
  EXPECT_EQ(sample.other, other);
}

TEST_F(Binding, TakesNothingAndEmptyForAnObject) {
  EXPECT_EQ(Call("Takes", {Variant::Nothing()}).result, Variant(false));
  EXPECT_EQ(Call("Takes", {Variant()}).result, Variant(false));
}

TEST_F(Binding, RefusesAnotherClassOrNoObject) {
  EXPECT_EQ(ErrorOf("Takes", {Variant(std::make_shared<Sample>())}), 13);
  EXPECT_EQ(ErrorOf("Takes", {Variant(1.0)}), 13);
}

TEST_F(Binding, TellsWhatWasChangedBeforeAFailure) {
  CallResult call;
  call.arguments = {Variant(int16_t{5}), Variant("2.5")};
  EXPECT_THROW(Perform(sample, *FindMember(table, "ChangeAndFail", Access::kCall), call),
               AutomationError);
  EXPECT_THAT(call.changed, ::testing::ElementsAre(false, true));
  EXPECT_EQ(call.arguments[0], Variant(int16_t{5}));
  EXPECT_EQ(call.arguments[1], Variant(1.0));
}

TEST_F(Binding, AFailedConversionChangesNothing) {
  CallResult call;
  call.arguments = {Variant("zz"), Variant(2.5)};
  EXPECT_THROW(Perform(sample, *FindMember(table, "ChangeAndFail", Access::kCall), call),
               AutomationError);
  EXPECT_THAT(call.changed, ::testing::ElementsAre(false, false));
}

TEST_F(Binding, GivesAnObjectBack) {
  const CallResult call = Call("Give", {Variant::Nothing()});
  EXPECT_TRUE(call.changed[0]);
  EXPECT_STREQ(call.arguments[0]->object()->ClassName(), "Other");
}

TEST_F(Binding, BindsAFunctionBesideTheClass) {
  sample.number = 20;
  EXPECT_EQ(Call("Twice", {Variant(2.0)}).result, Variant(int32_t{42}));
}

TEST_F(Binding, GetsAndLetsAProperty) {
  Call("Text", {Variant(int16_t{5})}, Access::kLet);
  EXPECT_EQ(Call("Text", {}).result, Variant("5"));
}

TEST_F(Binding, GetsAndLetsAPropertyWithAnIndex) {
  Call("Cell", {Variant("3"), Variant(int16_t{10})}, Access::kLet);
  EXPECT_EQ(sample.real, 7.0);
  EXPECT_EQ(Call("Cell", {Variant(2.0)}).result, Variant(9.0));
}

TEST_F(Binding, TheValueOfALetStandsBehindItsIndex) {
  const Member& let = *FindMember(table, "Cell", Access::kLet);
  ASSERT_EQ(let.arguments.size(), 2U);
  EXPECT_STREQ(let.arguments[0].name, "i");
  EXPECT_EQ(let.arguments[0].type, ValueType::kInteger);
  EXPECT_STREQ(let.arguments[1].name, "valor");
  EXPECT_EQ(let.arguments[1].type, ValueType::kDouble);
  EXPECT_EQ(let.dispid, FindMember(table, "Cell", Access::kCall)->dispid);
}

TEST_F(Binding, GivesAnEnumerationAsItsNumber) {
  EXPECT_EQ(Call("High", {}).result, Variant(int32_t{7}));
  EXPECT_EQ(Call("Low", {}).result, Variant(int32_t{-1}));
  const Member& member = *FindMember(table, "High", Access::kCall);
  EXPECT_EQ(member.result, ValueType::kLong);
  EXPECT_STREQ(member.result_enumeration, "Grade");
  EXPECT_EQ(member.result_class, nullptr);
  EXPECT_EQ(FindMember(table, "Twice", Access::kCall)->result_enumeration, nullptr);
}

TEST(FreshVariable, IsTheZeroOfItsType) {
  EXPECT_EQ(FreshVariable(ValueType::kInteger), Variant(int16_t{0}));
  EXPECT_EQ(FreshVariable(ValueType::kText), Variant(""));
  EXPECT_EQ(FreshVariable(ValueType::kDate), Variant(OleDate()));
  EXPECT_EQ(FreshVariable(ValueType::kVariant), Variant());
  EXPECT_EQ(FreshVariable(ValueType::kObject), Variant::Nothing());
}

}  // namespace
}  // namespace ambrelio::automation
