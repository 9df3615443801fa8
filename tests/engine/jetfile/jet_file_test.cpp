#include "ambrelio/engine/jetfile/jet_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/damage.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/samples.h"
#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kVersionAt = 0x14;

int OpeningFails(const Bytes& bytes, const std::string& password = "") {
  return test::ErrorOf([&] { JetFile::FromBytes(bytes, password); });
}

std::string WhyNotOpened(const Bytes& bytes) {
  try {
    JetFile::FromBytes(bytes, "");
  } catch (const AutomationError& error) {
    return error.description();
  }
  return "opened";
}

TEST(JetFile, OpensWithItsPasswordOnly) {
  const Bytes file = SampleBytes("password");
  EXPECT_EQ(OpeningFails(file, "ucanaccess"), 0);
  EXPECT_EQ(OpeningFails(file, "Ucanaccess"), kWrongPassword);
  EXPECT_EQ(OpeningFails(file), kWrongPassword);
  EXPECT_EQ(OpeningFails(SampleBytes("pivot"), "ucanaccess"), 0);  // has none
}

TEST(JetFile, RefusesLaterVersions) {
  for (const int version : {2, 3, 5, 6}) {
    Bytes file = SampleBytes("adox_jet4");
    file[kVersionAt] = static_cast<uint8_t>(version);
    EXPECT_EQ(OpeningFails(file), kUnrecognised);
  }
  Bytes file = SampleBytes("adox_jet4");
  const std::string ace = "Standard ACE DB";
  std::copy(ace.begin(), ace.end(), file.begin() + 4);
  EXPECT_EQ(OpeningFails(file), kUnrecognised);
  EXPECT_THAT(WhyNotOpened(file), testing::HasSubstr("Access 2007 or later"));
}

TEST(JetFile, RefusesWhatIsNoDatabase) {
  EXPECT_EQ(OpeningFails({}), kUnrecognised);
  EXPECT_EQ(OpeningFails(Bytes(5000, 'x')), kUnrecognised);
  Bytes file = SampleBytes("adox_jet4");
  file[0] = 1;
  EXPECT_EQ(OpeningFails(file), kUnrecognised);
}

TEST(JetFile, RefusesAnUnknownEncryption) {
  Bytes file = SampleBytes("db-enc");
  file[0x1000 * 2] ^= 1;
  EXPECT_EQ(OpeningFails(file), kUnrecognised);
  EXPECT_THAT(WhyNotOpened(file), testing::HasSubstr("encrypted"));
}

TEST(JetFile, IsDamagedWithoutItsFirstPages) {
  Bytes file = SampleBytes("adox_jet4");
  file.resize(0x800);
  EXPECT_EQ(OpeningFails(file), kDamaged);
  file = SampleBytes("adox_jet4");
  file.resize(0x2000);
  EXPECT_EQ(OpeningFails(file), kDamaged);
  file = SampleBytes("adox_jet4");
  file[0x2000] = 9;
  EXPECT_EQ(OpeningFails(file), kDamaged);
  EXPECT_THAT(WhyNotOpened(file), testing::HasSubstr("page 2, offset 0x0"));
}

TEST(Header, UnmasksAndMasksToTheSameBytes) {
  const Bytes page = *ReadFromDisk(SamplePath("password"), "ucanaccess").Read(0);
  Bytes twice = page;
  MaskHeader(twice, kJet4);
  EXPECT_NE(twice, page);
  MaskHeader(twice, kJet4);
  EXPECT_EQ(twice, page);
}

TEST(ChangedPages, AreReadAsWrittenAndLeaveTheFileAsItIs) {
  const Bytes file = SampleBytes("adox_jet4");
  ChangedPages pages(std::make_unique<MemoryPages>(file, kJet4.page_size));
  const Page held = pages.Read(3);
  pages.Write(3, Bytes(kJet4.page_size, 7));
  pages.Write(16, Bytes(kJet4.page_size, 8));
  EXPECT_EQ(pages.page_count(), 17U);
  EXPECT_EQ((*pages.Read(3))[0], 7);
  EXPECT_EQ((*held)[0], 2);
  EXPECT_EQ(test::ErrorOf([&] { pages.Write(18, Bytes(kJet4.page_size)); }), kDamaged);
  pages.Forget();
  EXPECT_EQ(pages.page_count(), 16U);
  EXPECT_EQ(*pages.Read(3), *held);
}

TEST(JetFile, EnciphersTheChangesOfAnEncryptedFile) {
  const Bytes bytes = SampleBytes("db-enc");
  JetFile file = JetFile::FromBytes(bytes, "");
  for (uint32_t page = 0; page < file.page_count(); ++page) file.Write(page, *file.Read(page));
  Bytes stored;
  for (const auto& [number, page] : file.StoredChanges()) Append(stored, *page);
  EXPECT_EQ(stored, bytes);
}

TEST(JetFile, KnowsTheHeaderThatIsWritten) {
  JetFile file = JetFile::FromBytes(SampleBytes("adox_jet4"), "");
  const std::vector<uint16_t> commits = file.header().commits;
  Bytes header = *file.Read(0);
  Put(header, kJet4.commit_table_at, commits[0] + 1U, 2);
  file.Write(0, header);
  EXPECT_EQ(file.header().commits[0], commits[0] + 1);
  file.ForgetChanges();
  EXPECT_EQ(file.header().commits, commits);
}

}  // namespace
}  // namespace ambrelio::jetfile
