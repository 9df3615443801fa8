#include "ambrelio/engine/embedded/storage/integrity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

class Integrity : public testing::Test {
 protected:
  Integrity() {
    FieldInfo key;
    key.name = "ID";
    key.type = dao::FieldType::kLong;
    FieldInfo name = key;
    name.name = "NOMBRE";
    name.type = dao::FieldType::kText;
    name.size = 20;
    TableInfo table;
    table.name = "SOCIO";
    table.fields = {key, name};
    catalogue_.CreateTable(table);
  }
  std::vector<std::string> Findings() { return CheckIntegrity(*storage_, catalogue_); }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("oliva.sqlite"));
  CatalogueStore catalogue_{*storage_};
};

TEST_F(Integrity, FindsNothingInASoundFile) { EXPECT_THAT(Findings(), IsEmpty()); }

TEST_F(Integrity, FindsATableThatIsNotStored) {
  storage_->Run("drop table SOCIO");
  EXPECT_THAT(Findings(), Contains(HasSubstr("SOCIO is not stored")));
}

TEST_F(Integrity, FindsAFieldThatIsNotStored) {
  storage_->Run("alter table SOCIO rename column NOMBRE to OTRO");
  EXPECT_THAT(Findings(), Contains(HasSubstr("NOMBRE of table SOCIO is not stored")));
  EXPECT_THAT(Findings(), Contains(HasSubstr("OTRO of table SOCIO is no field")));
}

TEST_F(Integrity, FindsATableThatTheCatalogueDoesNotKnow) {
  storage_->Run("create table INTRUSA(X)");
  EXPECT_THAT(Findings(), Contains(HasSubstr("does not know the table INTRUSA")));
}

TEST_F(Integrity, FindsAFieldOfNoTable) {
  storage_->Run("update \"jet.fields\" set table_id = 99 where name = 'NOMBRE'");
  EXPECT_THAT(Findings(), Contains(HasSubstr("NOMBRE is of no table")));
}

}  // namespace
}  // namespace ambrelio::embedded
