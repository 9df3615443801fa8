#include "ambrelio/engine/jetfile/column_rules.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/properties.h"
#include "ambrelio/engine/jetfile/table_schema.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

using enum ColumnType;

uint32_t TableOf(JetFile& file) {
  return CreateTable(file, "T", {Column("n", kLong), Column("año", kText, 20)}, {}, kNow);
}

Properties PropertiesOf(const JetFile& file, const std::string& table) {
  const Catalogue catalogue = ReadCatalogue(file);
  return {file, {catalogue.Find(ObjectType::kTable, table)->properties, {}}};
}

TEST(ColumnRules, AreNoneOfANewTable) {
  JetFile file = NewJet();
  const uint32_t table = TableOf(file);
  const ColumnRules rules = ReadRules(file, table, "AÑO");
  EXPECT_FALSE(rules.required || rules.allow_zero_length);
  EXPECT_EQ(rules.default_value, "");
  const auto before = file.changes();
  SetRules(file, table, {{"año", {}}}, kNow);
  EXPECT_TRUE(file.changes() == before);
}

TEST(ColumnRules, AreReadAsTheyWereSet) {
  JetFile file = NewJet();
  const uint32_t table = TableOf(file);
  for (const std::string& value :
       {std::string("\"ñ\" & 'ç'"), std::string(70, 'x'), std::string(10000, 'y'), std::string()}) {
    SetRules(file, table, {{"año", {true, value.empty(), value}}, {"n", {false, true, "0"}}}, kNow);
    ASSERT_EQ(CheckText(file), "");
    const ColumnRules text = ReadRules(file, table, "año");
    EXPECT_TRUE(text.required);
    EXPECT_EQ(text.allow_zero_length, value.empty());
    EXPECT_EQ(text.default_value, value);
    const ColumnRules number = ReadRules(file, table, "n");
    EXPECT_FALSE(number.required);
    EXPECT_TRUE(number.allow_zero_length);
    EXPECT_EQ(number.default_value, "0");
  }
}

TEST(ColumnRules, LeaveOtherPropertiesAsTheyAre) {
  for (const char* sample : {"testIndexPropertiesV2000", "test2V2000"}) {
    JetFile file = CopyOf(sample);
    for (const auto& [name, page] : UserTables(file)) {
      const std::vector<PropertyOwner> before = PropertiesOf(file, name).owners();
      const std::string column = ReadDefinition(file, page).columns.front().name;
      ColumnRules rules = ReadRules(file, page, column);
      rules.required = !rules.required;
      rules.default_value += "+1";
      SetRules(file, page, {{column, rules}}, kNow);
      ASSERT_EQ(CheckText(file), "") << name;
      EXPECT_EQ(ReadRules(file, page, column).default_value, rules.default_value);
      const Properties after = PropertiesOf(file, name);
      for (const PropertyOwner& owner : before) {
        for (const Property& property : owner.properties) {
          const bool changed = owner.name == column &&
                               (property.name == "Required" || property.name == "DefaultValue");
          if (changed || owner.kind > PropertyOwner::kColumn) continue;
          const Property* now = after.Find(owner.name, property.name);
          ASSERT_NE(now, nullptr) << property.name;
          EXPECT_EQ(now->value, property.value) << property.name;
          EXPECT_EQ(now->flag, property.flag) << property.name;
          EXPECT_EQ(now->type, property.type) << property.name;
        }
      }
    }
  }
}

TEST(ColumnRules, AreOfColumnsThatAreThere) {
  JetFile file = NewJet();
  const uint32_t table = TableOf(file);
  EXPECT_EQ(test::ErrorOf([&] { ReadRules(file, table, "x"); }), kNotInCollection);
  EXPECT_EQ(Refused(file,
                    [&] {
                      SetRules(file, table, {{"x", {true, false, ""}}}, kNow);
                    }),
            kNotInCollection);
}

}  // namespace
}  // namespace ambrelio::jetfile
