#include "krbase/krwholefile.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include <sys/stat.h>

namespace {

TEST(KrWholeFile_, File_WithinTheLimit_IsReadWithAllItsBytes) {
  const TemporaryFolder folder;
  const std::string path = folder.GetFile("file");
  const std::string content = std::string("a\0b\r\n", 5) + std::string(200000, 'x');
  std::ofstream(path, std::ios::binary) << content;
  std::string bytes;

  ASSERT_TRUE(KrReadWholeFile(path, content.size(), bytes).IsOK());

  EXPECT_EQ(bytes, content);
}

TEST(KrWholeFile_, WhatCannotBeRead_IsRefusedWithItsCodeAndLeavesTheBytesAlone) {
  const TemporaryFolder folder;
  std::ofstream(folder.GetFile("long")) << "12345";
  ASSERT_EQ(::mkfifo(folder.GetFile("pipe").c_str(), 0600), 0);
  const struct {
    const char* name;
    std::string path;
    KrResult::Code code;
  } rows[] = {
      {"no such file", folder.GetFile("missing"), KrResult::Code::NotFound},
      {"no such folder", folder.GetFile("long/file"), KrResult::Code::NotFound},
      {"no name", "", KrResult::Code::NotFound},
      {"a folder", folder.GetPath().string(), KrResult::Code::InvalidInput},
      {"a pipe that nobody writes to", folder.GetFile("pipe"), KrResult::Code::InvalidInput},
      {"a device without end", "/dev/zero", KrResult::Code::InvalidInput},
      {"a zero byte in the name", folder.GetFile(std::string("long\0", 5)), KrResult::Code::InvalidInput},
      {"a byte too many", folder.GetFile("long"), KrResult::Code::OutOfRange},
  };

  for (const auto& row : rows) {
    std::string bytes = "as before";
    const KrResult result = KrReadWholeFile(KrString(row.path), 4, bytes);
    EXPECT_EQ(result.GetCode(), row.code) << row.name;
    EXPECT_FALSE(result.GetDescription().IsEmpty()) << row.name;
    EXPECT_EQ(bytes, "as before") << row.name;
  }
}

} // namespace
