#include "ambrelio/engine/jetfile/query_schema.h"

#include <gtest/gtest.h>

#include <tuple>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "ambrelio/engine/jetfile/table_schema.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

std::vector<QueryRow> RowsOf(const JetFile& file, const std::string& name) {
  const Catalogue catalogue = ReadCatalogue(file);
  const CatalogueObject* query = catalogue.Find(ObjectType::kQuery, name);
  std::vector<QueryRow> rows = ReadQueryRows(file, catalogue);
  std::erase_if(rows, [query](const QueryRow& row) { return row.query != query->id; });
  return rows;
}

auto Content(const QueryRow& row) {
  return std::tie(row.part, row.order, row.name1, row.name2, row.expression, row.flag);
}

// What the original engine stored is stored again, in a new file.
TEST(CreateQuery, StoresTheRowsOfEverySample) {
  for (const char* sample : {"accessLike", "pivot", "queryTestV2000", "queryTestV2003"}) {
    const JetFile original = CopyOf(sample);
    const Catalogue catalogue = ReadCatalogue(original);
    JetFile file = NewJet();
    for (const CatalogueObject* query : catalogue.UserObjects(ObjectType::kQuery)) {
      SCOPED_TRACE(query->name);
      const auto expected = RowsOf(original, query->name);
      CreateQuery(file, query->name, expected, kNow);
      ASSERT_EQ(CheckText(file), "");
      const auto rows = RowsOf(file, query->name);
      ASSERT_EQ(rows.size(), expected.size());
      for (size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(Content(rows[i]), Content(expected[i])) << i;
      const Catalogue made = ReadCatalogue(file);
      EXPECT_EQ(made.Find(ObjectType::kQuery, query->name)->flags, query->flags);
    }
  }
}

TEST(CreateQuery, BeginsAndEndsThePartsAndCountsThem) {
  JetFile file = NewJet();
  std::vector<QueryRow> parts(2);
  parts[0].part = QueryPart::kInput;
  parts[0].name1 = "T";
  parts[1].part = QueryPart::kInput;
  parts[1].name1 = "U";
  CreateQuery(file, "Añadas-1", parts, kNow);
  const auto rows = RowsOf(file, "Añadas-1");
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0].part, QueryPart::kFirst);
  EXPECT_EQ(rows[1].order, std::string("\0\0\0\1", 4));
  EXPECT_EQ(rows[2].order, std::string("\0\0\0\2", 4));
  EXPECT_EQ(rows[2].name1, "U");
  EXPECT_EQ(rows[3].part, QueryPart::kLast);
  EXPECT_EQ(CheckText(file), "");
}

TEST(CreateQuery, KeepsLongExpressions) {
  JetFile file = NewJet();
  std::vector<QueryRow> parts(1);
  parts[0].part = QueryPart::kWhere;
  parts[0].expression = "x = '" + std::string(20000, 'x') + "ñ'";
  CreateQuery(file, "Q", parts, kNow);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(RowsOf(file, "q")[1].expression, parts[0].expression);
}

TEST(CreateQuery, RefusesBadNamesAndTakenOnes) {
  JetFile file = NewJet();
  CreateTable(file, "T", {Column("a", ColumnType::kLong)}, {}, kNow);
  CreateQuery(file, "Q", {}, kNow);
  EXPECT_EQ(Refused(file, [&] { CreateQuery(file, "t", {}, kNow); }), kTableExists);
  EXPECT_EQ(Refused(file, [&] { CreateQuery(file, "q", {}, kNow); }), kObjectExists);
  EXPECT_EQ(Refused(file, [&] { CreateQuery(file, "a.b", {}, kNow); }), kInvalidName);
}

TEST(DropQuery, LeavesTheOthers) {
  JetFile file = CopyOf("queryTestV2000");
  std::map<std::string, size_t> sizes;
  const Catalogue catalogue = ReadCatalogue(file);
  for (const auto* query : catalogue.UserObjects(ObjectType::kQuery)) {
    sizes[query->name] = RowsOf(file, query->name).size();
  }
  while (!sizes.empty()) {
    DropQuery(file, sizes.begin()->first);
    sizes.erase(sizes.begin());
    ASSERT_EQ(CheckText(file), "");
    for (const auto& [name, size] : sizes) EXPECT_EQ(RowsOf(file, name).size(), size);
  }
  EXPECT_TRUE(ReadQueryRows(file, ReadCatalogue(file)).empty());
}

TEST(DropQuery, RefusesOneThatIsNotThere) {
  JetFile file = NewJet();
  EXPECT_EQ(Refused(file, [&] { DropQuery(file, "Q"); }), kNotInCollection);
}

}  // namespace
}  // namespace ambrelio::jetfile
