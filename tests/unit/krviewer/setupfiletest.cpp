// A setup's file on disks that answer, or do not.

#include "bridges/setupfile.h"

#include "await.h"
#include "hangingdisk.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

using krviewer::SetupFile;
using testing::HasSubstr;

namespace {

KrConfigurationWriter MakeContent(const char* aValue = "there") {
  KrPropertyList list;
  list.Add({"Key", aValue});
  KrConfigurationWriter writer;
  EXPECT_TRUE(writer.Store("List", list).IsOK());
  return writer;
}

std::string GetValue(const KrConfigurationReader& aContent) {
  KrPropertyList list;
  return aContent.Restore("List", list).IsOK() ? list.GetProperty("Key")->GetValue().ToUtf8() : "";
}

bool AwaitUsed(SetupFile& aFile) {
  return krtest::Await([&aFile] {
    aFile.Follow();
    return !aFile.IsInUse();
  });
}

class SetupFiles : public testing::Test {
protected:
  /// Does it on a thread that is on the disk, and waits for that.
  void DoOnDisk(const std::function<void()>& aDeed, HangingDisk::Calls aCalls = HangingDisk::Calls::Flushes) {
    std::thread([&] {
      ASSERT_TRUE(mDisk.Enter(aCalls));
      aDeed();
    }).join();
  }
  /// Lets the disk answer, and waits for the end of the thread that was left there.
  void RecoverAndAwaitThread() {
    mDisk.Recover();
    EXPECT_TRUE(krtest::Await([this] { return HangingDisk::CountThreads() <= mThreads; }));
  }
  bool AwaitHanging() {
    return krtest::Await([this] { return mDisk.CountWaiting() > 0; });
  }

  const TemporaryFolder mFolder;
  const std::string mName = mFolder.GetFile("setup.xml");
  HangingDisk mDisk{mFolder.GetPath().string()};
  const std::size_t mThreads = HangingDisk::CountThreads(); ///< Without a file's.
};

} // namespace

TEST_F(SetupFiles, Written_IsReadAgain) {
  SetupFile file;
  std::optional<KrResult> written;
  std::string value;

  file.Write(mName, MakeContent(), [&](const KrResult& aResult) { written = aResult; });
  ASSERT_TRUE(AwaitUsed(file));
  file.Read(mName, [&](const KrResult&, const KrConfigurationReader& aContent) { value = GetValue(aContent); });
  ASSERT_TRUE(AwaitUsed(file));

  EXPECT_TRUE(written.has_value() && written->IsOK());
  EXPECT_EQ(value, "there");
}

TEST_F(SetupFiles, FileThatIsMissing_IsToldWhenItIsFollowed) {
  SetupFile file;
  KrResult read;

  file.Read(mName, [&](const KrResult& aResult, const KrConfigurationReader&) { read = aResult; });
  EXPECT_TRUE(file.IsInUse());
  EXPECT_TRUE(read.IsOK());
  ASSERT_TRUE(AwaitUsed(file));

  EXPECT_EQ(read, KrResult::Code::NotFound);
  EXPECT_THAT(read.GetDescription().ToUtf8(), HasSubstr(mName));
}

TEST_F(SetupFiles, DiskThatHangsWhileItIsWritten_HoldsNothingUp) {
  SetupFile file;
  std::optional<KrResult> written;
  mDisk.Hang();

  DoOnDisk([&] { file.Write(mName, MakeContent(), [&](const KrResult& aResult) { written = aResult; }); });
  ASSERT_TRUE(AwaitHanging());
  file.Follow();
  EXPECT_TRUE(file.IsWriting());
  EXPECT_FALSE(written.has_value());

  mDisk.Recover();
  ASSERT_TRUE(AwaitUsed(file));
  EXPECT_TRUE(written.has_value() && written->IsOK());
}

TEST_F(SetupFiles, DiskThatHangsWhileItIsRead_HoldsNothingUpAndIsAwaitedByNobody) {
  ASSERT_TRUE(MakeContent().Save(mName).IsOK());
  mDisk.Hang();
  {
    SetupFile file;
    DoOnDisk(
        [&] {
          file.Read(mName, [](const KrResult&, const KrConfigurationReader&) { FAIL() << "Nobody looks at it."; });
        },
        HangingDisk::Calls::Openings);
    ASSERT_TRUE(AwaitHanging());
    file.Follow();
    EXPECT_TRUE(file.IsInUse());
    EXPECT_FALSE(file.IsWriting());
  }

  RecoverAndAwaitThread();
}

TEST_F(SetupFiles, DiskThatAnswersAgain_GivesWhatWasAskedFor) {
  ASSERT_TRUE(MakeContent().Save(mName).IsOK());
  mDisk.Hang();
  SetupFile file;
  std::string value;
  DoOnDisk(
      [&] {
        file.Read(mName, [&](const KrResult&, const KrConfigurationReader& aContent) { value = GetValue(aContent); });
      },
      HangingDisk::Calls::Openings);
  ASSERT_TRUE(AwaitHanging());

  mDisk.Recover();

  ASSERT_TRUE(AwaitUsed(file));
  EXPECT_EQ(value, "there");
}

TEST_F(SetupFiles, EndedWhileItIsWritten_IsWhole) {
  {
    SetupFile file;
    file.Write(mName, MakeContent(), [](const KrResult&) { FAIL() << "Nobody looks at it."; });
  }

  KrConfigurationReader reader;
  ASSERT_TRUE(reader.Load(mName).IsOK());
  EXPECT_EQ(GetValue(reader), "there");
}

TEST_F(SetupFiles, LeftWhileItIsWritten_IsFreeForAnother) {
  SetupFile file;
  mDisk.Hang();
  DoOnDisk([&] { file.Write(mName, MakeContent(), [](const KrResult&) { FAIL() << "It was left."; }); });
  ASSERT_TRUE(AwaitHanging());

  file.Leave();

  EXPECT_FALSE(file.IsInUse());
  std::optional<KrResult> written;
  file.Write(mFolder.GetFile("other.xml"), MakeContent(), [&](const KrResult& aResult) { written = aResult; });
  ASSERT_TRUE(AwaitUsed(file));
  EXPECT_TRUE(written.has_value() && written->IsOK());
  RecoverAndAwaitThread();
  EXPECT_TRUE(std::filesystem::exists(mName));
}
