// Files whose schema was made here, as mdbtools reads them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "ambrelio/engine/jetfile/column_rules.h"
#include "ambrelio/engine/jetfile/column_schema.h"
#include "ambrelio/engine/jetfile/index_schema.h"
#include "ambrelio/engine/jetfile/query_schema.h"
#include "ambrelio/engine/jetfile/table_schema.h"
#include "engine/jetfile/mdbtools_program.h"
#include "engine/jetfile/mdbtools_text.h"
#include "engine/jetfile/schema_test.h"
#include "support/temp_folder.h"

namespace ambrelio::jetfile {
namespace {

using enum ColumnType;
using testing::HasSubstr;

class SchemaBesideMdbtools : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasMdbtools()) GTEST_SKIP() << "mdbtools is not installed";
  }

  // Puts the file on the disk and runs a command with its path behind it.
  std::string Tell(const JetFile& file, const std::string& command, const std::string& rest = "") {
    const std::string path = folder_.File("test.mdb");
    const Bytes bytes = StoredBytes(file);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return OutputOf("LC_ALL=C.UTF-8 " + command + " '" + path + "' " + rest);
  }
  void ExpectSame(const JetFile& file) {
    const std::string tell = AMBRELIO_SOURCE_DIR "/tests/engine/jetfile/expected/tell";
    EXPECT_EQ(MdbtoolsText(file), Tell(file, tell));
  }

 private:
  test::TempFolder folder_;
};

uint32_t TableOfRows(JetFile& file, const char* name) {
  const uint32_t table = CreateTable(
      file, name,
      {Column("Código", kLong), Column("Ñandú-2", kText, 30), Column("l'any", kDate),
       Column("ß 1", kMemo), Column("€", kMoney), Column("sí", kBoolean), Column("x", kDouble)},
      {Primary(IndexOver("clave", {"Código"})), IndexOver("por ß", {"Ñandú-2", "€"})}, kNow);
  AddRows(
      file, table,
      {{1, "Génova", OleDate::FromDays(38000.25), "corto", Currency{125000}, true, 0.5},
       {2, Variant::Null(), Variant::Null(), std::string(9000, 'm'), Variant::Null(), false, -1.0},
       {3, "peña", OleDate::FromDays(2), Variant::Null(), Currency{-1}, true, 1e9}});
  return table;
}

TEST_F(SchemaBesideMdbtools, ReadsNewTables) {
  JetFile file = NewJet();
  for (const char* name : {"Añada", "Straße-7", "2003 d oli", "ÇÀ"}) TableOfRows(file, name);
  ExpectSame(file);
  EXPECT_EQ(Tell(file, "mdb-tables -1"), "Añada\nStraße-7\n2003 d oli\nÇÀ\n");
}

// mdbtools lists columns in the order of their numbers. Of one that a row does not know it reads
// whatever stands behind the row's last mark: the eighth still has its mark in the first byte.
TEST_F(SchemaBesideMdbtools, ReadsTablesThatWereChanged) {
  for (const char* sample : {"", "test2V2000", "compIndexTestV2000"}) {
    JetFile file = *sample == '\0' ? NewJet() : CopyOf(sample);
    const uint32_t table = TableOfRows(file, "Añada");
    AddColumn(file, table, Column("entero", kInteger), kNow);
    DropIndex(file, table, "por ß", kNow);
    DropColumn(file, table, 1, kNow);
    DropColumn(file, table, 6, kNow);
    ChangeColumn(file, table, 3, "notas", 3, kNow);
    AddRows(file, table, {{4, Variant::Null(), "nota", Variant::Null(), true, int16_t{7}}});
    RenameTable(file, table, "Otra añada", kNow);
    ASSERT_EQ(CheckText(file), "");
    ExpectSame(file);
  }
}

TEST_F(SchemaBesideMdbtools, ReadsATableThatGotItsFirstVariableColumn) {
  JetFile file = NewJet();
  const uint32_t table = CreateTable(file, "T", {Column("n", kLong), Column("b", kByte)}, {}, kNow);
  AddRows(file, table, {{1, uint8_t{1}}, {2, Variant::Null()}});
  AddColumn(file, table, Column("t", kText, 10), kNow);
  AddRows(file, table, {{3, uint8_t{3}, "tres"}});
  ExpectSame(file);
}

TEST_F(SchemaBesideMdbtools, ReadsADefinitionOfSeveralPages) {
  JetFile file = NewJet();
  std::vector<NewColumn> columns;
  for (int i = 0; i < 200; ++i) {
    columns.push_back(Column("una columna con un nombre largo " + std::to_string(i), kLong));
  }
  const uint32_t table = CreateTable(file, "T", columns, {}, kNow);
  AddRows(file, table, {std::vector<Variant>(200, int32_t{7})});
  ExpectSame(file);
}

TEST_F(SchemaBesideMdbtools, ReadsIndexesAndProperties) {
  JetFile file = NewJet();
  const uint32_t table = TableOfRows(file, "Añada");
  CreateIndex(file, table, Unique(IndexOver("único", {"x", "Ñandú-2"})), kNow);
  SetRules(file, table, {{"Ñandú-2", {true, false, ""}}}, kNow);
  const std::string schema = Tell(file, "mdb-schema --indexes --not-null", "mysql");
  EXPECT_THAT(schema, HasSubstr("ADD UNIQUE INDEX `único` (`x`, `Ñandú-2`)"));
  EXPECT_THAT(schema, HasSubstr("ADD PRIMARY KEY (`Código`)"));
  EXPECT_THAT(schema, HasSubstr("ADD INDEX `por ß` (`Ñandú-2`, `€`)"));
  EXPECT_THAT(schema, HasSubstr("varchar (30) NOT NULL"));
  EXPECT_THAT(Tell(file, "mdb-prop", "'Añada' LvProp"), HasSubstr("Required: yes"));
}

TEST_F(SchemaBesideMdbtools, ReadsQueries) {
  JetFile file = NewJet();
  TableOfRows(file, "Añada");
  std::vector<QueryRow> parts(3);
  parts[0].part = QueryPart::kInput;
  parts[0].name1 = "Añada";
  parts[1].part = QueryPart::kOutput;
  parts[1].expression = "Código";
  parts[2].part = QueryPart::kWhere;
  parts[2].expression = "x > 0";
  CreateQuery(file, "Consulta-ñ", parts, kNow);
  CreateQuery(file, "otra", parts, kNow);
  DropQuery(file, "otra");
  EXPECT_THAT(Tell(file, "mdb-queries -L"), testing::StartsWith("Consulta-ñ"));
  const std::string sql = Tell(file, "mdb-queries", "'Consulta-ñ'");
  EXPECT_THAT(sql, HasSubstr("Código FROM [Añada]"));
  EXPECT_THAT(sql, HasSubstr("WHERE x > 0"));
}

}  // namespace
}  // namespace ambrelio::jetfile
