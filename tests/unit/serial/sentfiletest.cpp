#include "logic/serial/sentfile.h"

#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using krgui::SentFile;

std::string ReadAll(SentFile& aFile, std::size_t aChunk) {
  std::string all;
  std::vector<std::uint8_t> chunk(aChunk);
  while (const std::size_t count = aFile.Read(chunk))
    all.append(chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(count));
  return all;
}

class SentFileTest : public testing::Test {
protected:
  std::string MakeFile(const std::string& aName, const std::string& aBytes) {
    TemporaryFolder::WriteFile(mFolder.GetFile(aName), aBytes);
    return mFolder.GetFile(aName);
  }

  TemporaryFolder mFolder;
};

TEST_F(SentFileTest, RegularFile_IsReadInChunksToItsEnd) {
  const std::string bytes = std::string("\0\xFF\n\r\x1A", 5) + std::string(600, 'x');
  std::optional<SentFile> file = SentFile::Open(MakeFile("data", bytes));

  ASSERT_TRUE(file);
  EXPECT_EQ(file->GetSize(), 605U);
  EXPECT_EQ(ReadAll(*file, 256), bytes);
}

TEST_F(SentFileTest, EmptyFile_HasNothing) {
  std::optional<SentFile> file = SentFile::Open(MakeFile("empty", ""));

  ASSERT_TRUE(file);
  EXPECT_EQ(file->GetSize(), 0U);
  EXPECT_EQ(ReadAll(*file, 256), "");
}

TEST_F(SentFileTest, SymbolicLink_IsFollowed) {
  std::filesystem::create_symlink(MakeFile("data", "bytes"), mFolder.GetPath() / "link");

  std::optional<SentFile> file = SentFile::Open(mFolder.GetFile("link"));

  ASSERT_TRUE(file);
  EXPECT_EQ(ReadAll(*file, 256), "bytes");
}

TEST_F(SentFileTest, PathThatIsNoUtf8_IsOpenedByItsBytes) {
  std::optional<SentFile> file = SentFile::Open(MakeFile("\xFF\xFE", "bytes"));

  ASSERT_TRUE(file);
  EXPECT_EQ(ReadAll(*file, 256), "bytes");
}

TEST_F(SentFileTest, FileThatGrows_IsReadAsFarAsItWentWhenOpened) {
  const std::string path = MakeFile("growing", std::string(300, 'a'));
  std::optional<SentFile> file = SentFile::Open(path);
  ASSERT_TRUE(file);

  TemporaryFolder::WriteFile(path, std::string(300, 'a') + std::string(5000, 'b'));

  EXPECT_EQ(ReadAll(*file, 256), std::string(300, 'a'));
}

TEST_F(SentFileTest, FileThatShrinks_EndsWhereItEnds) {
  const std::string path = MakeFile("shrinking", std::string(1000, 'a'));
  std::optional<SentFile> file = SentFile::Open(path);
  ASSERT_TRUE(file);

  std::filesystem::resize_file(path, 400);

  EXPECT_EQ(ReadAll(*file, 256), std::string(400, 'a'));
  EXPECT_EQ(file->GetSize(), 1000U);
}

TEST_F(SentFileTest, FileThatShrankAndGrewAgain_StaysEnded) {
  const std::string path = MakeFile("changing", std::string(1000, 'a'));
  std::optional<SentFile> file = SentFile::Open(path);
  ASSERT_TRUE(file);
  std::filesystem::resize_file(path, 10);
  EXPECT_EQ(ReadAll(*file, 256).size(), 10U);

  std::filesystem::resize_file(path, 1000);

  EXPECT_EQ(ReadAll(*file, 256), "");
}

TEST_F(SentFileTest, FileThatIsTakenAway_IsReadToItsEnd) {
  const std::string path = MakeFile("vanishing", std::string(1000, 'a'));
  std::optional<SentFile> file = SentFile::Open(path);
  ASSERT_TRUE(file);

  std::filesystem::remove(path);

  EXPECT_EQ(ReadAll(*file, 256), std::string(1000, 'a'));
}

TEST_F(SentFileTest, MovedFile_IsReadByItsNewOwner) {
  std::optional<SentFile> file = SentFile::Open(MakeFile("data", "bytes"));
  ASSERT_TRUE(file);

  SentFile owner(std::move(*file));
  file.reset();

  EXPECT_EQ(ReadAll(owner, 2), "bytes");
}

TEST_F(SentFileTest, Missing_IsRefused) {
  EXPECT_FALSE(SentFile::Open(mFolder.GetFile("missing")));
}

TEST_F(SentFileTest, EmptyPath_IsRefused) {
  EXPECT_FALSE(SentFile::Open(""));
}

TEST_F(SentFileTest, Directory_IsRefused) {
  EXPECT_FALSE(SentFile::Open(mFolder.GetPath().string()));
}

TEST_F(SentFileTest, PipeWithoutAWriter_IsRefusedWithoutWaiting) {
  ASSERT_EQ(::mkfifo(mFolder.GetFile("pipe").c_str(), 0600), 0);

  EXPECT_FALSE(SentFile::Open(mFolder.GetFile("pipe")));
}

TEST_F(SentFileTest, Device_IsRefused) {
  EXPECT_FALSE(SentFile::Open("/dev/zero"));
}

TEST_F(SentFileTest, FileThatCanBeOpenedAndNotBeRead_IsRefused) {
  // Nothing is mapped at its begin.
  EXPECT_FALSE(SentFile::Open("/proc/self/mem"));
}

TEST_F(SentFileTest, Socket_IsRefused) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = mFolder.GetFile("socket");
  ASSERT_LT(path.copy(address.sun_path, sizeof(address.sun_path) - 1), sizeof(address.sun_path) - 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);

  EXPECT_FALSE(SentFile::Open(path));

  ::close(socket);
}

TEST_F(SentFileTest, BrokenSymbolicLink_IsRefused) {
  std::filesystem::create_symlink(mFolder.GetPath() / "missing", mFolder.GetPath() / "link");

  EXPECT_FALSE(SentFile::Open(mFolder.GetFile("link")));
}

TEST_F(SentFileTest, FileWithoutTheRightToRead_IsRefused) {
  const std::string path = MakeFile("secret", "bytes");
  std::filesystem::permissions(path, std::filesystem::perms::none);
  // Who may read everything reads this, too: the answer is the system's.
  const bool mayRead = ::access(path.c_str(), R_OK) == 0;

  EXPECT_EQ(SentFile::Open(path).has_value(), mayRead);
}

} // namespace
