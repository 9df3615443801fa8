#include "ambrelio/engine/jetfile/index_key.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/general_order.h"
#include "ambrelio/engine/jetfile/index_tree.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "engine/jetfile/hex.h"
#include "engine/jetfile/samples.h"

namespace ambrelio::jetfile {
namespace {

ColumnDefinition ColumnOf(ColumnType type, uint16_t collation = 0x0409) {
  ColumnDefinition column;
  column.type = type;
  column.collation = collation;
  return column;
}

std::string Key(const ColumnDefinition& column, const Variant& value, bool ascending = true) {
  const auto key = EncodeKeyPart(column, ascending, value, true);
  return key ? ToHex(*key) : "not encodable";
}

std::string TextKey(const std::string& text, uint16_t collation = 0x0409) {
  return Key(ColumnOf(ColumnType::kText, collation), text);
}

// Entries of indexes that the original engine made.
TEST(IndexKey, OfTextIsWhatTheOriginalEngineWrites) {
  EXPECT_EQ(TextKey("Lácteos"), "7F 5E 4A 4D 6D 51 64 6B 01 02 0E 00");
  EXPECT_EQ(TextKey("Århus"), "7F 4A 69 57 6F 6B 01 1A 00");
  EXPECT_EQ(TextKey("København"), "7F 5C 64 4C 51 62 57 4A 71 62 01 02 21 00");
  EXPECT_EQ(TextKey("São Paulo"), "7F 6B 4A 64 07 66 4A 6F 5E 64 01 02 19 00");
  EXPECT_EQ(TextKey("México D.F."), "7F 60 51 75 59 4D 64 07 4F 1C 53 1C 01 02 0E 00");
  EXPECT_EQ(TextKey("01-012"), "7F 36 38 36 38 3A 01 01 01 01 80 0F 06 82 00");
  EXPECT_EQ(TextKey("S-844 67"), "7F 6B 46 3E 3E 07 42 44 01 01 01 01 80 0B 06 82 00");
  EXPECT_EQ(TextKey("Bon app'"), "7F 4C 64 62 07 4A 66 66 01 01 01 01 80 23 06 80 00");
  EXPECT_EQ(TextKey("HILARIÓN-Abastos"),
            "7F 57 59 5E 4A 69 59 64 62 4A 4C 4A 6B 6D 64 6B 01 02 02 02 02 02 02 0E 01 01 01 80 "
            "27 06 82 00");
  EXPECT_EQ(TextKey("Save-a-lot Markets"),
            "7F 6B 4A 71 51 4A 5E 64 6D 07 60 4A 69 5C 51 6D 6B 01 01 01 01 80 17 06 82 80 1B 06 "
            "82 00");
}

TEST(IndexKey, OfTextKnowsNoCaseAndNoTrailingBlanks) {
  EXPECT_EQ(TextKey("aceituna  "), TextKey("ACEITUNA"));
  EXPECT_NE(TextKey("ano"), TextKey("año"));
  EXPECT_EQ(TextKey(""), "7F 01 00");
}

TEST(IndexKey, CountsSharpSAsTwo) {
  EXPECT_EQ(TextKey("ßé"), "7F 6B 6B 51 01 02 02 0E 00");
  EXPECT_EQ(TextKey("ß-"), "7F 6B 6B 01 01 01 01 80 0F 06 82 00");
}

TEST(IndexKey, HasALetterBetweenNAndOInSpanish) {
  EXPECT_EQ(TextKey("año"), "7F 4A 62 64 01 02 19 00");
  EXPECT_EQ(TextKey("año", 0x0C0A), "7F 4A 63 04 64 01 00");
  EXPECT_EQ(TextKey("Chilla", 0x0C0A), "7F 4D 57 59 5E 5E 4A 01 00");
  EXPECT_EQ(TextKey("Chilla", 0x040A), "7F 4E 04 59 5F 04 4A 01 00");
}

TEST(IndexKey, IsUnknownOfOtherAlphabetsAndOrders) {
  EXPECT_EQ(TextKey("Ж"), "not encodable");
  EXPECT_EQ(TextKey("a", 0x0419), "not encodable");
  EXPECT_EQ(EncodeKeyPart(ColumnOf(ColumnType::kText), true, "a", /*jet4=*/false), std::nullopt);
}

TEST(IndexKey, OfDescendingTextIsInverted) {
  EXPECT_EQ(Key(ColumnOf(ColumnType::kText), "a", false), "80 B5 FE FF 00");
}

TEST(IndexKey, OfNumbersIsInTheirOrder) {
  const auto column = ColumnOf(ColumnType::kLong);
  EXPECT_EQ(Key(column, int32_t{2}), "7F 80 00 00 02");
  EXPECT_EQ(Key(column, int32_t{-1}), "7F 7F FF FF FF");
  EXPECT_EQ(Key(column, int32_t{2}, false), "80 7F FF FF FD");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kByte), uint8_t{200}), "7F C8");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kInteger), int16_t{-2}), "7F 7F FE");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kMoney), Currency{-1}), "7F 7F FF FF FF FF FF FF FF");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kSingle), 1.0F), "7F BF 80 00 00");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kDouble), -1.0), "7F 40 0F FF FF FF FF FF FF");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kDate), OleDate::FromDays(1)), "7F BF F0 00 00 00 00 00 00");
}

TEST(IndexKey, OfTrueStandsBeforeFalse) {
  const auto column = ColumnOf(ColumnType::kBoolean);
  EXPECT_EQ(Key(column, true), "7F 00");
  EXPECT_EQ(Key(column, false), "7F FF");
  EXPECT_EQ(Key(column, true, false), "80 FF");
}

TEST(IndexKey, OfNullIsAByte) {
  EXPECT_EQ(Key(ColumnOf(ColumnType::kLong), Variant::Null()), "00");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kLong), Variant::Null(), false), "FF");
}

TEST(IndexKey, OfBytesIsInGroupsOfEight) {
  const auto column = ColumnOf(ColumnType::kBinary);
  EXPECT_EQ(Key(column, "ab"), "7F 61 62 00 00 00 00 00 00 02");
  EXPECT_EQ(Key(column, "abcdefghi"), "7F 61 62 63 64 65 66 67 68 09 69 00 00 00 00 00 00 00 01");
  EXPECT_EQ(Key(ColumnOf(ColumnType::kGuid), "{00112233-4455-6677-8899-AABBCCDDEEFF}", false),
            "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7");
}

TEST(IndexKey, OfANumericHasItsSignFirst) {
  ColumnDefinition column = ColumnOf(ColumnType::kNumeric, 0x0212);  // 18 digits, 2 decimals
  EXPECT_EQ(Key(column, "1.00"), "7F FF 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 64");
  EXPECT_EQ(Key(column, "-1.00"), "7F 00 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF 9B");
  EXPECT_EQ(Key(column, "1.00", false), "80 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF 9B");
}

TEST(IndexKey, IsRefusedWhenItWouldBeCut) {
  TableDefinition definition;
  definition.pages = {20};
  definition.columns = {ColumnOf(ColumnType::kText)};
  IndexDefinition index;
  index.slots[0] = {0, 1};
  EXPECT_TRUE(EncodeKey(definition, index, {std::string(250, 'a')}, true).has_value());
  std::string accents;
  for (int i = 0; i < 255; ++i) accents += "á";
  EXPECT_EQ(EncodeKey(definition, index, {accents}, true), std::nullopt);
}

// A text of all 255 characters, whose key another library wrote. The letters' weights are compared;
// in the accents behind them that library counts the sharp s as one letter, the original engine as
// two.
TEST(IndexKey, OfEveryCharacterHasTheWeightsThatAnotherLibraryWrites) {
  const JetFile file = ReadFromDisk(SamplePath("testUnicodeCompV2003"));
  const Catalogue catalogue = ReadCatalogue(file);
  const auto definition =
      ReadDefinition(file, catalogue.Find(ObjectType::kTable, "Table")->definition_page());
  Bytes longest;
  for (const IndexDefinition& index : definition.indexes) {
    IndexTree(file, index).Walk([&](const IndexEntry& entry) {
      if (entry.key.size() > longest.size()) longest = entry.key;
    });
  }
  std::string all;
  TableReader reader(file, definition);
  while (reader.Next()) all = reader.Value(*definition.FindColumn("Unicode")).as<std::string>();
  Bytes key = GeneralOrderKey(all, TextOrder::kGeneral).value();
  key.insert(key.begin(), 0x7F);
  for (Bytes* bytes : {&key, &longest}) {
    bytes->erase(std::find(bytes->begin(), bytes->end(), 0x01), bytes->end());
  }
  EXPECT_GT(key.size(), 200);
  EXPECT_EQ(ToHex(key), ToHex(longest));
}

}  // namespace
}  // namespace ambrelio::jetfile
