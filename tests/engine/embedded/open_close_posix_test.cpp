// Opening and making files that a user has no right to, or that other systems have no name for.
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <stdexcept>

#include "support/engine_test.h"
#include "support/second_process.h"

namespace ambrelio::embedded {
namespace {

namespace fs = std::filesystem;
using test::ErrorOf;

using FileNames = test::EngineTest;

class Permissions : public test::EngineTest {
 protected:
  // Does something as a user without rights over other people's files.
  bool AsOrdinaryUser(const std::function<void()>& action) {
    constexpr uid_t kNobody = 65534;
    test::SecondProcess child(folder_, [&](test::SecondProcess&) {
      if (geteuid() == 0 && seteuid(kNobody) != 0) throw std::runtime_error("no other user");
      action();
    });
    return child.EndedWell();
  }
};

TEST_F(Permissions, OpensAFileThatMayNotBeWrittenForReading) {
  AddTanks(*Create());
  fs::permissions(Path(), fs::perms{0444});
  fs::permissions(folder_.path(), fs::perms{0777});
  EXPECT_TRUE(AsOrdinaryUser([&] {
    for (const bool read_only : {false, true}) {
      const auto database = workspace().OpenDatabase(Path(), false, read_only, "");
      if (CountRows(*database) != 0) throw std::runtime_error("rows");
      if (ErrorOf([&] { AddTanks(*database, "Otra"); }) != 3027)
        throw std::runtime_error("written");
    }
  }));
}

TEST_F(Permissions, OpensAFileInAFolderThatMayNotBeWritten) {
  AddTanks(*Create());
  fs::permissions(Path(), fs::perms{0444});
  fs::permissions(folder_.path(), fs::perms{0555});
  const bool ended_well = AsOrdinaryUser([&] {
    if (CountRows(*workspace().OpenDatabase(Path(), false, true, "")) != 0) {
      throw std::runtime_error("rows");
    }
  });
  fs::permissions(folder_.path(), fs::perms{0755});
  EXPECT_TRUE(ended_well);
}

TEST_F(Permissions, IsDeniedAFileThatMayNotBeRead) {
  Create()->Close();
  fs::permissions(Path(), fs::perms{0});
  fs::permissions(folder_.path(), fs::perms{0755});
  EXPECT_TRUE(AsOrdinaryUser([&] {
    if (ErrorOf([&] { Open(); }) != 3051) throw std::runtime_error("not denied");
  }));
}

TEST_F(Permissions, IsDeniedANewFileInAFolderThatMayNotBeWritten) {
  fs::permissions(folder_.path(), fs::perms{0555});
  const bool ended_well = AsOrdinaryUser([&] {
    if (ErrorOf([&] { Create(); }) != 3051) throw std::runtime_error("not denied");
  });
  fs::permissions(folder_.path(), fs::perms{0755});
  EXPECT_TRUE(ended_well);
}

TEST_F(FileNames, MayHoldSignsThatSearchesAreWrittenWith) {
  const std::string name = "what? *.mdb";
  Create(name)->Close();
  EXPECT_EQ(ErrorOf([&] { Open(name); }), 0);
}

}  // namespace
}  // namespace ambrelio::embedded
