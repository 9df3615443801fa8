#include "ambrelio/value/variant.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace ambrelio {
namespace {

class Hopper : public Object {
 public:
  const char* ClassName() const override { return "Tolva"; }
};

TEST(Variant, IsEmptyAtFirst) {
  EXPECT_TRUE(Variant().is_empty());
  EXPECT_EQ(Variant().type(), VariantType::kEmpty);
}

TEST(Variant, KeepsTheTypeItWasMadeFrom) {
  EXPECT_EQ(Variant::Null().type(), VariantType::kNull);
  EXPECT_EQ(Variant(true).type(), VariantType::kBoolean);
  EXPECT_EQ(Variant(uint8_t{1}).type(), VariantType::kByte);
  EXPECT_EQ(Variant(int16_t{1}).type(), VariantType::kInteger);
  EXPECT_EQ(Variant(int32_t{1}).type(), VariantType::kLong);
  EXPECT_EQ(Variant(1.0F).type(), VariantType::kSingle);
  EXPECT_EQ(Variant(1.0).type(), VariantType::kDouble);
  EXPECT_EQ(Variant(Currency{1}).type(), VariantType::kCurrency);
  EXPECT_EQ(Variant(OleDate()).type(), VariantType::kDate);
  EXPECT_EQ(Variant("text").type(), VariantType::kText);
  EXPECT_EQ(Variant(std::string_view("text")).type(), VariantType::kText);
  EXPECT_EQ(Variant(Variant::Array()).type(), VariantType::kArray);
  EXPECT_EQ(Variant::Nothing().type(), VariantType::kObject);
}

TEST(Variant, IsMadeFromNoTypeThatWouldHaveToBeConverted) {
  EXPECT_FALSE((std::is_constructible_v<Variant, int64_t>));
  EXPECT_FALSE((std::is_constructible_v<Variant, unsigned>));
  EXPECT_FALSE((std::is_constructible_v<Variant, char>));
  EXPECT_FALSE((std::is_constructible_v<Variant, void*>));
}

TEST(Variant, RefusesToShowAnotherType) {
  EXPECT_THROW(Variant(1.0).as<int32_t>(), std::bad_variant_access);
}

TEST(Variant, EqualsOnlyTheSameTypeAndValue) {
  EXPECT_EQ(Variant(int16_t{2}), Variant(int16_t{2}));
  EXPECT_NE(Variant(int16_t{2}), Variant(int32_t{2}));
  EXPECT_NE(Variant(), Variant::Null());
  EXPECT_NE(Variant("a"), Variant("A"));
}

TEST(Variant, CopiesArraysDeeply) {
  Variant list = Variant::Array{Variant(int16_t{1}), Variant(Variant::Array{Variant("x")})};
  Variant copy = list;
  copy.array()[1].array()[0] = Variant("y");
  EXPECT_EQ(list.array()[1].array()[0], Variant("x"));
  EXPECT_NE(list, copy);
}

TEST(Variant, SharesObjectsAndComparesThemByIdentity) {
  auto hopper = std::make_shared<Hopper>();
  Variant first = hopper;
  Variant second = first;
  EXPECT_EQ(first, second);
  EXPECT_EQ(second.object(), hopper);
  EXPECT_NE(first, Variant(std::make_shared<Hopper>()));
}

TEST(TypeName, IsTheLanguagesNameOfTheType) {
  EXPECT_EQ(TypeName({}), "Empty");
  EXPECT_EQ(TypeName(Variant::Null()), "Null");
  EXPECT_EQ(TypeName(true), "Boolean");
  EXPECT_EQ(TypeName(uint8_t{1}), "Byte");
  EXPECT_EQ(TypeName(int16_t{1}), "Integer");
  EXPECT_EQ(TypeName(int32_t{1}), "Long");
  EXPECT_EQ(TypeName(1.0F), "Single");
  EXPECT_EQ(TypeName(1.0), "Double");
  EXPECT_EQ(TypeName(Currency{1}), "Currency");
  EXPECT_EQ(TypeName(OleDate()), "Date");
  EXPECT_EQ(TypeName("text"), "String");
  EXPECT_EQ(TypeName(Variant::Array()), "Variant()");
}

TEST(TypeName, IsTheClassOfAnObject) {
  EXPECT_EQ(TypeName(std::make_shared<Hopper>()), "Tolva");
  EXPECT_EQ(TypeName(Variant::Nothing()), "Nothing");
}

}  // namespace
}  // namespace ambrelio
