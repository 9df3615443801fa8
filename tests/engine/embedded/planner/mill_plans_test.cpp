// What the library's questions cost: with all rewrites, none of them reads a table that grows with
// the season from end to end.
#include <gmock/gmock.h>

#include <set>

#include "ambrelio/engine/embedded/binder/binder.h"
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/embedded/planner/planner.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/translator/translator.h"
#include "ambrelio/frame/schema_steps.h"
#include "ambrelio/host/create_database.h"
#include "mill_statements.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using testing::HasSubstr;
using testing::Not;

// How the storage goes about the library's questions, in a mill whose file has the schema of one
// that is at work.
class MillPlans : public testing::Test {
 protected:
  MillPlans() {
    const std::string path = folder_.File("oliva.sqlite");
    const auto engine = CreateEngine();
    host::CreateMillDatabase(*engine, path, "");
    const auto database = engine->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd=");
    frame::EnsureExtPesada(*database);
    database->Close();
    storage_ = Storage::Open(path, Storage::Access::kShared);
    store_ = std::make_unique<CatalogueStore>(*storage_);
  }

  std::vector<std::string> StepsOf(const std::string& text, const PlanOptions& options = {}) {
    BoundStatement bound = Bind(sql::Parse(text), store_->Current());
    auto& query = *std::get<std::unique_ptr<bound::Query>>(bound.statement);
    Plan(query, options);
    StorageStatement plan(storage_->raw(), "explain query plan " + TranslateQuery(query));
    std::vector<std::string> steps;
    while (plan.Step()) steps.emplace_back(plan.Text(3));
    return steps;
  }

  // The steps that read a table from its beginning to its end. What the storage calls a scan of the
  // rows that it has made of a union in the statement is none.
  std::vector<std::string> ScansOf(const std::string& text, const PlanOptions& options = {}) {
    std::vector<std::string> scans;
    std::set<std::string> made;
    for (const std::string& step : StepsOf(text, options)) {
      const size_t blank = step.find(' ');
      const std::string name = step.substr(blank + 1);
      if (step.compare(0, blank, "CO-ROUTINE") == 0) made.insert("SCAN " + name);
      if (step.compare(0, blank, "SCAN") == 0 && made.count(step) == 0) scans.push_back(step);
    }
    return scans;
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_;
  std::unique_ptr<CatalogueStore> store_;
};

TEST_F(MillPlans, NoQuestionReadsATableOfTheSeasonFromEndToEnd) {
  for (const std::string& text :
       {test::kWeightOfDischarge, test::kWeighingsOfDischarge, test::kWeightInTank,
        test::kWeightOfEmptying, test::kHistoryOfDischarges}) {
    EXPECT_THAT(ScansOf(text), testing::IsEmpty()) << text;
    EXPECT_THAT(ScansOf(text, PlanOptions::Without("all")), Not(testing::IsEmpty())) << text;
  }
}

TEST_F(MillPlans, NoCompositionReadsATableOfTheSeasonFromEndToEnd) {
  for (const char* by : {"codsoc", "codpro", "codmun", "paraje"}) {
    for (const bool of_emptying : {false, true}) {
      const std::string text = test::Composition(by, of_emptying);
      EXPECT_THAT(ScansOf(text), testing::IsEmpty()) << text;
      EXPECT_THAT(ScansOf(text, PlanOptions::Without("all")), Not(testing::IsEmpty())) << text;
    }
    const std::string plain = std::string("select ") + by +
                              " as campo, sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=1) "
                              "and (DESCARGA=17)  group by " +
                              by + " order by " + by + " ";
    EXPECT_THAT(ScansOf(plain), testing::IsEmpty()) << plain;
  }
}

TEST_F(MillPlans, TheWeighingsOfADischargeAreFoundByIndexWithAndWithoutShares) {
  const std::vector<std::string> steps = StepsOf(test::kWeightOfDischarge);
  EXPECT_THAT(steps,
              testing::Contains(HasSubstr("splitDescar.discharge (tolva=? AND descarga=?)")));
  EXPECT_THAT(steps, testing::Contains(HasSubstr("PESADA.discharge (TOLVA=? AND DESCARGA=?)")));
}

TEST_F(MillPlans, TheWeighingsWithoutSharesAreFoundByIndex) {
  auto bound = Bind(
      sql::Parse("insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, "
                 "fraccion) select PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, "
                 "PESADA.MEDIANA as mediana, PESADA.CODPRO as codpro, 1 as tolva, 17 as descarga, "
                 "(1-0.25) as fraccion from PESADA left join splitDescar on (PESADA.COOPERATIVA = "
                 "splitDescar.cooperativa) and (PESADA.PARTIDA = splitDescar.partida) and "
                 "(PESADA.MEDIANA = splitDescar.mediana) and (PESADA.CODPRO = splitDescar.codpro) "
                 "where (PESADA.TOLVA=1) and (PESADA.DESCARGA=17) and isnull(splitDescar.tolva) "),
      store_->Current());
  Plan(bound.statement, {});
  const std::string sql = TranslateInsert(std::get<bound::Insert>(bound.statement), false);
  EXPECT_THAT(sql, HasSubstr("NOT EXISTS"));
  EXPECT_THAT(sql, Not(HasSubstr("LEFT JOIN")));
}

}  // namespace
}  // namespace ambrelio::embedded
