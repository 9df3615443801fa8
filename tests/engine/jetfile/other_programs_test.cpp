// A user of the original engine beside us, as far as locks on bytes of the .ldb file make one.
#include "ambrelio/engine/jetfile/other_programs.h"

#include "engine/jetfile/errors.h"
#include "engine/jetfile/shared_file_fixture.h"
#include "support/byte_lock.h"
#include "support/error_of.h"
#include "support/second_process.h"

namespace ambrelio::jetfile {
namespace {

using test::ErrorOf;
using test::SecondProcess;
using testing::AllOf;
using testing::HasSubstr;

constexpr size_t kSlotBytes = 64;

class OtherPrograms : public SharedFileTest {
 protected:
  OtherPrograms() {
    if (SecondProcess::IsThis()) return;
    PutFile(Path(), SampleBytes("adox_jet4"));
    Bytes slots(2 * kSlotBytes);
    const auto put = [&](size_t at, std::string_view name) {
      std::copy(name.begin(), name.end(), slots.begin() + static_cast<ptrdiff_t>(at));
    };
    put(0, "FRONT");
    put(kSlotBytes / 2, "Admin");
    put(kSlotBytes, "OFFICE");
    put(kSlotBytes + kSlotBytes / 2, "Ana");
    PutFile(UsersPath(), slots);
  }

  std::string UsersPath() const { return folder_.File("mill.ldb"); }

  // What a user's program does: it has the byte of the second slot for itself.
  void BeTheSecondUser(SecondProcess& parent) const {
    const test::ByteLock lock(UsersPath(), 0x10000002, 1);
    parent.Signal();
    parent.Await();
  }
};

TEST_F(OtherPrograms, AreNotWrittenUnder) {
  SecondProcess user(folder_, [&](SecondProcess& parent) { BeTheSecondUser(parent); });
  ASSERT_TRUE(user.Await());
  const Bytes before = FileBytes(Path());
  const auto shared = Open();
  EXPECT_EQ(ErrorOf([&] { shared->Read(); }), 0);
  try {
    shared->Lock();
    FAIL() << "the file is in use";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), kFileInUse);
    EXPECT_THAT(error.description(), AllOf(HasSubstr("'OFFICE'"), HasSubstr("'Ana'")));
  }
  EXPECT_EQ(FileBytes(Path()), before);
  EXPECT_EQ(ErrorOf([&] { Open()->Lock(); }), kFileInUse);
  EXPECT_EQ(ErrorOf([&] { Open(Access::kExclusive); }), kFileInUse);

  user.Signal();
  ASSERT_TRUE(user.EndedWell());
  CommitChanges(*shared, 1);
  EXPECT_EQ(FileBytes(Path()), StatesOf(before, 1).back());
}

TEST_F(OtherPrograms, AreFoundBeforeACommit) {
  SecondProcess user(folder_, [&](SecondProcess& parent) {
    parent.Await();
    BeTheSecondUser(parent);
  });
  const Bytes before = FileBytes(Path());
  const auto shared = Open();
  shared->Lock();
  MakeChanges(shared->file(), 1);
  user.Signal();
  ASSERT_TRUE(user.Await());
  EXPECT_EQ(ErrorOf([&] { shared->Commit(); }), kFileInUse);
  EXPECT_EQ(FileBytes(Path()), before);

  user.Signal();
  ASSERT_TRUE(user.EndedWell());
  shared->Commit();
  EXPECT_EQ(FileBytes(Path()), StatesOf(before, 1).back());
}

TEST_F(OtherPrograms, LeaveAFileBehindThatMeansNothing) {
  CommitChanges(*Open(), 1);
  EXPECT_EQ(ErrorOf([&] { RefuseWhileOthersHaveIt(folder_.File("other.mdb")); }), 0);
}

}  // namespace
}  // namespace ambrelio::jetfile
