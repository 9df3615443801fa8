#include "ambrelio/frame/connection.h"

#include <fstream>

#include "support/mill.h"

namespace ambrelio::frame {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class Connection : public test::MillTest {
 protected:
  void SetUp() override {
    session.UseEngine(std::make_shared<test::ProbeEngine>(test::MakeMillEngine(), probe));
    host::CreateMillDatabase(session.Engine(), folder.File("open.mdb"), "");
    host::CreateMillDatabase(session.Engine(), folder.File("kept.mdb"), "Secreto");
    probe->events.clear();
  }

  bool Open(const std::string& file, const std::string& password = "") {
    OpenDatabaseSession(session, folder.File(file), password);
    return session.IsOpen();
  }
};

TEST_F(Connection, OpensADatabaseWithoutAPassword) {
  EXPECT_TRUE(Open("open.mdb"));
  EXPECT_THAT(probe->connects, ElementsAre(";pwd="));
  EXPECT_EQ(session.Database().Name(), folder.File("open.mdb"));
}

TEST_F(Connection, OpensADatabaseWithItsPassword) {
  EXPECT_TRUE(Open("kept.mdb", "Secreto"));
  EXPECT_THAT(probe->connects, ElementsAre(";pwd=Secreto"));
}

TEST_F(Connection, AWrongPasswordLeavesItClosed) {
  EXPECT_FALSE(Open("kept.mdb", "secreto"));
  EXPECT_FALSE(Open("kept.mdb"));
  EXPECT_EQ(ErrorOf([&] { session.Database(); }), 91);
}

TEST_F(Connection, AMissingFileLeavesItClosed) { EXPECT_FALSE(Open("nowhere.mdb")); }

TEST_F(Connection, AMissingFolderLeavesItClosed) { EXPECT_FALSE(Open("nowhere/oliva.mdb")); }

TEST_F(Connection, AFileThatIsNoDatabaseLeavesItClosed) {
  std::ofstream(folder.File("note.mdb")) << "Pendiente: pedir la base de datos.";
  EXPECT_FALSE(Open("note.mdb"));
}

TEST_F(Connection, ReopeningClosesWhatWasOpen) {
  ASSERT_TRUE(Open("open.mdb"));
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(Open("kept.mdb", "Secreto")); }), ElementsAre("close"));
  EXPECT_EQ(session.Database().Name(), folder.File("kept.mdb"));
}

TEST_F(Connection, AFailedReopeningLeavesItClosed) {
  ASSERT_TRUE(Open("open.mdb"));
  EXPECT_FALSE(Open("nowhere.mdb"));
  EXPECT_THAT(probe->events, Contains("close"));
  EXPECT_EQ(ErrorOf([&] { session.Database(); }), 91);
}

TEST_F(Connection, AFailedClosingIsNotTrapped) {
  ASSERT_TRUE(Open("open.mdb"));
  probe->FailAt(1, 3218);
  EXPECT_EQ(ErrorOf([&] { Open("kept.mdb", "Secreto"); }), 3218);
}

TEST_F(Connection, ReopeningRollsBackWhatWasLeftUncommitted) {
  ASSERT_TRUE(Open("open.mdb"));
  session.Workspace().BeginTrans();
  Execute("insert into Depositos (Codigo, Nombre) values (1, 'Uno')");
  ASSERT_TRUE(Open("open.mdb"));
  EXPECT_THAT(Rows("Depositos"), ElementsAre());
  EXPECT_EQ(ErrorOf([&] { session.Workspace().CommitTrans(); }), 3034);
}

}  // namespace
}  // namespace ambrelio::frame
