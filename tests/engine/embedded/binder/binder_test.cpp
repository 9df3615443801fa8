// What the binder makes of names, types, keys and orders. What it refuses stands in cases/.
#include "ambrelio/engine/embedded/binder/binder.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/embedded/sql/parser.h"
#include "support/error_of.h"

namespace ambrelio::embedded {
namespace {

using bound::ColumnPart;
using bound::ExprKind;
using test::ErrorOf;

FieldInfo MakeField(const std::string& name, dao::FieldType type, int32_t size = 0) {
  FieldInfo field;
  field.name = name;
  field.type = type;
  field.size = size;
  return field;
}

class BinderTest : public testing::Test {
 protected:
  BinderTest() {
    TableInfo tank;
    tank.name = "Tanque";
    tank.fields = {MakeField("Sala", dao::FieldType::kInteger),
                   MakeField("Numero", dao::FieldType::kLong),
                   MakeField("Nombre", dao::FieldType::kText, 20)};
    IndexInfo key;
    key.name = "key";
    key.primary = key.unique = key.required = true;
    key.columns = {{"Numero", false}, {"Sala", false}};
    tank.indexes = {key};
    TableInfo plain;
    plain.name = "Zona";
    plain.fields = {MakeField("Codigo", dao::FieldType::kLong)};
    catalogue_.tables = {tank, plain};
    catalogue_.queries = {{"Doble", "select Numero * 2 as d from Tanque where Numero > 5"}};
  }

  // The bound query, kept for as long as the test.
  const bound::Query& Query(const std::string& text) {
    statements_.push_back(Bind(sql::Parse(text), catalogue_));
    return *std::get<std::unique_ptr<bound::Query>>(statements_.back().statement);
  }

  Catalogue catalogue_;
  std::vector<BoundStatement> statements_;
};

TEST_F(BinderTest, AColumnKnowsItsSourceAndField) {
  const auto& query = Query("select nUMERO from tanque");
  const bound::Expr& item = *query.select->items[0];
  EXPECT_EQ(item.kind, ExprKind::kColumn);
  EXPECT_EQ(item.column.source, query.select->from[0].id);
  EXPECT_EQ(item.column.field, &catalogue_.tables[0].fields[1]);
  EXPECT_EQ(query.columns[0].name, "Numero");
}

TEST_F(BinderTest, EverySourceHasANumberOfItsOwn) {
  const auto& query = Query("select a.Numero from Tanque as a, (select Codigo from Zona) as b");
  const auto& from = query.select->from;
  const int inner = from[1].query->select->from[0].id;
  EXPECT_NE(from[0].id, from[1].id);
  EXPECT_NE(from[0].id, inner);
  EXPECT_NE(from[1].id, inner);
}

TEST_F(BinderTest, ATextColumnKeepsItsSize) {
  EXPECT_EQ(Query("select Nombre as n from Tanque").columns[0].size, 20);
  EXPECT_EQ(Query("select n from (select Nombre as n from Tanque) as q").columns[0].size, 20);
  EXPECT_EQ(Query("select Nombre & 'x' as n from Tanque").columns[0].size, 255);
}

TEST_F(BinderTest, AnOrderIsCompletedByThePrimaryKey) {
  const auto& query = Query("select Nombre from Tanque order by Nombre desc, Sala");
  EXPECT_EQ(query.stated_order, 2U);
  ASSERT_EQ(query.order.size(), 3U);
  EXPECT_TRUE(query.order[0].descending);
  EXPECT_EQ(query.order[2].expr->column.field->name, "Numero");
  EXPECT_FALSE(query.order[2].descending);
}

TEST_F(BinderTest, ATableWithoutAKeyIsOrderedByItsRowIds) {
  const auto& query = Query("select Codigo from Zona");
  ASSERT_EQ(query.order.size(), 1U);
  EXPECT_EQ(query.order[0].expr->column.part, ColumnPart::kRowId);
}

TEST_F(BinderTest, AJoinIsOrderedByTheKeysOfItsSourcesInTheirOrder) {
  const auto& query = Query("select Codigo from Zona left join Tanque on Codigo = Numero");
  ASSERT_EQ(query.order.size(), 3U);
  EXPECT_EQ(query.order[0].expr->column.part, ColumnPart::kRowId);
  EXPECT_EQ(query.order[1].expr->column.field->name, "Numero");
  EXPECT_EQ(query.order[2].expr->column.field->name, "Sala");
}

TEST_F(BinderTest, AQueryIsOrderedByTheKeysInsideIt) {
  const auto& query = Query("select d from Doble");
  ASSERT_EQ(query.order.size(), 2U);
  EXPECT_EQ(query.order[0].expr->column.part, ColumnPart::kKey);
}

TEST_F(BinderTest, GroupsAreOrderedByThemselves) {
  const auto& query =
      Query("select Sala, count(*) from Tanque group by Nombre, Sala order by Sala");
  ASSERT_EQ(query.order.size(), 2U);
  EXPECT_EQ(query.order[1].expr->column.field->name, "Nombre");
}

TEST_F(BinderTest, AConstantOrdersNothing) {
  EXPECT_EQ(Query("select Sala from Tanque order by 'x'").stated_order, 0U);
}

TEST_F(BinderTest, LiteralsKeepTheirSlotsExceptInStoredQueries) {
  const auto& query = Query("select d from Doble where d = 7");
  EXPECT_EQ(query.select->where->args[1]->slot, 0);
  const auto& inner = *query.select->from[0].query->select;
  EXPECT_EQ(inner.where->args[1]->slot, -1);
  EXPECT_EQ(inner.where->args[1]->literal, Variant(int32_t{5}));
}

TEST_F(BinderTest, AnUpdateDissolvesItsQueriesIntoTables) {
  statements_.push_back(Bind(sql::Parse("update (select Nombre as n from Tanque, Zona where "
                                        "Numero = Codigo) as q set q.n = 'x' where Codigo > 1"),
                             catalogue_));
  const auto& update = std::get<bound::Update>(statements_.back().statement);
  int leaves = 0;
  bound::ForEachLeaf(update.from[0], [&](const bound::Source& leaf) {
    EXPECT_NE(leaf.table, nullptr);
    ++leaves;
  });
  EXPECT_EQ(leaves, 2);
  ASSERT_EQ(update.targets.size(), 1U);
  EXPECT_EQ(update.targets[0].table, &catalogue_.tables[0]);
  EXPECT_EQ(update.targets[0].values[0].field->name, "Nombre");
}

TEST_F(BinderTest, AnUnknownNameCountsOnceInAnySpelling) {
  try {
    Bind(sql::Parse("select x, X, q.x from Tanque where y = x"), catalogue_);
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 3061);
    EXPECT_NE(error.description().find("3 (y, x, q.x)"), std::string::npos) << error.description();
  }
}

TEST_F(BinderTest, ACopyOfATreeIsTheSameTree) {
  const auto& query = Query(
      "select IIf(Numero in (1, 2), Nombre, 'x') as a from Tanque where Sala between 1 and 2");
  bool literals_compared = false;
  const auto copy = bound::Clone(query);
  EXPECT_TRUE(bound::SameExpr(*query.select->items[0], *copy->select->items[0], literals_compared));
  EXPECT_FALSE(literals_compared) << "each literal is the same one";
  EXPECT_TRUE(bound::SameExpr(*query.select->where, *copy->select->where, literals_compared));
  EXPECT_FALSE(bound::SameExpr(*query.select->items[0], *copy->select->where, literals_compared));
  EXPECT_EQ(copy->order.size(), query.order.size());
}

TEST_F(BinderTest, TwoLiteralsAreTheSameByTheirValues) {
  const auto& query = Query("select Numero + 1, Numero + 1, Numero + 2 from Tanque");
  const auto& items = query.select->items;
  bool literals_compared = false;
  EXPECT_TRUE(bound::SameExpr(*items[0], *items[1], literals_compared));
  EXPECT_TRUE(literals_compared);
  EXPECT_FALSE(bound::SameExpr(*items[0], *items[2], literals_compared));
}

TEST_F(BinderTest, DefinitionsHaveNoBoundForm) {
  EXPECT_EQ(ErrorOf([&] { Bind(sql::Parse("drop table Tanque"), catalogue_); }), 3129);
}

}  // namespace
}  // namespace ambrelio::embedded
