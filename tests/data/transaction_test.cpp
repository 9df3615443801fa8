#include "ambrelio/data/transaction.h"

#include "ambrelio/engine/engine.h"
#include "support/mill.h"

namespace ambrelio::data {
namespace {

using ::testing::ElementsAre;

class InTransactionTest : public test::MillTest {
 protected:
  bool NameATank() {
    Execute("insert into Depositos (Codigo, Nombre) values (1, 'Uno')");
    return true;
  }
};

TEST_F(InTransactionTest, CommitsWhatIsDone) {
  EXPECT_TRUE(InTransaction(session, [&] { return NameATank(); }));
  EXPECT_EQ(probe->events.back(), "commit");
  Reopen();
  EXPECT_THAT(Rows("Depositos"), ElementsAre("1|Uno"));
}

TEST_F(InTransactionTest, RollsBackWhatIsRefused) {
  EXPECT_FALSE(InTransaction(session, [&] { return !NameATank(); }));
  EXPECT_EQ(probe->events.back(), "rollback");
  EXPECT_THAT(Rows("Depositos"), ElementsAre());
}

TEST_F(InTransactionTest, LeavesTheLevelOpenOnAnError) {
  EXPECT_EQ(ErrorOf([&] {
              InTransaction(session, [&]() -> bool {
                NameATank();
                Raise(RuntimeError::kOverflow);
              });
            }),
            6);
  EXPECT_EQ(probe->level, 1);
  EXPECT_THAT(Rows("Depositos"), ElementsAre("1|Uno"));
  Reopen();
  EXPECT_THAT(Rows("Depositos"), ElementsAre());
}

TEST_F(InTransactionTest, BeginsNothingOverAClosedDatabase) {
  root.Cerrar();
  probe->events.clear();
  EXPECT_EQ(ErrorOf([&] { InTransaction(session, [] { return true; }); }), 3420);
  EXPECT_THAT(probe->events, ElementsAre());
  // What is written next lasts.
  Reopen();
  NameATank();
  Reopen();
  EXPECT_THAT(Rows("Depositos"), ElementsAre("1|Uno"));
}

TEST_F(InTransactionTest, BeginsNothingBeforeTheFirstOpening) {
  Session fresh;
  fresh.UseEngine(engine::Create());
  EXPECT_EQ(ErrorOf([&] { InTransaction(fresh, [] { return true; }); }), 91);
  EXPECT_EQ(ErrorOf([&] { fresh.Workspace().Rollback(); }), 3034);
}

TEST_F(InTransactionTest, LosesWhatIsCommittedInsideALevelLeftOpen) {
  session.Workspace().BeginTrans();
  EXPECT_TRUE(InTransaction(session, [&] { return NameATank(); }));
  Reopen();
  EXPECT_THAT(Rows("Depositos"), ElementsAre());
}

}  // namespace
}  // namespace ambrelio::data
