#include "ambrelio/engine/jetfile/usage_map_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "ambrelio/engine/jetfile/data_page_editor.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/samples.h"
#include "engine/jetfile/table_model.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

// A small file that says it is a large one: behind its own pages all are zeros.
class LongFile : public PageFile {
 public:
  LongFile(const Bytes& file, uint32_t page_count)
      : pages_(file, kJet4.page_size), page_count_(page_count) {}

  size_t page_size() const override { return kJet4.page_size; }
  uint32_t page_count() const override { return page_count_; }
  Page Read(uint32_t number) const override {
    if (number < pages_.page_count()) return pages_.Read(number);
    return std::make_shared<Bytes>(kJet4.page_size);
  }

 private:
  MemoryPages pages_;
  uint32_t page_count_;
};

JetFile LongJetFile(uint32_t page_count) {
  return {std::make_unique<LongFile>(SampleBytes("adox_jet4"), page_count), 0, ""};
}

// All its pages are in use, as far as its map of free pages reaches.
JetFile FullFile(uint32_t page_count) {
  constexpr uint32_t kMapped = 512;
  JetFile file = LongJetFile(page_count);
  for (uint32_t page = 16; page < kMapped; ++page) EXPECT_EQ(AllocatePage(file), page);
  return file;
}

JetFile NewFile() { return JetFile::FromBytes(SampleBytes("adox_jet4"), ""); }

// The whole row of a map.
Bytes RowOf(const JetFile& file, RowPointer map) {
  return DataPage(file.Read(map.page), map.page, kJet4).Row(map.row).Copy();
}

std::vector<uint32_t> PagesOf(const JetFile& file, RowPointer map) {
  return ReadUsageMap(file, map).pages;
}

TEST(UsageMapWriter, SetsAndClearsPages) {
  JetFile file = NewFile();
  const RowPointer map = NewMap(file);
  EXPECT_TRUE(PagesOf(file, map).empty());
  AddToMap(file, map, 15);
  AddToMap(file, map, 3);
  AddToMap(file, map, 3);
  EXPECT_THAT(PagesOf(file, map), testing::ElementsAre(3, 15));
  RemoveFromMap(file, map, 3);
  RemoveFromMap(file, map, 4);
  EXPECT_THAT(PagesOf(file, map), testing::ElementsAre(15));
  EXPECT_EQ(RowOf(file, map).size(), 69U);
}

TEST(UsageMapWriter, ChangesNothingWhenNothingIsToBeChanged) {
  JetFile file = NewFile();
  const RowPointer map = NewMap(file);
  AddToMap(file, map, 5);
  const auto before = file.changes();
  AddToMap(file, map, 5);
  RemoveFromMap(file, map, 6);
  RemoveFromMap(file, map, 100'000);
  EXPECT_EQ(file.changes(), before);
}

TEST(UsageMapWriter, MovesAlongAndGrowsByFourBytes) {
  JetFile file = LongJetFile(5000);
  const RowPointer map = NewMap(file);
  AddToMap(file, map, 4321);
  EXPECT_EQ(RowOf(file, map).size(), 69U);
  AddToMap(file, map, 4830);
  EXPECT_EQ(RowOf(file, map).size(), 69U);
  AddToMap(file, map, 4832);
  EXPECT_EQ(RowOf(file, map).size(), 73U);
  AddToMap(file, map, 4319);
  EXPECT_THAT(PagesOf(file, map), testing::ElementsAre(4319, 4321, 4830, 4832));
}

TEST(UsageMapWriter, PutsBitsOnPagesOfTheirOwn) {
  constexpr uint32_t kPages = 200'000;
  JetFile file = LongJetFile(kPages);
  const RowPointer map = NewMap(file);
  std::set<uint32_t> expected;
  for (uint32_t page = 100; page < kPages; page = page * 3 / 2) {
    AddToMap(file, map, page);
    expected.insert(page);
  }
  EXPECT_EQ(RowOf(file, map)[0], UsageMapLayout::kByReference);
  EXPECT_THAT(PagesOf(file, map), testing::ElementsAreArray(expected));
  EXPECT_GT(ReadUsageMap(file, map).bitmap_pages.size(), 3U);
  RemoveFromMap(file, map, 100);
  EXPECT_FALSE(ReadUsageMap(file, map).Contains(100));
}

TEST(UsageMapWriter, DropsAMapWithItsPages) {
  JetFile file = LongJetFile(200'000);
  const RowPointer map = NewMap(file);
  AddToMap(file, map, 20);
  AddToMap(file, map, 150'000);
  const std::vector<uint32_t> bitmaps = ReadUsageMap(file, map).bitmap_pages;
  EXPECT_EQ(bitmaps.size(), 2U);
  DropMap(file, map);
  for (const uint32_t page : bitmaps) {
    EXPECT_TRUE(ReadUsageMap(file, file.header().free_map).Contains(page));
  }
  EXPECT_TRUE(DataPage(file.Read(map.page), map.page, kJet4).SlotAt(map.row).deleted());
}

TEST(UsageMapWriter, MakesMapsWhereTablesHaveTheirsAndThenOnPagesOfTheirOwn) {
  JetFile file = NewFile();
  const uint32_t tables = ReadDefinition(file, kObjectsPage).owned_map.page;
  const uint32_t first = NewMap(file).page;
  EXPECT_EQ(first, tables);
  std::map<uint32_t, size_t> maps;
  for (int i = 0; i < 200; ++i) ++maps[NewMap(file).page];
  EXPECT_EQ(maps.size(), 5U);
  EXPECT_EQ(std::next(maps.begin())->second, 57U);
  for (const auto& [page, count] : maps) {
    EXPECT_EQ(DataPage(file.Read(page), page, kJet4).owner(), kOwnerUsageMaps);
  }
}

TEST(PageAllocator, TakesTheLowestFreePage) {
  JetFile file = NewFile();
  const uint32_t count = file.page_count();
  EXPECT_EQ(AllocatePage(file), count);
  EXPECT_EQ(AllocatePage(file), count + 1);
  EXPECT_EQ(AllocatePage(file), count + 2);
  FreePage(file, count + 1);
  FreePage(file, count);
  EXPECT_EQ(AllocatePage(file), count);
  EXPECT_EQ(AllocatePage(file), count + 1);
  EXPECT_EQ(AllocatePage(file), count + 3);
}

TEST(PageAllocator, MarksDataAndDefinitionsThatAreGivenUp) {
  JetFile file = NewFile();
  for (const auto& [type, given_up] : {std::pair{1, 9}, {2, 8}, {4, 4}}) {
    const uint32_t number = AllocatePage(file);
    Bytes page(kJet4.page_size, 0x55);
    Put(page, 0, 0x0100U + static_cast<uint32_t>(type), 2);
    file.Write(number, page);
    FreePage(file, number);
    EXPECT_EQ((*file.Read(number))[0], given_up);
    EXPECT_EQ((*file.Read(number))[2], 0x55);
    AllocatePage(file);
  }
}

// The map reaches every page, and says that those to come are free.
void ExpectAllKnown(const JetFile& file) {
  const UsageMap map = ReadUsageMap(file, file.header().free_map);
  EXPECT_TRUE(map.pages.empty());
  EXPECT_EQ(map.beyond_end % 8, (8 - file.page_count() % 8) % 8);
}

TEST(PageAllocator, LetsTheMapOfFreePagesGrow) {
  JetFile file = NewFile();
  for (int i = 0; i < 2000; ++i) AllocatePage(file);
  ExpectAllKnown(file);
  FreePage(file, 20);
  EXPECT_THAT(PagesOf(file, file.header().free_map), testing::ElementsAre(20));
  EXPECT_EQ(AllocatePage(file), 20U);
  ExpectAllKnown(file);
}

TEST(PageAllocator, PutsTheMapOfFreePagesOnPagesOfItsOwn) {
  JetFile file = FullFile(70'000);
  const uint32_t page = AllocatePage(file);
  EXPECT_EQ(page, 70'000U);
  const UsageMap map = ReadUsageMap(file, file.header().free_map);
  EXPECT_FALSE(map.bitmap_pages.empty());
  EXPECT_TRUE(map.pages.empty());
  FreePage(file, page);
  FreePage(file, 30);
  EXPECT_EQ(AllocatePage(file), 30U);
  EXPECT_EQ(AllocatePage(file), page);
  const uint32_t next = file.page_count();
  EXPECT_EQ(AllocatePage(file), next);
}

TEST(PageAllocator, EndsAtTwoGibibytes) {
  constexpr uint32_t kMostPages = 1 << 19;
  JetFile file = FullFile(kMostPages - 10);
  int error = 0;
  for (int i = 0; i < 20 && error == 0; ++i) error = test::ErrorOf([&] { AllocatePage(file); });
  EXPECT_EQ(error, kDiskFull);
  EXPECT_EQ(file.page_count(), kMostPages);
}

}  // namespace
}  // namespace ambrelio::jetfile
