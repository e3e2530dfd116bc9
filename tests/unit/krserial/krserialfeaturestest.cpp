#include "krserial/krserialfeatures.h"

#include "krbase/krlogger.h"
#include "serialmaplist.h"
#include "scopedvariable.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

std::string MakeMap(const std::string& aName) {
  return "serialFeatures:\n  - {name: " + aName + ", way: fileAccess, ports: {Serial0: A}}\n";
}

// Maps of a user who has what the test gives them.
class SerialFeatures : public testing::Test {
protected:
  ~SerialFeatures() override { KrSerialFeatures::RemoveAdded(); }

  std::string AddUserFile(const std::string& aName, const std::string& aText) {
    const std::filesystem::path directory = KrSerialFeatures::GetUserDirectory().ToUtf8();
    std::filesystem::create_directories(directory);
    TemporaryFolder::WriteFile((directory / aName).string(), aText);
    return (directory / aName).string();
  }
  KrResult AddFile(const std::string& aText) {
    const std::string file = folder.GetFile("added.yaml");
    TemporaryFolder::WriteFile(file, aText);
    return KrSerialFeatures::AddFile(file);
  }
  static std::vector<std::string> GetNames() {
    std::vector<std::string> names;
    for (const krserial::SerialMap& map : krserial::SerialMapList::Get().GetAll())
      names.push_back(map.name.ToUtf8());
    return names;
  }

  TemporaryFolder folder;
  const krtest::ScopedVariable settings{"XDG_CONFIG_HOME", folder.GetPath()};
};

using Names = std::vector<std::string>;

TEST_F(SerialFeatures, Alone_TheLibrarysMapsCount) {
  EXPECT_EQ(GetNames(), Names{"file access"});
}

TEST_F(SerialFeatures, AddedFiles_ComeFirstTheLastOneBeforeAll) {
  AddUserFile("b.yaml", MakeMap("second"));
  AddUserFile("a.yaml", MakeMap("first"));
  AddUserFile("c.txt", MakeMap("none"));
  ASSERT_TRUE(AddFile(MakeMap("earlier")).IsOK());
  ASSERT_TRUE(AddFile(MakeMap("later")).IsOK());

  EXPECT_EQ(GetNames(), (Names{"later", "earlier", "first", "second", "file access"}));
}

TEST_F(SerialFeatures, RemoveAdded_LeavesTheUsersAndTheLibrarys) {
  AddUserFile("a.yaml", MakeMap("user"));
  ASSERT_TRUE(AddFile(MakeMap("added")).IsOK());

  KrSerialFeatures::RemoveAdded();

  EXPECT_EQ(GetNames(), (Names{"user", "file access"}));
}

TEST_F(SerialFeatures, ADamagedFile_IsRefusedAsAWhole) {
  const KrResult result = AddFile(MakeMap("good") + "  - {name: bad, way: fileAccess}\n");

  EXPECT_EQ(result, KrResult::Code::InvalidInput);
  EXPECT_EQ(result.GetDescription().ToUtf8(),
            folder.GetFile("added.yaml") + ":3:5: a map of features needs the key \"ports\"");
  EXPECT_EQ(GetNames(), Names{"file access"});
}

TEST_F(SerialFeatures, AFileThatCannotBeOpened_IsNotFound) {
  EXPECT_EQ(KrSerialFeatures::AddFile(folder.GetFile("missing.yaml")), KrResult::Code::NotFound);
  EXPECT_EQ(KrSerialFeatures::AddFile(folder.GetPath().string()), KrResult::Code::NotFound);
}

TEST_F(SerialFeatures, AFileThatIsTooLarge_IsInvalidInput) {
  EXPECT_EQ(AddFile(std::string((1U << 20) + 1, '#')), KrResult::Code::InvalidInput);
  EXPECT_EQ(AddFile(std::string((1U << 20) + 2, '#')), KrResult::Code::InvalidInput);
}

TEST_F(SerialFeatures, ADamagedFileOfTheUser_IsLoggedAndCountsForNothing) {
  const std::string file = AddUserFile("a.yaml", "serialFeatures: {}\n");
  AddUserFile("b.yaml", MakeMap("good"));
  const KrLogCapture log;

  EXPECT_EQ(GetNames(), (Names{"good", "file access"}));

  EXPECT_TRUE(log.Contains(KrLogLevel::Warning, file + ":1:17: \"serialFeatures\" has to be a list"));
}

TEST_F(SerialFeatures, SeveralMistakesInAFileOfTheUser_AreALineOfTheLogEach) {
  AddUserFile("a.yaml", "serialFeatures:\n  - {name: x, ports: {Serial0: A}, way: no, colour: red}\n");
  const KrLogCapture log;

  (void)GetNames();

  const std::vector<KrLogRecord> entries = log.GetRecords();
  ASSERT_EQ(entries.size(), 2U);
  for (const KrLogRecord& entry : entries)
    EXPECT_EQ(entry.text.ToUtf8().find('\n'), std::string::npos);
}

TEST_F(SerialFeatures, FilesOfTheUserBeyondTheMost_AreLeftOutAndThatIsLogged) {
  for (int number = 100; number < 165; ++number)
    AddUserFile(std::to_string(number) + ".yaml", MakeMap("map " + std::to_string(number)));
  const KrLogCapture log;

  const Names names = GetNames();

  ASSERT_EQ(names.size(), 65U);
  EXPECT_EQ(names[63], "map 163");
  EXPECT_EQ(names[64], "file access");
  EXPECT_TRUE(log.Contains(KrLogLevel::Warning,
                           folder.GetFile("krgui/serial-features.d") +
                               " has 65 files of maps; the first 64 in the order of their names are read."));
}

TEST_F(SerialFeatures, UserDirectory_IsInTheConfigurationDirectory) {
  EXPECT_EQ(KrSerialFeatures::GetUserDirectory().ToUtf8(), folder.GetFile("krgui/serial-features.d"));
}

TEST_F(SerialFeatures, UserDirectory_IsBelowHomeWhereNothingElseIsSaid) {
  for (const char* configured : {"", "relative"}) {
    const krtest::ScopedVariable noSettings("XDG_CONFIG_HOME", configured);
    const krtest::ScopedVariable home("HOME", "/home/somebody");

    EXPECT_EQ(KrSerialFeatures::GetUserDirectory(), KrString("/home/somebody/.config/krgui/serial-features.d"));
  }
}

} // namespace
