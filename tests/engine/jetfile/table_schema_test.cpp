#include "ambrelio/engine/jetfile/table_schema.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/column_rules.h"
#include "ambrelio/engine/jetfile/query_schema.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

using enum ColumnType;

std::vector<NewColumn> EveryType() {
  return {Column("sí", kBoolean),     Column("byte", kByte),   Column("integer", kInteger),
          Column("long", kLong),      Column("money", kMoney), Column("single", kSingle),
          Column("double", kDouble),  Column("date", kDate),   Column("binary", kBinary, 510),
          Column("text", kText, 255), Column("ole", kOle),     Column("memo", kMemo),
          Column("guid", kGuid)};
}

uint32_t Create(JetFile& file, const char* name, const std::vector<NewIndex>& indexes = {}) {
  return CreateTable(file, name, EveryType(), indexes, kNow);
}

TEST(CreateTable, MakesATableThatTakesRows) {
  for (const char* sample :
       {"", "adox_jet4", "emptyJet4", "test2V2000", "db-enc", "indexTestV2000"}) {
    SCOPED_TRACE(sample);
    JetFile file = *sample == '\0' ? NewJet() : CopyOf(sample);
    const auto others = PagesOfOthers(file, 0);
    const uint32_t page = Create(file, "Año de la oliva",
                                 {Primary(IndexOver("clave", {"long", "text"})),
                                  IndexOver("por fecha", {"date", "guid", "byte"})});
    ASSERT_EQ(CheckText(file), "");
    EXPECT_EQ(UserTables(file).at("Año de la oliva"), page);
    RandomValues random(1);
    const TableDefinition definition = ReadDefinition(file, page);
    std::vector<std::vector<Variant>> rows;
    for (int32_t i = 0; i < 300; ++i) {
      rows.push_back(random.Row(definition));
      rows.back()[3] = i;
      rows.back()[9] = "x";
    }
    AddRows(file, page, rows);
    EXPECT_EQ(CheckText(file), "");
    EXPECT_EQ(RowsOf(file, page).size(), rows.size());
    for (const auto& [number, bytes] : others) EXPECT_EQ(*file.Read(number), *bytes) << number;
  }
}

TEST(CreateTable, ListsItWithItsOwnerItsDatesAndItsRights) {
  JetFile file = CopyOf("indexTestV2000");
  const Catalogue before = ReadCatalogue(file);
  const uint32_t page = Create(file, "T");
  const Catalogue catalogue = ReadCatalogue(file);
  const CatalogueObject* table = catalogue.Find(ObjectType::kTable, "T");
  const CatalogueObject* old = catalogue.Find(ObjectType::kTable, "Table1");
  EXPECT_EQ(table->owner, old->owner);
  EXPECT_EQ(table->parent, old->parent);
  EXPECT_EQ(table->flags, 0U);
  EXPECT_EQ(table->created, kNow);
  EXPECT_EQ(table->updated, kNow);
  const auto rights_on = [&catalogue](uint32_t id) {
    std::vector<std::pair<std::string, uint32_t>> rights;
    for (const AccessRight& right : catalogue.rights) {
      EXPECT_FALSE(right.object == id && right.inheritable);
      if (right.object == id) rights.emplace_back(right.account, right.mask);
    }
    std::sort(rights.begin(), rights.end());
    return rights;
  };
  EXPECT_EQ(rights_on(page), rights_on(old->id));
}

TEST(CreateTable, KeepsTheOrderOfColumnsThatIsAskedFor) {
  JetFile file = NewJet();
  std::vector<NewColumn> columns = EveryType();
  columns[0].ordinal = 20;
  columns[1].ordinal = 5;
  columns[2].ordinal = 5;
  columns[3].ordinal = 0;
  const auto definition = ReadDefinition(file, CreateTable(file, "T", columns, {}, kNow));
  std::vector<std::string> names;
  for (const ColumnDefinition& column : definition.columns) names.push_back(column.name);
  names.resize(4);
  EXPECT_EQ(names, (std::vector<std::string>{"long", "byte", "integer", "sí"}));
  EXPECT_EQ(CheckText(file), "");
}

TEST(CreateTable, TakesNamesOfAllSorts) {
  JetFile file = NewJet();
  const std::string longest = "ñ-" + std::string(62, 'x');
  for (const std::string& name :
       {std::string("Pesada de 2003"), std::string("Straße"), std::string("l'oli-2"),
        std::string("Òliba ÇÀ"), std::string("123"), longest}) {
    CreateTable(file, name, {Column(name, kText, 10)}, {Unique(IndexOver(name, {name}))}, kNow);
    ASSERT_EQ(CheckText(file), "") << name;
    EXPECT_TRUE(UserTables(file).contains(name));
  }
}

TEST(CreateTable, ReachesEveryLimit) {
  JetFile file = NewJet();
  std::vector<NewColumn> columns;
  for (int i = 0; i < 255; ++i) {
    columns.push_back(
        Column("una columna con un nombre bastante largo " + std::to_string(i), kLong));
  }
  std::vector<NewIndex> indexes;
  for (size_t i = 0; i < 32; ++i) {
    indexes.push_back(IndexOver("i" + std::to_string(i), {}));
    for (size_t j = 0; j < 10; ++j) indexes.back().columns.emplace_back(columns[i + j].name, true);
  }
  const uint32_t page = CreateTable(file, "T", columns, indexes, kNow);
  EXPECT_GT(ReadDefinition(file, page).pages.size(), 5U);
  AddRows(file, page, {std::vector<Variant>(255, int32_t{7})});
  EXPECT_EQ(CheckText(file), "");

  columns.push_back(Column("one more", kLong));
  EXPECT_EQ(Refused(file, [&] { CreateTable(file, "U", columns, {}, kNow); }), kTooManyFields);
  columns.pop_back();
  indexes.push_back(IndexOver("one more", {columns[0].name}));
  EXPECT_EQ(Refused(file, [&] { CreateTable(file, "U", columns, indexes, kNow); }),
            kInvalidArgument);
  indexes.resize(1);
  indexes[0].columns.emplace_back(columns[99].name, true);
  EXPECT_EQ(Refused(file, [&] { CreateTable(file, "U", columns, indexes, kNow); }),
            kInvalidArgument);
}

TEST(CreateTable, RefusesBadNames) {
  JetFile file = NewJet();
  for (const std::string& name : {std::string(), std::string(" T"), std::string("a.b"),
                                  std::string("a!b"), std::string("a[b"), std::string("a]b"),
                                  std::string("a`b"), std::string("a\tb"), std::string(65, 'x')}) {
    EXPECT_EQ(Refused(file, [&] { Create(file, name.c_str()); }), kInvalidName) << name;
    EXPECT_EQ(Refused(file, [&] { CreateTable(file, "T", {Column(name, kLong)}, {}, kNow); }),
              kInvalidName);
    EXPECT_EQ(Refused(file, [&] { Create(file, "T", {IndexOver(name, {"long"})}); }), kInvalidName);
  }
}

TEST(CreateTable, RefusesNamesThatAreTaken) {
  JetFile file = NewJet();
  Create(file, "Niños");
  CreateQuery(file, "Q", {}, kNow);
  EXPECT_EQ(Refused(file, [&] { Create(file, "NIÑOS"); }), kTableExists);
  EXPECT_EQ(Refused(file, [&] { Create(file, "q"); }), kObjectExists);
  Create(file, "Straße");
  EXPECT_EQ(Refused(file, [&] { Create(file, "STRASSE "); }), kTableExists);
  EXPECT_EQ(Refused(file, [&] { Create(file, "MSysObjects"); }), kTableExists);
  EXPECT_EQ(Refused(file, [&] { CreateTable(file, "T", {}, {}, kNow); }), kNothingDefined);
  EXPECT_EQ(Refused(file,
                    [&] {
                      CreateTable(file, "T", {Column("a", kLong), Column("A", kByte)}, {}, kNow);
                    }),
            kFieldExists);
  const NewIndex index = IndexOver("i", {"long"});
  EXPECT_EQ(Refused(file, [&] { Create(file, "T", {index, index}); }), kIndexExists);
  EXPECT_EQ(Refused(file,
                    [&] {
                      Create(file, "T", {Primary(index), Primary(IndexOver("j", {"byte"}))});
                    }),
            kPrimaryKeyExists);
}

// The catalogue's index has no place for a character of unknown order.
TEST(CreateTable, IsTakenBackWhenTheCatalogueRefusesIt) {
  JetFile file = NewJet();
  EXPECT_EQ(Refused(file, [&] { Create(file, "表"); }), kNotSupported);
  EXPECT_EQ(CheckText(file), "");
}

TEST(CreateTable, RefusesColumnsThatCannotBe) {
  JetFile file = NewJet();
  NewColumn counted = Column("b", kText, 5);
  counted.autonumber = true;
  NewColumn counter = Column("c", kLong);
  counter.autonumber = true;
  NewColumn second = counter;
  second.name = "d";
  for (const std::vector<NewColumn>& columns :
       {std::vector{Column("a", kText, 0)}, std::vector{Column("a", kText, 256)},
        std::vector{Column("a", kBinary, 511)}, std::vector{Column("a", kNumeric)},
        std::vector{counted}, std::vector{counter, second}}) {
    EXPECT_EQ(Refused(file, [&] { CreateTable(file, "T", columns, {}, kNow); }), kInvalidFieldType);
  }
  for (const char* column : {"nothing", "sí", "memo", "ole"}) {
    EXPECT_EQ(Refused(file, [&] { Create(file, "T", {IndexOver("i", {column})}); }),
              kUnknownIndexField);
  }
  EXPECT_EQ(Refused(file,
                    [&] {
                      Create(file, "T", {IndexOver("i", {"long", "LONG"})});
                    }),
            kUnknownIndexField);
  EXPECT_EQ(Refused(file, [&] { Create(file, "T", {IndexOver("i", {})}); }), kUnknownIndexField);
}

// All but the pages that hold maps and the catalogue's rows comes back.
TEST(DropTable, GivesBackAllThatTheTableTook) {
  for (const char* sample : {"adox_jet4", "test2V2000", "db-enc"}) {
    JetFile file = CopyOf(sample);
    // The first rows of the catalogue and the maps may have taken pages that stay.
    DropTable(file, Create(file, "T"));
    const auto free_pages = [&file] {
      return ReadUsageMap(file, file.header().free_map).pages.size();
    };
    const uint32_t pages = file.page_count();
    const size_t free = free_pages();
    const uint32_t table = Create(file, "U", {IndexOver("i", {"text"}), IndexOver("j", {"long"})});
    SetRules(file, table, {{"text", {true, true, std::string(5000, 'x')}}}, kNow);
    RandomValues random(1);
    std::vector<std::vector<Variant>> rows;
    for (int i = 0; i < 200; ++i) rows.push_back(random.Row(ReadDefinition(file, table)));
    AddRows(file, table, rows);
    const auto others = PagesOfOthers(file, table);
    DropTable(file, table);
    EXPECT_EQ(CheckText(file), "");
    EXPECT_EQ(file.page_count() - free_pages(), pages - free);
    EXPECT_FALSE(UserTables(file).contains("U"));
    for (const auto& [number, bytes] : others) EXPECT_EQ(*file.Read(number), *bytes) << number;
  }
}

TEST(DropTable, EmptiesEverySampleWithoutRelationships) {
  for (const Sample& sample : Samples()) {
    if (!sample.jet4) continue;
    SCOPED_TRACE(sample);
    JetFile file = JetFile::FromBytes(SampleBytes(sample.name), sample.password);
    for (const auto& table : UserTables(file)) {
      test::ErrorOf([&] { DropTable(file, table.second); });
      ASSERT_EQ(CheckText(file), "") << table.first;
    }
    EXPECT_EQ(UserTables(file).empty(), UserRelationships(file).empty());
  }
}

TEST(DropTable, RefusesOneInARelationship) {
  JetFile file = CopyOf("indexTestV2000");
  for (const RelationshipColumn& relationship : UserRelationships(file)) {
    for (const std::string& table : {relationship.table, relationship.referenced_table}) {
      EXPECT_EQ(Refused(file, [&] { DropTable(file, PageOfTable(file, table)); }), kInRelationship);
    }
  }
}

TEST(DropTable, RefusesASystemTable) {
  JetFile file = NewJet();
  EXPECT_EQ(Refused(file, [&] { DropTable(file, kObjectsPage); }), kNotSupported);
}

TEST(RenameTable, ChangesItsNameAndNothingElse) {
  JetFile file = CopyOf("test2V2000");
  const auto [name, page] = *UserTables(file).begin();
  const auto rows = ReadRows(file, page);
  RenameTable(file, page, "Añada", kNow);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(UserTables(file).at("Añada"), page);
  EXPECT_EQ(ReadRows(file, page), rows);
  RenameTable(file, page, "AÑADA", kNow);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_FALSE(UserTables(file).contains("Añada"));
  const Catalogue catalogue = ReadCatalogue(file);
  EXPECT_EQ(catalogue.Find(ObjectType::kTable, "añada")->updated, kNow);
}

TEST(RenameTable, TakesItsRelationshipsAlong) {
  JetFile file = CopyOf("indexTestV2000");
  const auto before = UserRelationships(file);
  const std::string parent = before.front().referenced_table;
  RenameTable(file, PageOfTable(file, parent), "Otra", kNow);
  EXPECT_EQ(CheckText(file), "");
  const auto after = UserRelationships(file);
  ASSERT_EQ(after.size(), before.size());
  for (size_t i = 0; i < after.size(); ++i) {
    const bool was = before[i].referenced_table == parent;
    EXPECT_EQ(after[i].referenced_table, was ? "Otra" : before[i].referenced_table);
    EXPECT_EQ(after[i].table, before[i].table == parent ? "Otra" : before[i].table);
  }
}

TEST(RenameTable, RefusesANameThatIsTakenOrBad) {
  JetFile file = NewJet();
  const uint32_t table = Create(file, "T");
  Create(file, "U");
  EXPECT_EQ(Refused(file, [&] { RenameTable(file, table, "u", kNow); }), kTableExists);
  EXPECT_EQ(Refused(file, [&] { RenameTable(file, table, "", kNow); }), kInvalidName);
  EXPECT_EQ(Refused(file, [&] { RenameTable(file, table, "表", kNow); }), kNotSupported);
}

}  // namespace
}  // namespace ambrelio::jetfile
