#include "textfile.h"

#include "temporaryfolder.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

using testing::HasSubstr;

class TextFile : public testing::Test {
protected:
  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("text");
  std::string mText;
};

TEST_F(TextFile, WrittenText_IsReadAsItWas) {
  const std::string text("a\r\nb\0\xFF", 6);

  EXPECT_TRUE(WriteTextFile(mPath, false, text).IsOK());

  EXPECT_TRUE(ReadTextFile(mPath, 6, mText).IsOK());
  EXPECT_EQ(mText, text);
}

TEST_F(TextFile, FileThatIsThere_IsReplacedOnlyOnOrder) {
  TemporaryFolder::WriteFile(mPath, "old");

  EXPECT_EQ(CheckTextFile(mPath, false), KrResult::Code::WrongState);
  EXPECT_EQ(WriteTextFile(mPath, false, "new"), KrResult::Code::WrongState);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "old");
  EXPECT_TRUE(WriteTextFile(mPath, true, "new").IsOK());
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "new");
}

TEST_F(TextFile, Check_LeavesNoFile) {
  EXPECT_TRUE(CheckTextFile(mPath, false).IsOK());

  EXPECT_THAT(mFolder.GetNames(), testing::IsEmpty());
}

TEST_F(TextFile, WhatCannotBeRead_IsSaid) {
  EXPECT_EQ(ReadTextFile(mPath, 10, mText), KrResult::Code::NotFound);
  EXPECT_EQ(ReadTextFile(mFolder.GetPath().string(), 10, mText), KrResult::Code::InvalidInput);
  EXPECT_THAT(ReadTextFile(mPath, 10, mText).GetDescription().ToUtf8(), HasSubstr("No such file"));
}

TEST_F(TextFile, FileBeyondTheLimit_IsRefused) {
  TemporaryFolder::WriteFile(mPath, "12345");

  EXPECT_TRUE(ReadTextFile(mPath, 5, mText).IsOK());
  EXPECT_EQ(ReadTextFile(mPath, 4, mText), KrResult::Code::BadData);
}

} // namespace
} // namespace krtool
