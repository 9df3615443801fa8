#include "ambrelio/engine/jetfile/shared_file.h"

#include <thread>

#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/data_page.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/shared_file_fixture.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

using test::ErrorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;

constexpr uint32_t kPage = 5;  // one that the tests write

class SharedFileOfOne : public SharedFileTest {
 protected:
  SharedFileOfOne() { PutFile(Path(), SampleBytes("adox_jet4")); }

  int OpeningFails(const std::string& password = "", Access access = Access::kShared) const {
    return ErrorOf([&] { SharedFile::Open(Path(), password, access, kShortly); });
  }
};

Bytes PageOf(uint8_t byte) { return Bytes(kJet4.page_size, byte); }
uint8_t FirstByte(SharedFile& shared, uint32_t page) { return (*shared.file().Read(page))[0]; }

void CommitByte(SharedFile& shared, uint32_t page, uint8_t byte) {
  shared.Lock();
  shared.file().Write(page, PageOf(byte));
  shared.Commit();
  shared.Unlock();
}

TEST_F(SharedFileOfOne, IsOpenedForWhatItIs) {
  const auto open = [](const std::string& path) {
    return ErrorOf([&] { SharedFile::Open(path, "", Access::kShared); });
  };
  EXPECT_EQ(open(folder_.File("other.mdb")), kFileNotFound);
  EXPECT_EQ(open(folder_.File("none/mill.mdb")), kInvalidPath);
  EXPECT_EQ(open(folder_.Folder("folder.mdb")), kAccessDenied);
  EXPECT_EQ(OpeningFails("secret"), 0);  // which it does not need
  EXPECT_EQ(OpeningFails(), 0);
}

TEST_F(SharedFileOfOne, RefusesWhatIsNoSoundDatabaseAndLeavesNothingBeside) {
  PutFile(Path(), Bytes(10, 'x'));
  EXPECT_EQ(OpeningFails(), kUnrecognised);
  PutFile(Path(), {});
  EXPECT_EQ(OpeningFails(), kUnrecognised);
  Bytes damaged = SampleBytes("adox_jet4");
  damaged[kObjectsPage * kJet4.page_size] = 9;
  PutFile(Path(), damaged);
  EXPECT_EQ(OpeningFails(), kDamaged);
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
}

TEST_F(SharedFileOfOne, KeepsCommitsAndLeavesNothingBeside) {
  constexpr uint32_t kCommits = 20;
  const std::vector<Bytes> states = StatesOf(FileBytes(Path()), kCommits);
  {
    const auto shared = Open();
    for (uint32_t number = 1; number <= kCommits; ++number) {
      CommitChanges(*shared, number);
      ASSERT_EQ(FileBytes(Path()), states[number]);
    }
    EXPECT_EQ(FilesInFolder().size(), 3U);
  }
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
  const auto shared = Open();
  EXPECT_EQ(shared->file().page_count(), states.back().size() / kJet4.page_size);
}

TEST_F(SharedFileOfOne, ForgetsWhatIsNotCommitted) {
  const auto shared = Open();
  const Bytes before = FileBytes(Path());
  shared->Lock();
  shared->file().Write(kPage, PageOf(7));
  shared->file().Write(shared->file().page_count(), PageOf(8));
  shared->Unlock();
  EXPECT_NE(FirstByte(*shared, kPage), 7);
  EXPECT_EQ(shared->file().page_count(), before.size() / kJet4.page_size);
  EXPECT_EQ(FileBytes(Path()), before);
}

TEST_F(SharedFileOfOne, CommitsOnlyInItsTurn) {
  const auto shared = Open();
  shared->file().Write(kPage, PageOf(7));
  EXPECT_EQ(ErrorOf([&] { shared->Commit(); }), kNoTransaction);
}

TEST_F(SharedFileOfOne, CommitsNothingWhenNothingWasChanged) {
  const auto shared = Open();
  const Bytes before = FileBytes(Path());
  shared->Lock();
  shared->Commit();
  shared->Unlock();
  EXPECT_EQ(FileBytes(Path()), before);
}

TEST_F(SharedFileOfOne, CommitsSeveralTimesInOneTurn) {
  const auto shared = Open();
  const auto other = Open();
  shared->Lock();
  for (uint8_t byte = 1; byte <= 3; ++byte) {
    shared->file().Write(kPage, PageOf(byte));
    shared->Commit();
    EXPECT_TRUE(other->ChangedByOthers());
    EXPECT_EQ(FirstByte(*other, kPage), byte);
    EXPECT_EQ(ErrorOf([&] { other->Lock(); }), kRecordLocked);
  }
  shared->Unlock();
  EXPECT_EQ(ErrorOf([&] { other->Lock(); }), 0);
}

TEST_F(SharedFileOfOne, TellsWhenOthersHaveCommitted) {
  const auto writer = Open();
  const auto reader = Open(Access::kReadOnly);
  EXPECT_FALSE(reader->ChangedByOthers());
  const uint32_t pages = reader->file().page_count();
  CommitByte(*writer, pages, 1);
  CommitByte(*writer, kPage, 2);
  EXPECT_TRUE(reader->ChangedByOthers());
  EXPECT_FALSE(reader->ChangedByOthers());
  EXPECT_FALSE(writer->ChangedByOthers());
  EXPECT_EQ(reader->file().page_count(), pages + 1);
  EXPECT_EQ(FirstByte(*reader, kPage), 2);
}

TEST_F(SharedFileOfOne, TellsOfCommitsBeforeItsOwn) {
  const auto shared = Open();
  CommitByte(*Open(), kPage, 1);
  shared->Lock();
  shared->file().Write(kPage + 1, PageOf(2));
  EXPECT_TRUE(shared->ChangedByOthers());
  EXPECT_EQ(FirstByte(*shared, kPage + 1), 2);
  shared->Unlock();

  CommitByte(*Open(), kPage, 3);
  CommitByte(*shared, kPage + 1, 4);
  EXPECT_TRUE(shared->ChangedByOthers());
  EXPECT_FALSE(shared->ChangedByOthers());
}

TEST_F(SharedFileOfOne, DoesNotCommitOverAnotherProgram) {
  const auto shared = Open();
  shared->Lock();
  shared->file().Write(kPage, PageOf(1));
  Bytes bytes = FileBytes(Path());
  Put(bytes, kJet4.commit_table_at + 2 * 5, 0x0123, 2);
  PutFile(Path(), bytes);
  EXPECT_EQ(ErrorOf([&] { shared->Commit(); }), kFileInUse);
  EXPECT_EQ(FileBytes(Path()), bytes);
  shared->Unlock();
  CommitByte(*shared, kPage, 1);
}

TEST_F(SharedFileOfOne, TellsWhenAnotherProgramHasCommitted) {
  const auto shared = Open();
  constexpr size_t kUser = 5;
  Bytes bytes = FileBytes(Path());
  Put(bytes, kJet4.commit_table_at + 2 * kUser, 0x0123, 2);
  PutFile(Path(), bytes);
  EXPECT_TRUE(shared->ChangedByOthers());
  EXPECT_EQ(shared->file().header().commits[kUser], 0x0123);
}

TEST_F(SharedFileOfOne, KnowsWhichPagesOthersHaveWritten) {
  const auto shared = Open();
  const auto other = Open();
  const auto expect_pages = [&](const auto& pages) {
    EXPECT_TRUE(shared->ChangedByOthers());
    EXPECT_THAT(shared->PagesOfOthers(), pages);
  };
  CommitByte(*other, kPage, 1);
  expect_pages(Optional(ElementsAre(0U, kPage)));
  CommitByte(*other, kPage + 2, 2);
  expect_pages(Optional(ElementsAre(0U, kPage, kPage + 2)));
  shared->ForgetPagesOfOthers();
  CommitByte(*shared, kPage, 3);
  EXPECT_FALSE(shared->ChangedByOthers());
  CommitByte(*other, kPage + 1, 4);
  expect_pages(Optional(ElementsAre(0U, kPage + 1)));
}

TEST_F(SharedFileOfOne, KnowsThePagesOfOneCommitOfOursOnly) {
  const auto shared = Open();
  const auto other = Open();
  const auto expect_unknown = [&] {
    EXPECT_TRUE(shared->ChangedByOthers());
    EXPECT_EQ(shared->PagesOfOthers(), std::nullopt);
  };
  CommitByte(*other, kPage, 1);
  CommitByte(*other, kPage + 1, 2);
  expect_unknown();
  CommitByte(*other, kPage, 3);
  expect_unknown();  // until they are forgotten
  shared->ForgetPagesOfOthers();

  CommitByte(*other, kPage, 4);
  Bytes bytes = FileBytes(Path());
  Put(bytes, kJet4.commit_table_at + 2 * 5, 0x0123, 2);
  PutFile(Path(), bytes);
  expect_unknown();
}

TEST_F(SharedFileOfOne, CountsItsCommitsInTheHeaderForEver) {
  Bytes bytes = FileBytes(Path());
  Put(bytes, kJet4.commit_table_at, 0xFFFE, 2);
  PutFile(Path(), bytes);
  const auto shared = Open();
  for (const int entry : {0xFFFF, 0x0101, 0x0102}) {
    CommitByte(*shared, kPage, 1);
    EXPECT_EQ(shared->file().header().commits[0], entry);
  }
}

TEST_F(SharedFileOfOne, StaysAsItIsInAMoment) {
  const auto writer = Open();
  const auto reader = Open();
  writer->Lock();
  writer->file().Write(kPage, PageOf(7));
  {
    const SharedFile::Moment moment = reader->Read();
    { const SharedFile::Moment nested = reader->Read(); }
    EXPECT_EQ(ErrorOf([&] { writer->Commit(); }), kRecordLocked);
    EXPECT_FALSE(reader->ChangedByOthers());
    EXPECT_NE(FirstByte(*reader, kPage), 7);
  }
  writer->Commit();
  EXPECT_TRUE(reader->ChangedByOthers());
  EXPECT_EQ(FirstByte(*reader, kPage), 7);
}

TEST_F(SharedFileOfOne, LetsOthersReadAfterACommitThatWasInTheWay) {
  const auto writer = Open();
  const auto reader = Open();
  const auto third = Open();
  writer->Lock();
  writer->file().Write(kPage, PageOf(7));
  const SharedFile::Moment moment = reader->Read();
  EXPECT_EQ(ErrorOf([&] { writer->Commit(); }), kRecordLocked);
  EXPECT_EQ(ErrorOf([&] { third->Read(); }), 0);
}

TEST_F(SharedFileOfOne, IsHeldByOneAlone) {
  {
    const auto alone = Open(Access::kExclusive);
    EXPECT_EQ(OpeningFails(), kFileInUse);
    EXPECT_EQ(OpeningFails("", Access::kReadOnly), kFileInUse);
    EXPECT_EQ(OpeningFails("", Access::kExclusiveReadOnly), kFileInUse);
    CommitByte(*alone, kPage, 7);
    EXPECT_EQ(OpeningFails(), kFileInUse);
    EXPECT_EQ(FirstByte(*alone, kPage), 7);
  }
  const auto shared = Open();
  EXPECT_EQ(OpeningFails("", Access::kExclusive), kFileInUse);
  EXPECT_EQ(OpeningFails("", Access::kExclusiveReadOnly), kFileInUse);
  EXPECT_EQ(OpeningFails(), 0);
  EXPECT_EQ(FirstByte(*shared, kPage), 7);
}

TEST_F(SharedFileOfOne, WaitsForTheEndOfAnExclusiveOpening) {
  auto alone = Open(Access::kExclusive);
  std::thread closing([&] {
    std::this_thread::sleep_for(kShortly);
    alone.reset();
  });
  EXPECT_NE(Open(Access::kExclusive, std::chrono::minutes(1)), nullptr);
  closing.join();
}

TEST_F(SharedFileOfOne, IsOnlyReadWhenThatWasAskedFor) {
  for (const Access access : {Access::kReadOnly, Access::kExclusiveReadOnly}) {
    const auto shared = Open(access);
    EXPECT_TRUE(shared->read_only());
    EXPECT_EQ(ErrorOf([&] { shared->Lock(); }), kOnlyReadable);
  }
}

TEST_F(SharedFileOfOne, IsOnlyReadInTheOlderFormat) {
  PutFile(Path(), SampleBytes("testV1997"));
  const auto shared = Open();
  EXPECT_TRUE(shared->read_only());
  EXPECT_TRUE(Check(shared->file()).empty());
  EXPECT_FALSE(shared->ChangedByOthers());
}

TEST_F(SharedFileOfOne, IsNotWrittenWhenAnotherProgramLeftItInTheMiddle) {
  Bytes bytes = FileBytes(Path());
  Put(bytes, kJet4.commit_table_at + 2 * 3, 0, 2);
  PutFile(Path(), bytes);
  const auto shared = Open();
  EXPECT_FALSE(shared->read_only());
  EXPECT_EQ(ErrorOf([&] { shared->Lock(); }), kDamaged);
  EXPECT_EQ(FileBytes(Path()), bytes);
  Put(bytes, kJet4.commit_table_at + 2 * 3, 0x0100, 2);
  PutFile(Path(), bytes);
  CommitByte(*shared, kPage, 7);
}

// Bytes between the slots and the rows of data pages mean nothing.
void ChangeFreeSpace(JetFile& file, uint8_t byte) {
  for (uint32_t number = kObjectsPage; number < file.page_count(); ++number) {
    Bytes page = *file.Read(number);
    const ByteView view(page, {number, 0});
    if (view.U16(0) != static_cast<uint16_t>(PageType::kData)) continue;
    const size_t slots_end = kJet4.slots_at + 2U * view.U16(kJet4.row_count_at);
    const size_t free = view.U16(2);
    if (free == 0 || page[slots_end] == byte) continue;
    page[slots_end] = byte;
    file.Write(number, page);
  }
}

TEST_F(SharedFileOfOne, KeepsSamplesSound) {
  for (const Sample& sample : Samples()) {
    if (!sample.jet4) continue;
    SCOPED_TRACE(sample.name);
    PutFile(Path(), SampleBytes(sample.name));
    const auto open = [&] {
      return SharedFile::Open(Path(), sample.password, Access::kShared, kShortly);
    };
    for (uint8_t byte = 1; byte <= 3; ++byte) {
      const auto shared = open();
      shared->Lock();
      ChangeFreeSpace(shared->file(), byte);
      EXPECT_FALSE(shared->file().changes().empty());
      shared->Commit();
      shared->Unlock();
    }
    const auto shared = open();
    EXPECT_TRUE(Check(shared->file()).empty());
    ChangeFreeSpace(shared->file(), 3);
    EXPECT_TRUE(shared->file().changes().empty());
  }
}

TEST_F(SharedFileOfOne, IsSharedByTwoThreads) {
  constexpr int kCommits = 20;
  CommitByte(*Open(), kPage, 0);
  CommitByte(*Open(), kPage + 1, 0);
  const auto work = [&] {
    const auto shared = Open(Access::kShared, std::chrono::minutes(1));
    for (int left = kCommits; left > 0; --left) {
      shared->Lock();
      const auto next = static_cast<uint8_t>(FirstByte(*shared, kPage) + 1);
      shared->file().Write(kPage, PageOf(next));
      shared->file().Write(kPage + 1, PageOf(next));
      shared->Commit();
      shared->Unlock();
      const SharedFile::Moment moment = shared->Read();
      if (*shared->file().Read(kPage) != *shared->file().Read(kPage + 1)) return;
    }
  };
  std::thread first(work);
  std::thread second(work);
  first.join();
  second.join();
  EXPECT_EQ(FirstByte(*Open(), kPage), 2 * kCommits);
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
}

// The last one takes the side files away while the next one opens them.
TEST_F(SharedFileOfOne, IsOpenedWhileOthersCloseIt) {
  constexpr int kCommits = 25;
  CommitByte(*Open(), kPage, 0);
  const auto work = [&] {
    for (int left = kCommits; left > 0; --left) {
      const auto shared = Open(Access::kShared, std::chrono::minutes(1));
      shared->Lock();
      shared->file().Write(kPage, PageOf(static_cast<uint8_t>(FirstByte(*shared, kPage) + 1)));
      shared->Commit();
    }
  };
  std::vector<std::thread> threads;
  for (int left = 4; left > 0; --left) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(FirstByte(*Open(), kPage), 4 * kCommits);
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
}

}  // namespace
}  // namespace ambrelio::jetfile
