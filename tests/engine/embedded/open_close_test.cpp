// Opening, making and closing database files: every way in which it can fail, and what the failure
// is called.
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

namespace fs = std::filesystem;
using test::ErrorOf;

class OpenClose : public test::EngineTest {
 protected:
  int OpenError(const std::string& name, const std::string& connect = ";pwd=") {
    return ErrorOf([&] { Open(name, connect); });
  }
  int OpenErrorOfPath(const std::string& path) {
    return ErrorOf([&] { workspace().OpenDatabase(path, false, false, ";pwd="); });
  }
  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(FilePath(Path(name)), std::ios::binary) << bytes;
  }
  std::string Read(const std::string& name) const {
    std::ifstream file(FilePath(Path(name)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // Names of what is in the folder.
  std::vector<std::string> Files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
};

TEST_F(OpenClose, OpensWhatWasCreated) {
  AddTanks(*Create());
  const auto database = Open();
  EXPECT_EQ(database->Name(), Path());
  EXPECT_EQ(database->TableDefs().Count(), 1);
}

TEST_F(OpenClose, KeepsEverythingInOneFileOnceClosed) {
  AddTanks(*Create());
  EXPECT_EQ(Files(), std::vector<std::string>{"oliva.mdb"});
}

TEST_F(OpenClose, OpensAFileUnderANameBeyondAscii) {
  Create("almazara ñandú #1 100%.mdb")->Close();
  EXPECT_EQ(OpenError("almazara ñandú #1 100%.mdb"), 0);
}

TEST_F(OpenClose, DoesNotFindAMissingFile) {
  EXPECT_EQ(OpenError("other.mdb"), 3024);
  EXPECT_TRUE(Files().empty());
}

TEST_F(OpenClose, DoesNotFindAMissingFolder) {
  EXPECT_EQ(OpenError("season/oliva.mdb"), 3044);
  EXPECT_EQ(ErrorOf([&] { Create("season/oliva.mdb"); }), 3044);
}

TEST_F(OpenClose, RefusesAnEmptyName) {
  EXPECT_EQ(OpenErrorOfPath(""), 3005);
  EXPECT_EQ(ErrorOf([&] { workspace().CreateDatabase("", ""); }), 3005);
}

TEST_F(OpenClose, RefusesAFolder) { EXPECT_EQ(OpenErrorOfPath(folder_.path()), 3051); }

TEST_F(OpenClose, RefusesAnEmptyFile) {
  Write("oliva.mdb", "");
  EXPECT_EQ(OpenError("oliva.mdb"), 3343);
  EXPECT_EQ(Read("oliva.mdb"), "");
}

TEST_F(OpenClose, RefusesAFileOfAnotherKind) {
  Write("oliva.mdb", std::string(4096, 'x'));
  EXPECT_EQ(OpenError("oliva.mdb"), 3343);
}

TEST_F(OpenClose, RefusesTheSqliteDatabaseOfAnotherProgram) {
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(Path().c_str(), &other), SQLITE_OK);
  sqlite3_exec(other, "create table t(a)", nullptr, nullptr, nullptr);
  sqlite3_close(other);
  EXPECT_EQ(OpenError("oliva.mdb"), 3343);
}

TEST_F(OpenClose, RefusesTheFormatOfALaterVersion) {
  Create()->Close();
  std::string bytes = Read("oliva.mdb");
  bytes[63] = 9;
  Write("oliva.mdb", bytes);
  EXPECT_EQ(OpenError("oliva.mdb"), 3343);
}

TEST_F(OpenClose, RefusesAJetFileThatIsNone) {
  Write("oliva.mdb", std::string("\0\1\0\0", 4) + "Standard Jet DB" + std::string(2000, '\0'));
  EXPECT_EQ(OpenError("oliva.mdb"), 3049);
  Write("oliva.mdb", std::string("\0\1\0\0", 4) + "Standard ACE DB" + std::string(2000, '\0'));
  EXPECT_EQ(OpenError("oliva.mdb"), 3343);
}

TEST_F(OpenClose, FindsAFileCutShortDamaged) {
  Create()->Close();
  const std::string bytes = Read("oliva.mdb");
  for (const size_t size : {size_t{20}, size_t{99}, size_t{5000}}) {
    Write("oliva.mdb", bytes.substr(0, size));
    EXPECT_EQ(OpenError("oliva.mdb"), 3049) << size;
  }
}

TEST_F(OpenClose, FindsASchemaFormatThatThereIsNotDamaged) {
  Create()->Close();
  std::string bytes = Read("oliva.mdb");
  bytes[47] = 9;
  Write("oliva.mdb", bytes);
  EXPECT_EQ(OpenError("oliva.mdb"), 3049);
}

TEST_F(OpenClose, FindsAnOverwrittenPageDamaged) {
  Create()->Close();
  std::string bytes = Read("oliva.mdb");
  bytes.replace(100, 3000, 3000, '\x55');
  Write("oliva.mdb", bytes);
  EXPECT_EQ(OpenError("oliva.mdb"), 3049);
}

TEST_F(OpenClose, ReadsWhatIsOpenedReadOnly) {
  AddTanks(*Create());
  const auto database = workspace().OpenDatabase(Path(), false, true, "");
  EXPECT_EQ(CountRows(*database), 0);
  EXPECT_EQ(ErrorOf([&] { database->TableDefs().Delete("Tanques"); }), 3027);
}

TEST_F(OpenClose, HasTransactionsOnAReadOnlyDatabase) {
  AddTanks(*Create());
  const auto database = workspace().OpenDatabase(Path(), false, true, "");
  workspace().BeginTrans();
  workspace().BeginTrans();
  EXPECT_EQ(CountRows(*database), 0);
  workspace().CommitTrans();
  workspace().CommitTrans();
}

TEST_F(OpenClose, KeepsOthersOutWhenExclusiveForReading) {
  Create()->Close();
  const auto other = OtherEngine();
  const auto held = other->DefaultWorkspace().OpenDatabase(Path(), true, true, "");
  EXPECT_EQ(OpenError("oliva.mdb"), 3045);
  held->Close();
  EXPECT_EQ(OpenError("oliva.mdb"), 0);
}

TEST_F(OpenClose, IsNotExclusiveWhileOthersHaveTheFile) {
  const auto shared = Create();
  const auto other = OtherEngine();
  EXPECT_EQ(ErrorOf([&] { other->DefaultWorkspace().OpenDatabase(Path(), true, false, ""); }),
            3045);
}

TEST_F(OpenClose, OpensForSeveralAtOnce) {
  AddTanks(*Create());
  const auto first = Open();
  const auto other = OtherEngine();
  const auto second = other->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  AddTank(*first, 1);
  EXPECT_EQ(CountRows(*second), 1);
}

TEST_F(OpenClose, NeverOverwritesOnCreation) {
  Write("oliva.mdb", "accounts");
  EXPECT_EQ(ErrorOf([&] { Create(); }), 3204);
  EXPECT_EQ(Read("oliva.mdb"), "accounts");
  EXPECT_EQ(Files().size(), 1U);
}

TEST_F(OpenClose, CreatesNoDatabaseBesideTheLogOfAFormerOne) {
  Write("oliva.mdb-wal", "committed rows");
  EXPECT_EQ(ErrorOf([&] { Create(); }), 3204);
  EXPECT_EQ(Read("oliva.mdb-wal"), "committed rows");
}

TEST_F(OpenClose, LeavesNothingBehindWhenACreationFails) {
  EXPECT_THROW(Storage::Create(Path(),
                               [](Storage& storage) {
                                 storage.Run("create table t(a)");
                                 throw std::runtime_error("power cut");
                               }),
               std::runtime_error);
  EXPECT_TRUE(Files().empty());
}

TEST_F(OpenClose, HasNoHalfFileWhileOneIsCreated) {
  bool seen = true;
  Storage::Create(Path(), [&](Storage&) { seen = fs::exists(Path()); });
  EXPECT_FALSE(seen);
  EXPECT_TRUE(fs::exists(Path()));
}

TEST_F(OpenClose, RefusesAWrongOrMissingPassword) {
  Create("oliva.mdb", ";pwd=Picual 7")->Close();
  EXPECT_EQ(OpenError("oliva.mdb", ";pwd=Picual 7"), 0);
  EXPECT_EQ(OpenError("oliva.mdb", ";pwd=picual 7"), 3031);
  EXPECT_EQ(OpenError("oliva.mdb", ";pwd=Picual 7 "), 3031);
  EXPECT_EQ(OpenError("oliva.mdb", ";pwd="), 3031);
  EXPECT_EQ(OpenError("oliva.mdb", ""), 3031);
}

TEST_F(OpenClose, IgnoresAPasswordThatIsNotNeeded) {
  Create()->Close();
  EXPECT_EQ(OpenError("oliva.mdb", ";pwd=x"), 0);
  EXPECT_EQ(OpenError("oliva.mdb", ""), 0);
}

TEST_F(OpenClose, ReadsThePasswordInEverySpellingOfTheConnectText) {
  Create("oliva.mdb", ";LANGID=0x0409;CP=1252;COUNTRY=0;PWD=a=b")->Close();
  for (const char* const connect :
       {";pwd=a=b", ";PWD=a=b", "MS Access;Pwd=a=b", "ms access;pwd=a=b;", "; pwd =a=b;x=y"}) {
    EXPECT_EQ(OpenError("oliva.mdb", connect), 0) << connect;
  }
  EXPECT_EQ(OpenError("oliva.mdb", "pwd=a=b"), 3170);
  EXPECT_EQ(OpenError("oliva.mdb", "ODBC;pwd=a=b"), 3170);
}

TEST_F(OpenClose, LimitsANewPasswordToTwentyCharacters) {
  const std::string longest = "ñandúñandúñandúñandú";
  EXPECT_EQ(ErrorOf([&] { Create("a.mdb", ";pwd=" + longest); }), 0);
  EXPECT_EQ(OpenError("a.mdb", ";pwd=" + longest), 0);
  EXPECT_EQ(ErrorOf([&] { Create("b.mdb", ";pwd=" + longest + "x"); }), 3031);
  EXPECT_FALSE(fs::exists(Path("b.mdb")));
}

TEST_F(OpenClose, DoesNotShowThePasswordInTheFile) {
  Create("oliva.mdb", ";pwd=Hojiblanca")->Close();
  EXPECT_EQ(Read("oliva.mdb").find("Hojiblanca"), std::string::npos);
}

TEST_F(OpenClose, LeavesTheFileAloneWhenThePasswordIsWrong) {
  Create("oliva.mdb", ";pwd=x")->Close();
  OpenError("oliva.mdb", ";pwd=y");
  const auto other = OtherEngine();
  EXPECT_EQ(ErrorOf([&] { other->DefaultWorkspace().OpenDatabase(Path(), true, false, ";pwd=x"); }),
            0);
}

TEST_F(OpenClose, RefusesEveryMemberOnceClosed) {
  const auto database = Create();
  database->Close();
  EXPECT_EQ(ErrorOf([&] { database->Name(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->Execute("delete from Tanques", 0); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->RecordsAffected(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->OpenRecordset("Tanques"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->CreateTableDef("t"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->CreateQueryDef("", "select 1 as uno"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->TableDefs(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->QueryDefs(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->Close(); }), 3420);
}

TEST_F(OpenClose, RefusesEveryObjectOfAClosedDatabase) {
  const auto database = Create();
  AddTanks(*database);
  auto& tables = database->TableDefs();
  auto& queries = database->QueryDefs();
  const auto table = tables.Item(0);
  auto& fields = table->Fields();
  const auto field = fields.Item(0);
  const auto index = table->Indexes().Item(0);
  const auto query = database->CreateQueryDef("q", "select Numero from Tanques");
  const auto new_table = database->CreateTableDef("t");
  const auto new_field = new_table->CreateField("a", dao::FieldType::kLong);
  const auto new_index = new_table->CreateIndex("i");
  database->Close();
  EXPECT_EQ(ErrorOf([&] { tables.Count(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { tables.Item(0); }), 3420);
  EXPECT_EQ(ErrorOf([&] { tables.Refresh(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { tables.Append(new_table); }), 3420);
  EXPECT_EQ(ErrorOf([&] { tables.Delete("Tanques"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { queries.Count(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { table->Name(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { table->SetName("x"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { table->Fields(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { table->CreateIndex("x"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { fields.Count(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { fields.Item("Numero"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { field->Name(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { field->SetRequired(true); }), 3420);
  EXPECT_EQ(ErrorOf([&] { field->Value(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { index->Unique(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { index->Fields(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { query->Sql(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { query->SetSql("select 1 as uno"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { new_table->Name(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { new_field->SetName("b"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { new_index->SetPrimary(true); }), 3420);
}

TEST_F(OpenClose, ClosesWithTheLastReference) {
  auto database = Create();
  AddTanks(*database);
  const auto table = database->TableDefs().Item(0);
  database.reset();
  EXPECT_EQ(ErrorOf([&] { table->Name(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { workspace().OpenDatabase(Path(), true, false, ""); }), 0);
}

TEST_F(OpenClose, KeepsADatabaseBeyondItsEngine) {
  const auto database = Create();
  AddTanks(*database);
  engine_.reset();
  EXPECT_EQ(CountRows(*database), 0);
}

}  // namespace
}  // namespace ambrelio::embedded
