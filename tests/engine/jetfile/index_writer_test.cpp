// A tree without a table: what each change does to its pages.
#include "ambrelio/engine/jetfile/index_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "ambrelio/engine/jetfile/usage_map.h"
#include "ambrelio/engine/jetfile/usage_map_writer.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/samples.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint32_t kTable = 2;

// The key of a number, as long as is wanted: the bytes behind the number are the same in all keys.
IndexEntry EntryOf(uint32_t number, size_t length = 5) {
  Bytes key{0x7F};
  for (const int shift : {24, 16, 8, 0}) key.push_back(static_cast<uint8_t>(number >> shift));
  key.resize(length, 0x33);
  return {key, {number % 60'000 + 1, static_cast<uint8_t>(number % 100)}};
}

class IndexWriterTest : public testing::Test {
 protected:
  IndexWriterTest() {
    index_.map = NewMap(file_);
    index_.root = NewIndexRoot(file_, kTable, index_.map);
    writer_ = std::make_unique<IndexWriter>(file_, kTable, index_);
  }

  void Insert(const IndexEntry& entry) {
    writer_->Insert(entry);
    EXPECT_TRUE(entries_.insert(BytesOfEntry(entry)).second);
  }
  void Insert(const std::vector<IndexEntry>& entries) {
    writer_->Insert(entries);
    for (const IndexEntry& entry : entries) entries_.insert(BytesOfEntry(entry));
  }
  void Remove(const IndexEntry& entry) {
    writer_->Remove(entry);
    EXPECT_EQ(entries_.erase(BytesOfEntry(entry)), 1U);
  }

  // That the tree is a right one, and holds the entries that went into it.
  void ExpectSound() {
    pages_.clear();
    links_.clear();
    read_.clear();
    Visit(index_.root, 0);
    EXPECT_EQ(read_, IndexItems(entries_.begin(), entries_.end()));
    std::sort(pages_.begin(), pages_.end());
    EXPECT_EQ(pages_, ReadUsageMap(file_, index_.map).pages);
    for (const auto& level : links_) {
      for (size_t i = 0; i < level.size(); ++i) {
        EXPECT_EQ(level[i].previous, i == 0 ? 0 : level[i - 1].number);
        EXPECT_EQ(level[i].next, i + 1 == level.size() ? 0 : level[i + 1].number);
      }
    }
  }
  size_t levels() const { return links_.size(); }
  size_t leaves() const { return links_.back().size(); }

  Bytes Visit(uint32_t number, size_t level) {
    const IndexPage page = ReadIndexPage(file_, number);
    pages_.push_back(number);
    if (links_.size() == level) links_.emplace_back();
    EXPECT_EQ(page.table, kTable);
    EXPECT_EQ(page.free_bytes, kJet4.entry_space() - page.used_bytes);
    EXPECT_EQ(page.level, page.leaf ? 0 : 1);
    links_[level].push_back(page);
    if (page.leaf) {
      EXPECT_TRUE(!page.entries.empty() || level == 0);
      read_.insert(read_.end(), page.entries.begin(), page.entries.end());
    } else {
      EXPECT_FALSE(page.entries.empty());
      for (size_t i = 0; i < page.entries.size(); ++i) {
        const auto bound = page.BoundAt(i);
        EXPECT_EQ(Visit(page.ChildAt(i), level + 1), Bytes(bound.begin(), bound.end()));
      }
      Visit(page.tail, level + 1);
    }
    return read_.empty() ? Bytes() : read_.back();
  }

  JetFile file_ = JetFile::FromBytes(SampleBytes("adox_jet4"), "");
  IndexDefinition index_;
  std::unique_ptr<IndexWriter> writer_;
  std::set<Bytes> entries_;
  std::vector<uint32_t> pages_;
  std::vector<std::vector<IndexPage>> links_;  // by level
  IndexItems read_;
};

TEST_F(IndexWriterTest, KeepsEntriesInTheirOrder) {
  for (const uint32_t number : {5U, 1U, 9U, 3U, 7U}) Insert(EntryOf(number));
  ExpectSound();
  EXPECT_EQ(levels(), 1U);
}

TEST_F(IndexWriterTest, KnowsWhichKeysItHas) {
  EXPECT_FALSE(writer_->Contains(EntryOf(1).key));
  for (uint32_t number = 0; number < 3000; number += 2) Insert(EntryOf(number));
  for (uint32_t number = 0; number < 3000; ++number) {
    EXPECT_EQ(writer_->Contains(EntryOf(number).key), number % 2 == 0) << number;
  }
  // What a key only starts with is no key.
  EXPECT_FALSE(writer_->Contains(Bytes{0x7F, 0, 0}));
}

TEST_F(IndexWriterTest, TakesManyEntriesAtOnce) {
  std::mt19937 random(20'251'103);
  for (int round = 0; round < 60; ++round) {
    std::set<uint32_t> numbers;
    for (auto left = random() % 400; left > 0; --left) {
      numbers.insert(static_cast<uint32_t>(random() % 1'000'000));
    }
    std::vector<IndexEntry> entries;
    for (const uint32_t number : numbers) {
      const IndexEntry entry = EntryOf(number, number % 7 == 0 ? 500 : 5 + number % 40);
      if (!entries_.contains(BytesOfEntry(entry))) entries.push_back(entry);
    }
    std::shuffle(entries.begin(), entries.end(), random);
    Insert(entries);
    ExpectSound();
  }
  EXPECT_GT(levels(), 2U);
}

TEST_F(IndexWriterTest, FillsItsLeavesWithManyEntriesBehindAllOthers) {
  std::vector<IndexEntry> entries;
  for (uint32_t number = 0; number < 20'000; ++number) entries.push_back(EntryOf(number));
  Insert(entries);
  ExpectSound();
  for (const IndexPage& leaf : links_[1]) {
    EXPECT_TRUE(leaf.next == 0 || leaf.free_bytes < 10) << leaf.free_bytes;
  }
}

// Ascending keys leave full leaves behind.
TEST_F(IndexWriterTest, SplitsAtTheRightEdge) {
  constexpr uint32_t kEntries = 20'000;
  for (uint32_t number = 0; number < kEntries; ++number) Insert(EntryOf(number));
  ExpectSound();
  EXPECT_EQ(levels(), 2U);
  for (const IndexPage& leaf : links_[1]) {
    EXPECT_TRUE(leaf.next == 0 || leaf.free_bytes < 10) << leaf.free_bytes;
  }
}

TEST_F(IndexWriterTest, SplitsInTheMiddle) {
  for (uint32_t number = 0; number < 5000; ++number) Insert(EntryOf(10'000 - number));
  ExpectSound();
  EXPECT_GT(leaves(), 5U);
  for (const IndexPage& leaf : links_[1]) EXPECT_LT(leaf.free_bytes, 2400U);
}

// Only what does not fit otherwise leaves out what its entries share.
TEST_F(IndexWriterTest, SharesAPrefixOnceAPageIsFull) {
  for (uint32_t number = 0; number < 400; ++number) Insert(EntryOf(number));
  EXPECT_EQ(ReadIndexPage(file_, index_.root).prefix, 0U);
  for (uint32_t number = 400; number < 500; ++number) Insert(EntryOf(number));
  EXPECT_GT(ReadIndexPage(file_, index_.root).prefix, 0U);
  ExpectSound();
  EXPECT_EQ(levels(), 1U);
}

// A page whose entries share much fits many; one that shares nothing with them must not join them.
TEST_F(IndexWriterTest, SplitsOffWhatSharesNothing) {
  for (uint32_t number = 1; number < 600; ++number) {
    IndexEntry entry = EntryOf(number, 200);
    std::rotate(entry.key.begin(), entry.key.begin() + 5, entry.key.end());
    Insert(entry);
  }
  ExpectSound();
  const size_t before = leaves();
  Insert(EntryOf(0, 200));
  Insert({Bytes(200, 0xEE), {1, 1}});
  ExpectSound();
  EXPECT_LE(leaves(), before + 2);
}

TEST_F(IndexWriterTest, KeepsItsRootWhenItGrowsAndShrinks) {
  constexpr uint32_t kEntries = 1009;
  constexpr uint32_t kFar = 4'100'000;
  for (uint32_t i = 0; i < kEntries; ++i) Insert(EntryOf(i * 101 % kEntries * kFar, 400));
  ExpectSound();
  EXPECT_EQ(levels(), 4U);
  for (uint32_t i = 0; i < kEntries; ++i) {
    Remove(EntryOf(i * 57 % kEntries * kFar, 400));
    if (i % 50 == 0) ExpectSound();
  }
  ExpectSound();
  EXPECT_EQ(pages_, std::vector<uint32_t>{index_.root});
}

TEST_F(IndexWriterTest, IsEmptiedFromEitherEnd) {
  for (const bool from_the_left : {true, false}) {
    constexpr uint32_t kEntries = 3000;
    for (uint32_t number = 0; number < kEntries; ++number) Insert(EntryOf(number, 60));
    for (uint32_t number = 0; number < kEntries; ++number) {
      Remove(EntryOf(from_the_left ? number : kEntries - 1 - number, 60));
      if (number % 250 == 0) ExpectSound();
    }
    ExpectSound();
    EXPECT_EQ(levels(), 1U);
  }
}

// When the last entry of a leaf goes or comes, the nodes above must say so.
TEST_F(IndexWriterTest, KeepsTheBoundsAboveExact) {
  for (uint32_t number = 0; number < 20'000; number += 10) Insert(EntryOf(number, 40));
  ExpectSound();
  std::vector<Bytes> last_entries;
  for (const IndexPage& leaf : links_.back()) last_entries.push_back(leaf.entries.back());
  for (const Bytes& last : last_entries) {
    IndexPage page;
    page.entries = {last};
    const IndexEntry entry = page.EntryAt(0);
    Remove(entry);
    ExpectSound();
  }
}

TEST_F(IndexWriterTest, RefusesAnEntryTwiceAndOneThatIsNotThere) {
  Insert(EntryOf(1));
  EXPECT_EQ(test::ErrorOf([&] { writer_->Insert(EntryOf(1)); }), kDamaged);
  EXPECT_EQ(test::ErrorOf([&] { writer_->Remove(EntryOf(2)); }), kDamaged);
  ExpectSound();
}

// Beside the file's pages nothing is remembered that could be out of date.
TEST_F(IndexWriterTest, FollowsThePagesWhenTheyAreForgotten) {
  for (uint32_t number = 0; number < 1000; ++number) Insert(EntryOf(number));
  const std::map<uint32_t, Page> kept = file_.changes();
  const std::set<Bytes> entries = entries_;
  for (uint32_t number = 1000; number < 2000; ++number) Insert(EntryOf(number));
  file_.ForgetChanges();
  for (const auto& [number, page] : kept) file_.Write(number, *page);
  entries_ = entries;
  for (uint32_t number = 1500; number < 1600; ++number) Insert(EntryOf(number));
  ExpectSound();
}

class BuiltIndexes : public IndexWriterTest, public testing::WithParamInterface<size_t> {};

INSTANTIATE_TEST_SUITE_P(Sizes, BuiltIndexes, testing::Values(0, 1, 300, 700, 5000, 60'000));

TEST_P(BuiltIndexes, AreFullAndCanBeChanged) {
  std::vector<IndexEntry> entries;
  for (uint32_t i = 0; i < GetParam(); ++i) entries.push_back(EntryOf(i, 5 + i % 90));
  for (const IndexEntry& entry : entries) entries_.insert(BytesOfEntry(entry));
  std::shuffle(entries.begin(), entries.end(), std::mt19937(1));
  writer_->Build(entries);
  ExpectSound();
  for (size_t i = 0; i < entries.size(); i += 7) Remove(entries[i]);
  for (size_t i = 0; i < entries.size(); i += 14) Insert(entries[i]);
  ExpectSound();
}

TEST_F(IndexWriterTest, GivesAllPagesBack) {
  const uint32_t before = file_.page_count();
  for (uint32_t number = 0; number < 5000; ++number) Insert(EntryOf(number));
  FreeIndexPages(file_, index_);
  EXPECT_TRUE(ReadUsageMap(file_, index_.map).pages.empty());
  const std::vector<uint32_t> free = ReadUsageMap(file_, file_.header().free_map).pages;
  for (uint32_t page = before; page < file_.page_count(); ++page) {
    EXPECT_THAT(free, testing::Contains(page));
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
