#include <string>

#include "ambrelio/com/conversion.h"
#include "engine/dao_com/dao_com_test.h"

namespace ambrelio::dao_com {
namespace {

class DaoValues : public DaoComTest {
 protected:
  void SetUp() override {
    database_ = Create();
    const auto table = database_->CreateTableDef("Valores");
    for (const auto& [name, type] : {std::pair{"Si", dao::FieldType::kBoolean},
                                     {"Ocho", dao::FieldType::kByte},
                                     {"Dieciseis", dao::FieldType::kInteger},
                                     {"Treinta", dao::FieldType::kLong},
                                     {"Dinero", dao::FieldType::kCurrency},
                                     {"Simple", dao::FieldType::kSingle},
                                     {"Doble", dao::FieldType::kDouble},
                                     {"Fecha", dao::FieldType::kDate},
                                     {"Texto", dao::FieldType::kText},
                                     {"Largo", dao::FieldType::kMemo}}) {
      table->Fields().Append(table->CreateField(name, type));
    }
    database_->TableDefs().Append(table);
  }
  void Insert(const std::string& values) {
    database_->Execute("insert into Valores values (" + values + ")", dao::kFailOnError);
  }
  Variant Read(const std::string& field) {
    return database_->OpenRecordset("Valores")->Value(field);
  }

  DatabasePtr database_;
};

TEST_F(DaoValues, KeepTheirTypes) {
  Insert(
      "True, 255, -32768, 2147483647, -1.2345, 0.5, 0.1, #11/15/2026 8:30:15#, 'Cañada', "
      "'aceituna'");
  EXPECT_EQ(Read("Si"), Variant(true));
  EXPECT_EQ(Read("Ocho"), Variant(uint8_t{255}));
  EXPECT_EQ(Read("Dieciseis"), Variant(int16_t{-32768}));
  EXPECT_EQ(Read("Treinta"), Variant(int32_t{2147483647}));
  EXPECT_EQ(Read("Dinero"), Variant(Currency{-12345}));
  EXPECT_EQ(Read("Simple"), Variant(0.5F));
  EXPECT_EQ(Read("Doble"), Variant(0.1));
  EXPECT_EQ(Read("Fecha"), Variant(OleDate::FromIso("2026-11-15 08:30:15").value()));
  EXPECT_EQ(Read("Texto"), Variant("Cañada"));
  EXPECT_EQ(Read("Largo"), Variant("aceituna"));
}

TEST_F(DaoValues, MayBeNull) {
  Insert("Null, Null, Null, Null, Null, Null, Null, Null, Null, Null");
  EXPECT_EQ(Read("Si"), Variant(false));
  for (const char* field :
       {"Ocho", "Dieciseis", "Treinta", "Dinero", "Simple", "Doble", "Fecha", "Texto", "Largo"}) {
    EXPECT_TRUE(Read(field).is_null()) << field;
  }
}

TEST_F(DaoValues, KeepLongTextsWhole) {
  const std::string text(60000, 'o');
  Insert("True, 1, 1, 1, 1, 1, 1, Null, 'x', '" + text + "'");
  EXPECT_EQ(Read("Largo"), Variant(text));
}

// What DAO gives for numbers with a decimal point in a select.
TEST_F(DaoValues, OfDecimalsBecomeDoubles) {
  VARIANT decimal{};
  decimal.decVal.Lo64 = 25000000;
  decimal.decVal.scale = 8;
  decimal.decVal.sign = DECIMAL_NEG;
  V_VT(&decimal) = VT_DECIMAL;
  EXPECT_EQ(com::FromCom(decimal), Variant(-0.25));
}

}  // namespace
}  // namespace ambrelio::dao_com
