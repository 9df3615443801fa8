#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

TEST(CreateTable, ReadsColumnsOfEveryType) {
  EXPECT_EQ(
      Printed("create table t (a text(40), b VarChar(5), c memo, d byte, e short, f long, "
              "g counter, h single, i double, j currency, k datetime, l bit, m YesNo, n text)"),
      "create table t (a TEXT(40), b VARCHAR(5), c MEMO, d BYTE, e SHORT, f LONG, g COUNTER, "
      "h SINGLE, i DOUBLE, j CURRENCY, k DATETIME, l BIT, m YESNO, n TEXT)");
}

TEST(CreateTable, ReadsWhatAColumnMustBe) {
  EXPECT_EQ(Printed("create table t (a long not null, b long unique, c counter primary key, "
                    "d long constraint k primary key, e long constraint u unique)"),
            "create table t (a LONG not null, b LONG unique, c COUNTER primary key, d LONG "
            "constraint k primary key, e LONG constraint u unique)");
}

TEST(CreateTable, ReadsDefaults) {
  EXPECT_EQ(Printed("create table t (a text(5) default 'x', b long default -1 not null, c datetime "
                    "default Now() unique, d double not null default 1 + 2)"),
            "create table t (a TEXT(5) default 'x', b LONG not null default (-1), c DATETIME "
            "default Now() unique, d DOUBLE not null default (1 + 2))");
}

TEST(CreateTable, ReadsConstraintsOfTheTable) {
  EXPECT_EQ(Printed("create table t (a long, b long, constraint k primary key (a, b), unique (b), "
                    "primary key (a), constraint [u 2] unique (a))"),
            "create table t (a LONG, b LONG, constraint k primary key (a, b), unique (b), primary "
            "key (a), constraint u 2 unique (a))");
}

TEST(CreateTable, KeepsItsLiteralsOutOfTheSlots) {
  const CreateTable create = std::get<CreateTable>(Parse("create table t (a long default 5)"));
  EXPECT_EQ(create.columns[0].default_value->literal, Variant(5));
  EXPECT_EQ(create.columns[0].default_value->slot, -1);
}

TEST(CreateTable, RefusesAFaultyStatement) {
  for (const char* text :
       {"create", "create t", "create table", "create table t", "create table t ()",
        "create table t (a long", "create table t (a long,)", "create table (a long)",
        "create table t (a text(5)", "create table t (5 long)", "create table t (constraint k)",
        "create table t (constraint primary key (a))", "create table t (primary (a))",
        "create table t (primary key)", "create table t (unique ())", "create view v"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3290) << text;
  }
}

TEST(CreateTable, RefusesAFaultyColumn) {
  for (const char* text :
       {"create table t (a)", "create table t (a text())", "create table t (a text(x))",
        "create table t (a text(0))", "create table t (a long not)",
        "create table t (a long primary)", "create table t (a long b)",
        "create table t (a text(1, 2))", "create table t (a long constraint k)",
        "create table t (a long references u)"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3292) << text;
  }
  EXPECT_EQ(ErrorNumberOf("create table t (a long default)"), 3075);
}

TEST(CreateIndex, ReadsEveryForm) {
  EXPECT_EQ(Printed("create index i on t (a)"), "create index i on t (a)");
  EXPECT_EQ(Printed("create unique index [i] on t (a asc, b desc)"),
            "create unique index i on t (a, b desc)");
  EXPECT_EQ(Printed("create index i on t (a) with primary"),
            "create index i on t (a) with primary");
  EXPECT_EQ(Printed("create index i on t (a) with disallow null"),
            "create index i on t (a) with disallow null");
  EXPECT_EQ(Printed("create index i on t (a) with ignore null"),
            "create index i on t (a) with ignore null");
}

TEST(CreateIndex, RefusesAFaultyStatement) {
  for (const char* text :
       {"create unique i on t (a)", "create index", "create index i", "create index i t (a)",
        "create index i on", "create index i on t", "create index i on t ()",
        "create index i on t (a", "create index i on t (a b)", "create index i on t (a) with",
        "create index i on t (a) with null", "create index i on t (a) with ignore",
        "create index on t (a)"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3291) << text;
  }
}

TEST(AlterTable, AddsAColumn) {
  EXPECT_EQ(Printed("alter table t add column a text(5) not null"),
            "alter table t add column a TEXT(5) not null");
  EXPECT_EQ(Printed("alter table t add a long default 0"),
            "alter table t add column a LONG default 0");
}

TEST(AlterTable, AddsAConstraint) {
  EXPECT_EQ(Printed("alter table t add constraint k primary key (a, b)"),
            "alter table t add constraint k primary key (a, b)");
}

TEST(AlterTable, DropsAColumnOrAConstraint) {
  EXPECT_EQ(Printed("alter table t drop column a"), "alter table t drop column a");
  EXPECT_EQ(Printed("alter table t drop [a b]"), "alter table t drop column a b");
  EXPECT_EQ(Printed("alter table t drop constraint k"), "alter table t drop constraint k");
}

TEST(AlterTable, RefusesAFaultyStatement) {
  for (const char* text :
       {"alter", "alter t", "alter table", "alter table t", "alter table t add",
        "alter table t add column", "alter table t drop", "alter table t drop column",
        "alter table t drop constraint", "alter table t add constraint k",
        "alter table t alter column a long", "alter table t set a"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3293) << text;
  }
}

TEST(Drop, ReadsTablesAndIndexes) {
  EXPECT_EQ(Printed("drop table [a b];"), "drop table a b");
  EXPECT_EQ(Printed("drop index i on t"), "drop index i on t");
}

TEST(Drop, RefusesAFaultyStatement) {
  for (const char* text : {"drop", "drop t", "drop table", "drop index", "drop index i",
                           "drop index i on", "drop index i t", "drop view v"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3295) << text;
  }
}

}  // namespace
}  // namespace ambrelio::embedded::sql
