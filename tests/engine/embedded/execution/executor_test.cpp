// Statements as wholes: atomic, counted, kept for the next one of their shape, and what happens
// when another process holds the lock.
#include "ambrelio/engine/embedded/execution/executor.h"

#include "ambrelio/engine/embedded/execution/statement_cache.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using test::ErrorOf;

class ExecutorTest : public test::EngineTest {
 protected:
  ExecutorTest() : database_(Create()) { AddTanks(*database_); }

  int32_t Execute(const std::string& sql, int32_t options = 0) {
    database_->Execute(sql, options);
    return database_->RecordsAffected();
  }
  Variant Value(const std::string& sql) { return database_->OpenRecordset(sql)->Value(0); }

  DatabasePtr database_;
};

TEST_F(ExecutorTest, CountsWhatTheLastStatementWrote) {
  EXPECT_EQ(Execute("insert into Tanques values (1, 10)"), 1);
  EXPECT_EQ(Execute("insert into Tanques values (1, 10)"), 0);
  EXPECT_EQ(Execute("delete from Tanques where Numero > 5"), 0);
  EXPECT_EQ(Execute("create table T (a long)"), 0);
}

TEST_F(ExecutorTest, DoesNotExecuteASelect) {
  EXPECT_EQ(ErrorOf([&] { Execute("select * from Tanques"); }), 3065);
  EXPECT_EQ(ErrorOf([&] { Execute("select * from Tanques union select 1, 2 from Tanques"); }),
            3065);
}

TEST_F(ExecutorTest, UsesALiteralOfEachText) {
  for (int number = 1; number <= 5; ++number) {
    const std::string text = std::to_string(number);
    EXPECT_EQ(Execute("insert into Tanques values (" + text + ", " + text + "0)"), 1);
  }
  EXPECT_EQ(Value("select Litros from Tanques where Numero=2"), Variant(int32_t{20}));
  EXPECT_EQ(Value("select Litros from Tanques where Numero=4"), Variant(int32_t{40}));
  EXPECT_EQ(Execute("update Tanques set Litros = 7 where Numero = 2"), 1);
  EXPECT_EQ(Execute("update Tanques set Litros = 8 where Numero = 4"), 1);
  EXPECT_EQ(Value("SELECT  Litros FROM tanques WHERE numero=2"), Variant(int32_t{7}));
}

TEST_F(ExecutorTest, KeepsTheTypesOfLiteralsApart) {
  EXPECT_EQ(Value("select count(*) + 1 from Tanques"), Variant(int32_t{1}));
  EXPECT_EQ(Value("select count(*) + 1.5 from Tanques"), Variant(1.5));
  EXPECT_EQ(Value("select count(*) & 'x' from Tanques"), Variant("0x"));
}

TEST_F(ExecutorTest, KeepsStrictAndLenientStatementsApart) {
  Execute("insert into Tanques values (1, 0)");
  EXPECT_EQ(Execute("insert into Tanques values (1, 0)"), 0);
  EXPECT_EQ(ErrorOf([&] { Execute("insert into Tanques values (1, 0)", dao::kFailOnError); }),
            3022);
  EXPECT_EQ(Execute("insert into Tanques values (1, 0)"), 0);
}

TEST_F(ExecutorTest, FollowsADefinitionThatIsRolledBack) {
  workspace().BeginTrans();
  Execute("create table T (a long)");
  EXPECT_EQ(Execute("insert into T values (1)"), 1);
  workspace().Rollback();
  EXPECT_EQ(ErrorOf([&] { Execute("insert into T values (1)"); }), 3192);
}

TEST_F(ExecutorTest, FollowsADefinitionOfAnotherProcess) {
  EXPECT_EQ(ErrorOf([&] { Execute("insert into T values (1)"); }), 3192);
  const auto engine = OtherEngine();
  engine->DefaultWorkspace()
      .OpenDatabase(Path(), false, false, "")
      ->Execute("create table T (a text(3))");
  EXPECT_EQ(Execute("insert into T values (12345)"), 1);
  EXPECT_EQ(Value("select a from T"), Variant("123"));
}

TEST_F(ExecutorTest, AStatementThatFailsInTheMiddleLeavesATransactionAsItWas) {
  Execute("insert into Tanques values (1, 1)");
  workspace().BeginTrans();
  Execute("insert into Tanques values (2, 2)");
  EXPECT_EQ(ErrorOf([&] { Execute("update Tanques set Numero = Numero + 1", dao::kFailOnError); }),
            3022);
  Execute("insert into Tanques values (9, 9)");
  workspace().CommitTrans();
  EXPECT_EQ(Value("select sum(Numero) from Tanques"), Variant(12.0));
}

TEST_F(ExecutorTest, AnUpdateRowByRowWorksAtTheDeepestLevel) {
  Execute("insert into Tanques values (1, 1)");
  Execute("insert into Tanques values (2, 2)");
  for (int level = 0; level < 5; ++level) workspace().BeginTrans();
  EXPECT_EQ(Execute("update Tanques set Numero = Numero - 1"), 2);
  for (int level = 0; level < 5; ++level) workspace().CommitTrans();
  EXPECT_EQ(Value("select min(Numero) from Tanques"), Variant(int32_t{0}));
}

// Another process in the middle of a transaction.
class LockedTest : public ExecutorTest {
 protected:
  LockedTest() {
    Execute("insert into Tanques values (1, 10)");
    Execute("insert into Tanques values (2, 20)");
    other_ = other_engine_->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
    other_engine_->DefaultWorkspace().BeginTrans();
    other_->Execute("update Tanques set Litros = 99");
  }

  std::shared_ptr<dao::DBEngine> other_engine_ = OtherEngine();
  DatabasePtr other_;
};

TEST_F(LockedTest, ExecuteWritesNothingSilently) {
  EXPECT_EQ(Execute("update Tanques set Litros = 1"), 0);
}

TEST_F(LockedTest, ExecuteRowByRowWritesNothingSilently) {
  EXPECT_EQ(Execute("update Tanques set Numero = Numero + 5"), 0);
}

TEST_F(LockedTest, ExecuteRaisesWithTheFailOnErrorOption) {
  EXPECT_EQ(ErrorOf([&] { Execute("update Tanques set Litros = 1", dao::kFailOnError); }), 3218);
}

TEST_F(LockedTest, ADefinitionRaises) {
  EXPECT_EQ(ErrorOf([&] { Execute("create table T (a long)"); }), 3218);
}

TEST_F(LockedTest, ReadersSeeWhatWasCommitted) {
  EXPECT_EQ(Value("select Litros from Tanques where Numero = 1"), Variant(int32_t{10}));
  other_engine_->DefaultWorkspace().CommitTrans();
  EXPECT_EQ(Value("select Litros from Tanques where Numero = 1"), Variant(int32_t{99}));
}

// The cache by itself, with statements that do nothing.
class StatementCacheTest : public test::EngineTest {
 protected:
  StatementCacheTest() { sqlite3_open(":memory:", &db_); }
  ~StatementCacheTest() override {
    cache_.KeepVersion(-1);
    sqlite3_close(db_);
  }

  std::unique_ptr<Prepared> Make(const std::string& key, int64_t version = 0) {
    auto prepared = std::make_unique<Prepared>(StorageStatement(db_, "select 1"));
    prepared->key = key;
    prepared->version = version;
    return prepared;
  }
  bool Has(const std::string& key) {
    bool by_text = false;
    return cache_.Take(key, by_text) != nullptr;
  }

  sqlite3* db_ = nullptr;
  StatementCache cache_;
};

TEST_F(StatementCacheTest, HandsAStatementToOneUserAtATime) {
  cache_.Return(Make("a"));
  bool by_text = false;
  auto first = cache_.Take("a", by_text);
  ASSERT_NE(first, nullptr);
  EXPECT_FALSE(Has("a"));
  cache_.Return(std::move(first));
  EXPECT_TRUE(Has("a"));
}

TEST_F(StatementCacheTest, LetsTheLeastRecentlyUsedGo) {
  for (size_t i = 0; i < StatementCache::kCapacity; ++i) cache_.Return(Make(std::to_string(i)));
  bool by_text = false;
  cache_.Return(cache_.Take("0", by_text));
  cache_.Return(Make("one more"));
  EXPECT_EQ(cache_.size(), StatementCache::kCapacity);
  EXPECT_TRUE(Has("0"));
  EXPECT_FALSE(Has("1"));
  EXPECT_TRUE(Has("one more"));
}

TEST_F(StatementCacheTest, EmptiesWithTheCatalogue) {
  cache_.Return(Make("a"));
  cache_.KeepVersion(1);
  EXPECT_EQ(cache_.size(), 0U);
  cache_.Return(Make("b", 0));
  EXPECT_FALSE(Has("b"));
}

TEST_F(StatementCacheTest, RemembersWhichShapesNeedTheirText) {
  cache_.MarkByText("a");
  bool by_text = false;
  EXPECT_EQ(cache_.Take("a", by_text), nullptr);
  EXPECT_TRUE(by_text);
  EXPECT_EQ(cache_.Take("b", by_text), nullptr);
  EXPECT_FALSE(by_text);
}

}  // namespace
}  // namespace ambrelio::embedded
