#include "krpersistence/krconfigurationreader.h"

#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kTwoLists = "<configuration version='1.0'>\n"
                                  "<list name='Browser'><property name='View' value='Tree'/></list>\n"
                                  "<list name='Bridge'/>\n"
                                  "</configuration>\n";

class ConfigurationReader : public testing::Test {
protected:
  ConfigurationReader() {
    TemporaryFolder::WriteFile(mPath, kTwoLists);
    EXPECT_TRUE(mReader.Load(mPath).IsOK());
  }

  std::vector<KrString> GetNames() const {
    const KrStringList names = mReader.GetNames();
    return {names.begin(), names.end()};
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("settings.xml");
  KrConfigurationReader mReader;
};

TEST_F(ConfigurationReader, Loaded_TellsItsListsByName) {
  KrPropertyList list;

  EXPECT_THAT(GetNames(), ElementsAre("Browser", "Bridge"));
  EXPECT_TRUE(mReader.Contains("Bridge"));
  EXPECT_FALSE(mReader.Contains("bridge"));
  ASSERT_TRUE(mReader.Restore("Browser", list).IsOK());
  ASSERT_EQ(list.GetCount(), 1U);
  EXPECT_EQ(*list.GetProperty(0), KrProperty("View", "Tree"));
}

TEST_F(ConfigurationReader, Restoring_ReplacesWhatTheListHeld) {
  KrPropertyList list;
  list.Add({"old", 1});

  ASSERT_TRUE(mReader.Restore("Bridge", list).IsOK());

  EXPECT_TRUE(list.IsEmpty());
}

TEST_F(ConfigurationReader, MadeFromAWriter_HasWhatThatHasCollected) {
  KrConfigurationWriter writer;
  KrPropertyList stored;
  stored.Add({"Way", "GenCP"});
  ASSERT_TRUE(writer.Store("Serial0", stored).IsOK());

  const KrConfigurationReader reader(writer);
  ASSERT_TRUE(writer.Store("Serial1", stored).IsOK());

  KrPropertyList restored;
  ASSERT_TRUE(reader.Restore("Serial0", restored).IsOK());
  EXPECT_EQ(restored.GetProperty("Way")->GetValue(), "GenCP");
  EXPECT_FALSE(reader.Contains("Serial1"));
}

TEST_F(ConfigurationReader, MissingList_IsNamedAndChangesNothing) {
  KrPropertyList list;
  list.Add({"kept", 1});

  const KrResult result = mReader.Restore("Finder", list);

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("\"Finder\""));
  EXPECT_EQ(list.GetCount(), 1U);
}

TEST_F(ConfigurationReader, New_HasNoLists) {
  const KrConfigurationReader reader;
  KrPropertyList list;

  EXPECT_TRUE(reader.GetNames().IsEmpty());
  EXPECT_EQ(reader.Restore("Browser", list).GetCode(), KrResult::Code::NotFound);
}

TEST_F(ConfigurationReader, LoadingAgain_DropsTheListsOfBefore) {
  TemporaryFolder::WriteFile(mPath, "<configuration version='1.0'><list name='New'/></configuration>");

  ASSERT_TRUE(mReader.Load(mPath).IsOK());

  EXPECT_THAT(GetNames(), ElementsAre("New"));
}

TEST_F(ConfigurationReader, DamagedFile_IsNamedWithThePlaceAndLeavesWhatWasLoaded) {
  TemporaryFolder::WriteFile(mPath, "<configuration version='1.0'>\n<list name='New'/>\n<list/></configuration>");

  const KrResult result = mReader.Load(mPath);

  EXPECT_EQ(result.GetCode(), KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(),
              AllOf(HasSubstr(mPath), HasSubstr("is damaged: line 3, column 1: the attribute name is missing")));
  EXPECT_THAT(GetNames(), ElementsAre("Browser", "Bridge"));
}

TEST_F(ConfigurationReader, FileOfANewerVersion_SaysWhichItNeeds) {
  TemporaryFolder::WriteFile(mPath, "<configuration version='3.1'/>");

  const KrResult result = mReader.Load(mPath);

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotSupported);
  EXPECT_THAT(result.GetDescription().ToUtf8(),
              AllOf(HasSubstr(mPath), HasSubstr("format version 3.1"), HasSubstr("reads version 3")));
  EXPECT_THAT(GetNames(), ElementsAre("Browser", "Bridge"));
}

TEST_F(ConfigurationReader, MissingFile_IsNotFound) {
  const KrResult result = mReader.Load(mFolder.GetFile("other.xml"));

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), AllOf(HasSubstr("other.xml"), HasSubstr("No such file")));
  EXPECT_THAT(GetNames(), ElementsAre("Browser", "Bridge"));
}

TEST_F(ConfigurationReader, WhatIsNoFile_IsRefusedWithoutWaiting) {
  const std::string pipe = mFolder.GetFile("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

  for (const std::string& path : {pipe, mFolder.GetPath().string(), std::string("/dev/zero")})
    EXPECT_EQ(mReader.Load(path).GetCode(), KrResult::Code::InvalidInput) << path;
}

TEST_F(ConfigurationReader, NameWithAZeroByte_IsRefusedAndNotCutThere) {
  const KrResult result = mReader.Load(mPath + std::string("\0.bak", 5));

  EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("zero byte"));
}

TEST_F(ConfigurationReader, FileBeyondTheLimit_IsRefusedByIt) {
  TemporaryFolder::WriteFile(mPath, kTwoLists);
  std::filesystem::resize_file(mPath, 16 * 1024 * 1024 + 1);

  const KrResult result = mReader.Load(mPath);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), AllOf(HasSubstr(mPath), HasSubstr("16777216 bytes")));
}

TEST_F(ConfigurationReader, SymbolicLink_IsFollowed) {
  std::filesystem::create_symlink("settings.xml", mFolder.GetFile("link.xml"));
  KrConfigurationReader reader;

  EXPECT_TRUE(reader.Load(mFolder.GetFile("link.xml")).IsOK());
  EXPECT_TRUE(reader.Contains("Browser"));
}

} // namespace
