// One file under the hands of several processes.
#include "engine/jetfile/shared_file_fixture.h"
#include "support/error_of.h"
#include "support/second_process.h"

namespace ambrelio::jetfile {
namespace {

using test::ErrorOf;
using test::SecondProcess;

constexpr std::chrono::milliseconds kAsLongAsItTakes = std::chrono::minutes(1);

class SharedFileProcesses : public SharedFileTest {
 protected:
  SharedFileProcesses() {
    if (!SecondProcess::IsThis()) PutFile(Path(), SampleBytes("adox_jet4"));
  }
};

// Two pages that every commit changes together.
constexpr uint32_t kFirst = 5;
constexpr uint32_t kSecond = 9;

uint32_t Counter(SharedFile& shared, uint32_t page) {
  return ViewOf(shared.file().Read(page), page).U32(0);
}

// Counts up, and looks in between whether the pages agree. Throws when they do not.
void CountUp(const std::string& path, int times) {
  const auto shared = SharedFile::Open(path, "", SharedFile::Access::kShared, kAsLongAsItTakes);
  for (; times > 0; --times) {
    {
      const SharedFile::Moment moment = shared->Read();
      shared->ChangedByOthers();
      if (Counter(*shared, kFirst) != Counter(*shared, kSecond)) throw std::runtime_error("torn");
    }
    shared->Lock();
    Bytes page = *shared->file().Read(kFirst);
    Put(page, 0, Counter(*shared, kFirst) + 1U, 4);
    shared->file().Write(kFirst, page);
    shared->file().Write(kSecond, page);
    shared->file().Write(shared->file().page_count(), page);
    shared->Commit();
    shared->Unlock();
  }
}

TEST_F(SharedFileProcesses, TakeTheirTurns) {
  constexpr int kTimes = 15;
  constexpr uint32_t kProcesses = 4;
  Bytes bytes = FileBytes(Path());
  for (const uint32_t page : {kFirst, kSecond}) Put(bytes, page * kJet4.page_size, 0, 4);
  if (!SecondProcess::IsThis()) PutFile(Path(), bytes);
  const auto work = [&](SecondProcess&) { CountUp(Path(), kTimes); };
  {
    SecondProcess second(folder_, work);
    SecondProcess third(folder_, work);
    SecondProcess fourth(folder_, work);
    CountUp(Path(), kTimes);
    EXPECT_TRUE(second.EndedWell());
    EXPECT_TRUE(third.EndedWell());
    EXPECT_TRUE(fourth.EndedWell());
  }
  const auto shared = Open();
  EXPECT_EQ(Counter(*shared, kFirst), kProcesses * kTimes);
  EXPECT_EQ(Counter(*shared, kSecond), kProcesses * kTimes);
  EXPECT_EQ(shared->file().page_count(), bytes.size() / kJet4.page_size + kProcesses * kTimes);
}

TEST_F(SharedFileProcesses, LeaveTheirTurnWhenTheyDie) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    const auto shared = Open();
    shared->Lock();
    MakeChanges(shared->file(), 1);
    parent.Signal();
    parent.Await();
  });
  ASSERT_TRUE(child.Await());
  const Bytes before = FileBytes(Path());
  const auto shared = Open();
  EXPECT_NE(ErrorOf([&] { shared->Lock(); }), 0);
  child.Kill();
  EXPECT_EQ(ErrorOf([&] { shared->Lock(); }), 0);
  EXPECT_EQ(FileBytes(Path()), before);
}

}  // namespace
}  // namespace ambrelio::jetfile
