#include "window/writereason.h"

#include "filesizelimit.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using krviewer::FindWriteReason;

namespace {

constexpr rlim_t kMost = rlim_t{16} << 20U;

TEST(WriteReason, WhereThereIsRoom_IsNoneAndLeavesNothing) {
  const TemporaryFolder folder;

  EXPECT_EQ(FindWriteReason(QString::fromStdString(folder.GetFile("new/file"))), QString());

  EXPECT_TRUE(std::filesystem::is_empty(folder.GetFile("new")));
}

// As many bytes as the file has are tried, so that a disk that has room for a beginning alone is called full.
TEST(WriteReason, FileOfAnyLength_IsTriedUpTo16MiB) {
  const TemporaryFolder folder;
  const std::string file = folder.GetFile("file");
  TemporaryFolder::WriteFile(file, "");
  std::filesystem::resize_file(file, kMost * 4);

  {
    const FileSizeLimit limit(kMost);
    EXPECT_EQ(FindWriteReason(QString::fromStdString(file)), QString());
  }
  const FileSizeLimit limit(kMost - 1);
  EXPECT_EQ(FindWriteReason(QString::fromStdString(file)), QStringLiteral("File too large"));
}

} // namespace
