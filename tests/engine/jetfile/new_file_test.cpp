#include "ambrelio/engine/jetfile/new_file.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

// A stretch of a page that the original engine leaves as memory happens to be.
struct Uninitialised {
  uint32_t page;
  size_t offset;
  size_t size;
};

// Offsets in a definition's only page follow from its parts.
struct DefinitionPlaces {
  size_t columns;
  size_t indexes;
};

DefinitionPlaces PlacesOf(const JetFile& file, const TableDefinition& definition) {
  constexpr size_t kHeader = 63;
  constexpr size_t kCounter = 12;
  constexpr size_t kColumn = 25;
  DefinitionPlaces places{kHeader + kCounter * definition.indexes.size(), 0};
  places.indexes = places.columns + kColumn * definition.columns.size();
  for (const ColumnDefinition& column : definition.columns) {
    places.indexes += 2 + file.PlainBytes(column.name).size();
  }
  return places;
}

// The fixed offset of columns that have none; the order of key columns that are not there, and a
// number of each index without a meaning.
void AddUninitialised(const JetFile& file, uint32_t page, std::vector<Uninitialised>& excepted) {
  constexpr size_t kColumn = 25;
  constexpr size_t kFixedOffsetAt = 21;
  constexpr size_t kIndex = 52;
  constexpr size_t kSlotsAt = 4;
  constexpr size_t kUnusedAt = 42;
  const TableDefinition definition = ReadDefinition(file, page);
  const DefinitionPlaces places = PlacesOf(file, definition);
  for (size_t i = 0; i < definition.columns.size(); ++i) {
    if (definition.columns[i].fixed()) continue;
    excepted.push_back({page, places.columns + kColumn * i + kFixedOffsetAt, 2});
  }
  for (size_t i = 0; i < definition.indexes.size(); ++i) {
    const size_t index = places.indexes + kIndex * i;
    for (size_t slot = definition.indexes[i].Columns().size(); slot < 10; ++slot) {
      excepted.push_back({page, index + kSlotsAt + 3 * slot + 2, 1});
    }
    excepted.push_back({page, index + kUnusedAt, 4});
  }
}

TEST(NewFile, IsThatOfTheOriginalEngine) {
  const JetFile original = CopyOf("adox_jet4");
  const OleDate made = ReadCatalogue(original).objects.front().created;
  const Bytes bytes = NewFile("", made);
  const JetFile file = JetFile::FromBytes(bytes, "");
  std::vector<Uninitialised> excepted;
  for (uint32_t page = 2; page < 6; ++page) AddUninitialised(original, page, excepted);

  ASSERT_EQ(file.page_count(), original.page_count());
  for (uint32_t number = 0; number < file.page_count(); ++number) {
    Bytes page = *file.Read(number);
    Bytes expected = *original.Read(number);
    for (const Uninitialised& place : excepted) {
      if (place.page != number) continue;
      Put(page, place.offset, 0, place.size);
      Put(expected, place.offset, 0, place.size);
    }
    for (size_t at = 0; at < page.size(); ++at) {
      EXPECT_EQ(page[at], expected[at]) << PlaceText({number, at});
    }
  }
}

TEST(NewFile, IsSound) {
  EXPECT_EQ(CheckText(NewJet()), "");
  EXPECT_TRUE(UserTables(NewJet()).empty());
}

TEST(NewFile, OpensWithItsPasswordOnly) {
  for (const char* password : {"aceite", "Aceituna con ñ y €", "12345678901234567890", "😀😀😀"}) {
    const Bytes bytes = NewFile(password, kNow);
    EXPECT_EQ(CheckText(JetFile::FromBytes(bytes, password)), "");
    EXPECT_EQ(test::ErrorOf([&] { JetFile::FromBytes(bytes, ""); }), kWrongPassword);
  }
}

TEST(NewFile, RefusesAPasswordOfMoreThanTwentyCharacters) {
  for (const char* password : {"123456789012345678901", "😀😀😀😀😀😀😀😀😀😀😀"}) {
    EXPECT_EQ(test::ErrorOf([&] { NewFile(password, kNow); }), kWrongPassword);
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
