// That what is translated can use the indexes of its tables, and keeps literals out of the text.
#include "ambrelio/engine/embedded/translator/translator.h"

#include <gmock/gmock.h>

#include "ambrelio/engine/embedded/binder/binder.h"
#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using testing::HasSubstr;
using testing::Not;

class TranslatorTest : public testing::Test {
 protected:
  TranslatorTest() {
    Executor executor(*storage_, store_, PlanOptions());
    executor.Execute(
        "create table Descargas (Tolva short, Descarga long, Deposito short, Fraccion double, "
        "constraint k primary key (Tolva, Descarga, Deposito))",
        false);
    executor.Execute("create table Socio (codigo long primary key, nombre text(20))", false);
    executor.Execute("create unique index porNombre on Socio (nombre)", false);
  }

  BoundStatement BoundOf(const std::string& text) {
    return Bind(sql::Parse(text), store_.Current());
  }
  std::string QueryOf(const std::string& text) {
    const BoundStatement bound = BoundOf(text);
    return TranslateQuery(*std::get<std::unique_ptr<bound::Query>>(bound.statement));
  }
  // How the storage goes about it.
  std::string PlanOf(const std::string& text) {
    StorageStatement plan(storage_->raw(), "explain query plan " + QueryOf(text));
    std::string steps;
    while (plan.Step()) steps += std::string(plan.Text(3)) + "\n";
    return steps;
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("t.mdb"));
  CatalogueStore store_{*storage_};
};

TEST_F(TranslatorTest, LiteralsBecomeParameters) {
  const std::string sql = QueryOf("select Fraccion * 0.5 from Descargas where Tolva = 31");
  EXPECT_THAT(sql, HasSubstr("?1"));
  EXPECT_THAT(sql, HasSubstr("?2"));
  EXPECT_THAT(sql, Not(HasSubstr("31")));
}

TEST_F(TranslatorTest, LiteralsOfAStoredQueryStayInTheText) {
  store_.CreateQuery({"Q", "select Fraccion * 0.5 as f, 'it''s' as t from Descargas"});
  const std::string sql = QueryOf("select f, t from Q where f > 1");
  EXPECT_THAT(sql, HasSubstr("0.5"));
  EXPECT_THAT(sql, HasSubstr("'it''s'"));
  EXPECT_THAT(sql, Not(HasSubstr("?2")));
}

TEST_F(TranslatorTest, ATextIsLookedUpInItsIndex) {
  EXPECT_THAT(PlanOf("select codigo from Socio where nombre = 'ana'"),
              HasSubstr("SEARCH t1 USING INDEX Socio.porNombre (nombre=?)"));
}

TEST_F(TranslatorTest, ATextOrderUsesItsIndex) {
  EXPECT_THAT(PlanOf("select codigo from Socio order by nombre"),
              HasSubstr("USING INDEX Socio.porNombre"));
}

TEST_F(TranslatorTest, TheOrderOfTheKeyCostsNoSorting) {
  EXPECT_THAT(PlanOf("select * from Descargas where (Tolva=1) order by Descarga"),
              Not(HasSubstr("TEMP B-TREE")));
  EXPECT_THAT(PlanOf("select * from Descargas"), Not(HasSubstr("TEMP B-TREE")));
}

TEST_F(TranslatorTest, TheHighestOfAKeyIsFoundAtOnce) {
  EXPECT_THAT(PlanOf("select max(Descarga) from Descargas where Tolva = 3"),
              HasSubstr("SEARCH t1 USING COVERING INDEX Descargas.k (Tolva=?)"));
}

TEST_F(TranslatorTest, AnUpdateOfAKeyGoesRowByRowAndNoOther) {
  const auto row_by_row = [&](const std::string& text) {
    return GoesRowByRow(std::get<bound::Update>(BoundOf(text).statement));
  };
  EXPECT_TRUE(row_by_row("update Descargas set Deposito = 0"));
  EXPECT_TRUE(row_by_row("update Socio set nombre = 'x'"));
  EXPECT_FALSE(row_by_row("update Descargas set Fraccion = 0 where Deposito = 3"));
  EXPECT_TRUE(row_by_row("update Descargas inner join Socio on Tolva = codigo set Fraccion = 0"));
}

TEST_F(TranslatorTest, OnlyASelectOverOneTableIsADynaset) {
  const auto is_dynaset = [&](const std::string& text) {
    const BoundStatement bound = BoundOf(text);
    return IsDynaset(*std::get<std::unique_ptr<bound::Query>>(bound.statement));
  };
  EXPECT_TRUE(is_dynaset("select Tolva + 1 from Descargas where Deposito = 3 order by Fraccion"));
  EXPECT_FALSE(is_dynaset("select max(Tolva) from Descargas"));
  EXPECT_FALSE(is_dynaset("select Tolva from Descargas group by Tolva"));
  EXPECT_FALSE(is_dynaset("select distinct Tolva from Descargas"));
  EXPECT_FALSE(is_dynaset("select top 1 Tolva from Descargas"));
  EXPECT_FALSE(is_dynaset("select Tolva from Descargas, Socio"));
  EXPECT_FALSE(is_dynaset("select Tolva from Descargas union select codigo from Socio"));
  EXPECT_FALSE(is_dynaset("select t from (select Tolva as t from Descargas) as d"));
}

TEST_F(TranslatorTest, ALiteralThatIsComparedTiesTheStatementToItsText) {
  EXPECT_TRUE(BoundOf("select Tolva + 1 from Descargas group by Tolva + 1").literals_matter);
  EXPECT_FALSE(
      BoundOf("select Tolva from Descargas where Tolva = 1 group by Tolva").literals_matter);
}

}  // namespace
}  // namespace ambrelio::embedded
