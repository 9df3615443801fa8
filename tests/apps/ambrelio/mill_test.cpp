#include "mill.h"

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/engine.h"
#include "cli_test.h"
#include "support/error_of.h"
#include "support/probe_engine.h"

namespace ambrelio::cli {
namespace {

class OpeningAMill : public test::MillCliTest {
 protected:
  Mill Open() { return {{app}, std::make_shared<test::ProbeEngine>(engine::Create(), probe)}; }

  std::shared_ptr<test::Probe> probe = std::make_shared<test::Probe>();
};

TEST_F(OpeningAMill, AnotherProcessMayBringTheDatabaseUpToDateAtTheSameMoment) {
  probe->before_new_query = [](dao::Database& database) {
    database.CreateQueryDef("ExtPesada", "select * from PESADA");
  };
  Mill mill = Open();
  EXPECT_TRUE(mill.root()->BaseAbierta());
  EXPECT_NE(mill.session().Database().QueryDefs().Item("ExtPesada")->Sql(), "select * from PESADA");
}

TEST_F(OpeningAMill, AQueryInTheWayIsAnError) {
  probe->before_new_query = [](dao::Database& database) {
    database.CreateQueryDef("EXTPESADA", "select * from PESADA");
  };
  EXPECT_EQ(test::ErrorOf([&] { Open(); }), static_cast<int>(dao::DaoError::kObjectExists));
}

}  // namespace
}  // namespace ambrelio::cli
