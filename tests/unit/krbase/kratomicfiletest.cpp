#include "krbase/kratomicfile.h"

#include "filesizelimit.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <thread>

#include <sys/stat.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Existing = KrAtomicFile::Existing;

KrResult Save(const std::string& aPath, const std::string& aBytes, Existing aExisting = Existing::Replaced) {
  KrAtomicFile file;
  if (KrResult opened = file.Open(aPath, aExisting); !opened.IsOK())
    return opened;
  if (KrResult written = file.Write(aBytes.data(), aBytes.size()); !written.IsOK())
    return written;
  return file.Commit();
}

mode_t GetMode(const std::string& aPath) {
  struct stat status = {};
  EXPECT_EQ(::stat(aPath.c_str(), &status), 0) << aPath;
  return status.st_mode & 07777;
}

class AtomicFile : public testing::Test {
protected:
  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("settings.xml");
};

TEST_F(AtomicFile, Committed_HoldsEveryByteAndNothingElseIsLeft) {
  const KrResult result = Save(mPath, std::string("a\0b\n", 4));

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), std::string("a\0b\n", 4));
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

TEST_F(AtomicFile, Progress_HearsOfEveryByteInPiecesAndOnceMoreOfThoseFlushed) {
  const std::string bytes((std::size_t{9} << 20U) + 1, 'x');
  struct Row {
    KrAtomicFile::Flushing flushing;
    std::uint64_t heard;
  };
  for (const Row& row : {Row{KrAtomicFile::Flushing::LeftToSystem, bytes.size()},
                         Row{KrAtomicFile::Flushing::ToDisk, 2 * bytes.size()}}) {
    std::uint64_t heard = 0;
    std::uint64_t most = 0;
    KrAtomicFile file;
    file.SetProgress([&](std::uint64_t aBytes) {
      heard += aBytes;
      most = std::max(most, aBytes);
    });
    ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());
    ASSERT_TRUE(file.Write(bytes.data(), bytes.size()).IsOK());
    EXPECT_EQ(heard, bytes.size());

    EXPECT_TRUE(file.Commit(row.flushing).IsOK());

    EXPECT_EQ(heard, row.heard);
    EXPECT_LE(most, std::uint64_t{4} << 20U);
    EXPECT_EQ(TemporaryFolder::ReadFile(mPath).size(), bytes.size());
  }
}

TEST_F(AtomicFile, LeftToTheSystem_IsReadWholeAtOnce) {
  TemporaryFolder::WriteFile(mPath, "longer and old");
  KrAtomicFile file;
  ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());
  ASSERT_TRUE(file.Write("new", 3).IsOK());

  EXPECT_TRUE(file.Commit(KrAtomicFile::Flushing::LeftToSystem).IsOK());

  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "new");
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

TEST_F(AtomicFile, UntilTheCommit_TheOldFileIsRead) {
  TemporaryFolder::WriteFile(mPath, "old");
  KrAtomicFile file;
  ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());
  ASSERT_TRUE(file.Write("new", 3).IsOK());

  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "old");
  EXPECT_TRUE(file.Commit().IsOK());
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "new");
}

TEST_F(AtomicFile, UntilTheCommit_TheFileThatReplacesAnotherIsForItsOwnerAlone) {
  for (const mode_t rights : {0600U, 0644U, 0666U}) {
    TemporaryFolder::WriteFile(mPath, "old");
    ASSERT_EQ(::chmod(mPath.c_str(), rights), 0);
    KrAtomicFile file;
    ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());
    const auto names = mFolder.GetNames();
    const auto temporary = std::ranges::find_if(names, [](const auto& aName) { return aName.ends_with(".tmp"); });
    ASSERT_NE(temporary, names.end());

    EXPECT_EQ(GetMode(mFolder.GetFile(*temporary)), 0600U);
    EXPECT_TRUE(file.Commit().IsOK());
    EXPECT_EQ(GetMode(mPath), rights);
  }
}

TEST_F(AtomicFile, NotCommitted_LeavesNothing) {
  {
    KrAtomicFile file;
    ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());
    ASSERT_TRUE(file.Write("new", 3).IsOK());
  }

  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(AtomicFile, ReaderOfTheOldFile_KeepsReadingIt) {
  TemporaryFolder::WriteFile(mPath, "old text");
  std::ifstream reader(mPath);
  std::string first;
  reader >> first;

  ASSERT_TRUE(Save(mPath, "new").IsOK());

  std::string second;
  reader >> second;
  EXPECT_EQ(first + " " + second, "old text");
}

TEST_F(AtomicFile, Seek_WritesAnywhereAndGapsAreZeros) {
  KrAtomicFile file;
  ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());

  ASSERT_TRUE(file.Seek(2).IsOK());
  ASSERT_TRUE(file.Write("c", 1).IsOK());
  ASSERT_TRUE(file.Seek(0).IsOK());
  ASSERT_TRUE(file.Write("a", 1).IsOK());

  ASSERT_TRUE(file.Commit().IsOK());
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), std::string("a\0c", 3));
}

TEST_F(AtomicFile, Replacing_KeepsTheRightsOfTheFile) {
  TemporaryFolder::WriteFile(mPath, "old");
  ASSERT_EQ(::chmod(mPath.c_str(), 0640), 0);

  ASSERT_TRUE(Save(mPath, "new").IsOK());

  EXPECT_EQ(GetMode(mPath), 0640U);
}

TEST_F(AtomicFile, NewFile_HasTheRightsThatTheProcessGives) {
  const mode_t before = ::umask(0027);

  const KrResult result = Save(mPath, "new");

  ::umask(before);
  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(GetMode(mPath), 0640U);
}

TEST_F(AtomicFile, FileThatIsToBeKept_IsRefusedAndNamed) {
  TemporaryFolder::WriteFile(mPath, "old");

  const KrResult result = Save(mPath, "new", Existing::Kept);

  EXPECT_EQ(result.GetCode(), KrResult::Code::WrongState);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(mPath), HasSubstr("exists")));
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "old");
}

TEST_F(AtomicFile, FileThatAppearsMeanwhile_IsKeptAsAsked) {
  KrAtomicFile file;
  ASSERT_TRUE(file.Open(mPath, Existing::Kept).IsOK());
  TemporaryFolder::WriteFile(mPath, "another's");

  EXPECT_EQ(file.Commit().GetCode(), KrResult::Code::WrongState);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "another's");
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

TEST_F(AtomicFile, SymbolicLink_StaysAndItsTargetIsReplaced) {
  std::filesystem::create_directory(mFolder.GetFile("place"));
  TemporaryFolder::WriteFile(mFolder.GetFile("place/real.xml"), "old");
  std::filesystem::create_symlink("place/real.xml", mFolder.GetFile("second"));
  std::filesystem::create_symlink("second", mPath);

  ASSERT_TRUE(Save(mPath, "new").IsOK());

  EXPECT_TRUE(std::filesystem::is_symlink(mPath));
  EXPECT_EQ(TemporaryFolder::ReadFile(mFolder.GetFile("place/real.xml")), "new");
}

TEST_F(AtomicFile, SymbolicLinkToNothingYet_MakesItsTarget) {
  std::filesystem::create_symlink("real.xml", mPath);

  ASSERT_TRUE(Save(mPath, "new").IsOK());

  EXPECT_TRUE(std::filesystem::is_symlink(mPath));
  EXPECT_EQ(TemporaryFolder::ReadFile(mFolder.GetFile("real.xml")), "new");
}

TEST_F(AtomicFile, SymbolicLinksInARing_AreAnError) {
  std::filesystem::create_symlink("other", mPath);
  std::filesystem::create_symlink("settings.xml", mFolder.GetFile("other"));

  EXPECT_EQ(Save(mPath, "new").GetCode(), KrResult::Code::SystemError);
}

TEST_F(AtomicFile, SystemThatTakesNoMoreBytes_LeavesTheOldFileAlone) {
  TemporaryFolder::WriteFile(mPath, "old");
  const FileSizeLimit limit(1000);

  const KrResult result = Save(mPath, std::string(5000, 'x'));

  EXPECT_EQ(result.GetCode(), KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(mPath), HasSubstr("too large")));
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "old");
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

TEST_F(AtomicFile, CommitAfterAWriteThatFailed_GivesItsErrorAgain) {
  KrAtomicFile file;
  ASSERT_TRUE(file.Open(mPath, Existing::Replaced).IsOK());
  {
    const FileSizeLimit limit(10);
    ASSERT_FALSE(file.Write(std::string(100, 'x').data(), 100).IsOK());
  }

  EXPECT_EQ(file.Commit().GetCode(), KrResult::Code::SystemError);
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(AtomicFile, OperationsWithoutAnOpenFile_AreInTheWrongState) {
  KrAtomicFile file;

  EXPECT_EQ(file.Write("a", 1).GetCode(), KrResult::Code::WrongState);
  EXPECT_EQ(file.Seek(0).GetCode(), KrResult::Code::WrongState);
  EXPECT_EQ(file.Commit().GetCode(), KrResult::Code::WrongState);
}

struct PlaceRow {
  const char* name;
  const char* path; // Absolute, or within the test's folder.
  KrResult::Code code;
  const char* text;
};

class WrongPlace : public AtomicFile, public testing::WithParamInterface<PlaceRow> {};

TEST_P(WrongPlace, IsRefusedWithTheFilesNameAndTheReason) {
  TemporaryFolder::WriteFile(mFolder.GetFile("file"), "");
  std::filesystem::create_directory(mFolder.GetFile("folder"));
  const std::string path = (mFolder.GetPath() / GetParam().path).string();

  const KrResult result = Save(path, "new");

  EXPECT_EQ(result.GetCode(), GetParam().code) << result.GetCodeString().CStr();
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(path), HasSubstr(GetParam().text)));
}

INSTANTIATE_TEST_SUITE_P(
    Places, WrongPlace,
    testing::Values(PlaceRow{"FolderThatIsNotThere", "missing/a.xml", KrResult::Code::NotFound, "No such file"},
                    PlaceRow{"FolderThatIsAFile", "file/a.xml", KrResult::Code::NotFound, "Not a directory"},
                    PlaceRow{"Folder", "folder", KrResult::Code::InvalidInput, "no file"},
                    PlaceRow{"FolderWithSlash", "folder/", KrResult::Code::InvalidInput, "no file"},
                    PlaceRow{"Device", "/dev/full", KrResult::Code::InvalidInput, "no file"}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST_F(AtomicFile, FolderThatTakesNoFiles_IsAccessDenied) {
  const KrResult result = Save("/sys/settings.xml", "new"); // Nobody makes files there, not even root.

  EXPECT_EQ(result.GetCode(), KrResult::Code::AccessDenied) << result.GetDescription().CStr();
}

TEST_F(AtomicFile, NameThatIsNone_IsInvalidInput) {
  EXPECT_EQ(Save("", "new").GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(Save(std::string("a\0b", 3), "new").GetCode(), KrResult::Code::InvalidInput);
}

TEST_F(AtomicFile, SavesOfManyThreads_LeaveOneWholeFile) {
  std::vector<std::thread> writers;
  for (const char letter : {'a', 'b', 'c'})
    writers.emplace_back([this, letter] {
      for (int round = 0; round < 20; ++round)
        EXPECT_TRUE(Save(mPath, std::string(10'000, letter)).IsOK());
    });
  for (std::thread& writer : writers)
    writer.join();

  const std::string bytes = TemporaryFolder::ReadFile(mPath);
  ASSERT_EQ(bytes.size(), 10'000U);
  EXPECT_EQ(bytes, std::string(10'000, bytes.front()));
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

} // namespace
