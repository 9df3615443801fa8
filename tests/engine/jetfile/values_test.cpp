#include "ambrelio/engine/jetfile/values.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/row.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/text.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/hex.h"
#include "engine/jetfile/samples.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

ColumnDefinition ColumnWith(ColumnType type, uint16_t collation = 0) {
  ColumnDefinition column;
  column.type = type;
  column.collation = collation;
  return column;
}

Variant Decoded(const ColumnDefinition& column, const std::string& hex) {
  const Bytes bytes = FromHex(hex);
  return DecodeValue(column, {bytes, {}}, true);
}

void ExpectBothWays(const ColumnDefinition& column, const std::string& hex, const Variant& value) {
  EXPECT_EQ(Decoded(column, hex), value);
  EXPECT_EQ(ToHex(EncodeValue(column, value)), hex);
}

TEST(Values, AreStoredTheLowestByteFirst) {
  ExpectBothWays(ColumnWith(ColumnType::kByte), "FF", uint8_t{255});
  ExpectBothWays(ColumnWith(ColumnType::kInteger), "FE FF", int16_t{-2});
  ExpectBothWays(ColumnWith(ColumnType::kLong), "01 02 00 00", int32_t{513});
  ExpectBothWays(ColumnWith(ColumnType::kMoney), "10 27 00 00 00 00 00 00", Currency{10000});
  ExpectBothWays(ColumnWith(ColumnType::kSingle), "00 00 80 3F", 1.0F);
  ExpectBothWays(ColumnWith(ColumnType::kDouble), "00 00 00 00 00 00 F0 BF", -1.0);
  ExpectBothWays(ColumnWith(ColumnType::kDate), "00 00 00 00 00 00 F4 BF",
                 OleDate::FromDays(-1.25));
}

TEST(Values, OfGuidsReadAsPeopleWriteThem) {
  ExpectBothWays(ColumnWith(ColumnType::kGuid), "33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF",
                 "{00112233-4455-6677-8899-AABBCCDDEEFF}");
}

TEST(Values, OfNumericsHaveAllTheirDigits) {
  const auto column = ColumnWith(ColumnType::kNumeric, 0x041C);  // 28 digits, 4 decimals
  ExpectBothWays(column, "80 00 00 00 00 00 00 00 00 00 00 00 00 48 E8 01 00", "-12.5000");
  ExpectBothWays(column, "00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00", "429496.7296");
  ExpectBothWays(column, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", "0.0000");
  ExpectBothWays(ColumnWith(ColumnType::kNumeric, 0x0026),
                 "00 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF",
                 "340282366920938463463374607431768211455");
  EXPECT_EQ(ParseNumeric("340282366920938463463374607431768211456", 0).has_value(), false);
  EXPECT_EQ(ParseNumeric("1.23", 1).has_value(), false);
  EXPECT_EQ(ParseNumeric("12a", 0).has_value(), false);
}

TEST(Values, RefuseOtherSizes) {
  EXPECT_EQ(test::ErrorOf([] { Decoded(ColumnWith(ColumnType::kLong), "01 02"); }), kDamaged);
  EXPECT_EQ(test::ErrorOf([] { Decoded(ColumnWith(ColumnType::kGuid), "01 02"); }), kDamaged);
  EXPECT_EQ(test::ErrorOf([] { Decoded(ColumnWith(static_cast<ColumnType>(99)), "01"); }),
            kDamaged);
  EXPECT_EQ(test::ErrorOf([] { EncodeValue(ColumnWith(ColumnType::kLong), "text"); }), 13);
}

std::string TextOf(const std::string& hex) {
  const Bytes bytes = FromHex(hex);
  return ColumnText({bytes, {}});
}

TEST(Text, IsWideOrCompressed) {
  EXPECT_EQ(TextOf("41 00 F1 00"), "Añ");
  EXPECT_EQ(TextOf("FF FE 41 F1 6F"), "Año");
  EXPECT_EQ(TextOf("FF FE"), "");
  EXPECT_EQ(TextOf(""), "");
}

TEST(Text, TogglesBetweenBothAtZeroBytes) { EXPECT_EQ(TextOf("FF FE 41 00 AC 20 00 42"), "A€B"); }

TEST(Text, DoesNotEndInsideACharacter) {
  EXPECT_EQ(test::ErrorOf([] { TextOf("41 00 42"); }), kDamaged);
  EXPECT_EQ(test::ErrorOf([] { TextOf("FF FE 41 00 AC"); }), kDamaged);
}

TEST(Text, IsCompressedWhereThatSavesBytes) {
  EXPECT_EQ(ToHex(ColumnBytes("Año", true)), "FF FE 41 F1 6F");
  EXPECT_EQ(ToHex(ColumnBytes("Año", false)), "41 00 F1 00 6F 00");
  EXPECT_EQ(ToHex(ColumnBytes("Añ", true)), "41 00 F1 00");
  EXPECT_EQ(ToHex(ColumnBytes("10€", true)), "31 00 30 00 AC 20");
  EXPECT_EQ(ToHex(ColumnBytes("\uFEFF\uFEFFA", false)), "41 00");
}

// Rows that were written when their table was as it is now are written again as they are.
class EveryJet4Row : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Files, EveryJet4Row,
                         testing::Values("adox_jet4", "indexTestV2000", "compIndexTestV2000",
                                         "testIndexPropertiesV2000", "fixedNumericTestV2000",
                                         "fixedTextTestV2000", "pivot"));

TEST_P(EveryJet4Row, ReadsAgainWhatWasEncoded) {
  const JetFile file = ReadFromDisk(SamplePath(GetParam()), "");
  const Catalogue catalogue = ReadCatalogue(file);
  size_t rows = 0;
  for (const CatalogueObject& object : catalogue.objects) {
    if (object.type != ObjectType::kTable) continue;
    const TableDefinition definition = ReadDefinition(file, object.definition_page());
    TableReader reader(file, definition);
    while (reader.Next()) {
      RowValues values;
      for (const ColumnDefinition& column : definition.columns) {
        std::optional<Bytes> value;
        if (column.type == ColumnType::kBoolean) {
          if (reader.row().Flag(column)) value.emplace();
        } else if (const auto stored = reader.row().Value(column)) {
          value = stored->Copy();
        }
        values.push_back(std::move(value));
      }
      const Bytes encoded = EncodeRow(definition, values);
      const Row again({encoded, {}}, definition, true);
      for (size_t i = 0; i < values.size(); ++i) {
        const ColumnDefinition& column = definition.columns[i];
        if (column.type == ColumnType::kBoolean) {
          EXPECT_EQ(again.Flag(column), values[i].has_value());
        } else {
          const auto read = again.Value(column);
          EXPECT_EQ(read ? std::optional(read->Copy()) : std::nullopt, values[i]);
        }
      }
      ++rows;
    }
  }
  EXPECT_GT(rows, 20);
}

TEST(Row, IsEncodedAsTheOriginalEngineDoes) {
  const JetFile file = ReadFromDisk(SamplePath("adox_jet4"));
  const TableDefinition definition = ReadDefinition(file, 3);
  // In the order of the definition: ACM, FInheritable, ObjectId, SID.
  const RowValues values = {FromHex("00 00 06 00"), std::nullopt, FromHex("02 00 00 00"),
                            FromHex("64 8B")};
  EXPECT_EQ(ToHex(EncodeRow(definition, values)),
            "04 00 02 00 00 00 00 00 06 00 64 8B 0C 00 0A 00 01 00 07");
}

TEST(Row, IsRefusedWhenNoPageCouldHoldIt) {
  const JetFile file = ReadFromDisk(SamplePath("adox_jet4"));
  const TableDefinition definition = ReadDefinition(file, 3);
  EXPECT_EQ(test::ErrorOf([&] {
              EncodeRow(definition, {std::nullopt, std::nullopt, std::nullopt, Bytes(4060)});
            }),
            3047);
}

}  // namespace
}  // namespace ambrelio::jetfile
