#include "krpersistence/krconfigurationwriter.h"

#include "filesizelimit.h"
#include "krpersistence/krconfigurationreader.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

KrPropertyList MakeList(const KrString& aName, const KrString& aValue) {
  KrPropertyList list;
  list.Add({aName, aValue});
  return list;
}

class ConfigurationWriter : public testing::Test {
protected:
  /// What a reader finds in the file.
  KrConfigurationReader Load() {
    KrConfigurationReader reader;
    const KrResult result = reader.Load(mPath);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return reader;
  }
  std::vector<KrString> LoadNames() {
    const KrStringList names = Load().GetNames();
    return {names.begin(), names.end()};
  }
  KrPropertyList Restore(const KrString& aName) {
    KrPropertyList list;
    EXPECT_TRUE(Load().Restore(aName, list).IsOK()) << aName.CStr();
    return list;
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("settings.xml");
  KrConfigurationWriter mWriter;
};

TEST_F(ConfigurationWriter, SavedLists_ComeBackInTheirOrder) {
  KrPropertyList bridge;
  bridge.Add({"Serial0", "COMPort"});
  bridge.Add({"Serial0", "CLDLL"});
  bridge.Add({"Serial0COMPortBaudRate", 115200});
  ASSERT_TRUE(mWriter.Store("SerialBridge", bridge).IsOK());
  ASSERT_TRUE(mWriter.Store("Browser", MakeList("View", "Tree")).IsOK());
  ASSERT_TRUE(mWriter.Store("Empty", KrPropertyList()).IsOK());

  ASSERT_TRUE(mWriter.Save(mPath).IsOK());

  EXPECT_THAT(LoadNames(), ElementsAre("SerialBridge", "Browser", "Empty"));
  EXPECT_EQ(Restore("SerialBridge"), bridge);
  EXPECT_EQ(Restore("Browser"), MakeList("View", "Tree"));
  EXPECT_EQ(Restore("Empty"), KrPropertyList());
}

struct TextRow {
  const char* name;
  std::string text;
};

class DifficultText : public ConfigurationWriter, public testing::WithParamInterface<TextRow> {};

TEST_P(DifficultText, SurvivesAsValueAndAsNames) {
  const std::string& text = GetParam().text;
  const KrString listName = "list" + text; // Not even the empty text makes an empty name.
  ASSERT_TRUE(mWriter.Store(listName, MakeList(text, text)).IsOK());

  ASSERT_TRUE(mWriter.Save(mPath).IsOK());

  EXPECT_EQ(Restore(listName), MakeList(text, text));
}

std::string MakeAllBytes() {
  std::string bytes;
  for (int value = 0; value < 256; ++value)
    bytes += static_cast<char>(value);
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, DifficultText,
    testing::Values(TextRow{"Empty", ""}, TextRow{"Blanks", "  "}, TextRow{"BlanksAtBothEnds", " a  b "},
                    TextRow{"LineEnds", "a\nb\r\nc\rd\n"}, TextRow{"Tabs", "\ta\t"},
                    TextRow{"Quotes", "\"a\" 'b' \"\""}, TextRow{"Markup", "<a b=\"c\">&amp;&#65;</a> ]]> -->"},
                    TextRow{"Backslashes", "C:\\x41\\new \\\\ \\"}, TextRow{"Zero", std::string("a\0b", 3)},
                    TextRow{"ControlCharacters", "\x01\x1b[2J\x7f"},
                    TextRow{"OtherScripts", "Größe 镜 🙂 עברית"},
                    TextRow{"CharactersThatXmlForbids", "\xEF\xBF\xBE\xEF\xBF\xBF"},
                    TextRow{"BytesThatAreNoUtf8", "\xff\xc3\xe2\x82z\xed\xa0\x80"},
                    TextRow{"ByteOrderMark", "\xEF\xBB\xBFz"}, TextRow{"EveryByte", MakeAllBytes()},
                    TextRow{"Long", std::string(1024 * 1024 - 4, 'x')}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST_F(ConfigurationWriter, StoringANameAgain_ReplacesTheListInItsPlace) {
  ASSERT_TRUE(mWriter.Store("a", MakeList("n", "old")).IsOK());
  ASSERT_TRUE(mWriter.Store("b", KrPropertyList()).IsOK());

  ASSERT_TRUE(mWriter.Store("a", MakeList("n", "new")).IsOK());

  ASSERT_TRUE(mWriter.Save(mPath).IsOK());
  EXPECT_THAT(LoadNames(), ElementsAre("a", "b"));
  EXPECT_EQ(Restore("a"), MakeList("n", "new"));
}

TEST_F(ConfigurationWriter, EmptyName_IsInvalidInput) {
  EXPECT_EQ(mWriter.Store("", KrPropertyList()).GetCode(), KrResult::Code::InvalidInput);
}

TEST_F(ConfigurationWriter, WithoutLists_SavesAFileThatCanBeLoaded) {
  ASSERT_TRUE(mWriter.Save(mPath).IsOK());

  EXPECT_TRUE(Load().GetNames().IsEmpty());
}

TEST_F(ConfigurationWriter, SavingAgain_ReplacesTheFile) {
  ASSERT_TRUE(mWriter.Store("a", MakeList("n", "1")).IsOK());
  ASSERT_TRUE(mWriter.Save(mPath).IsOK());
  ASSERT_TRUE(mWriter.Save(mPath).IsOK());
  ASSERT_TRUE(mWriter.Store("a", MakeList("n", "2")).IsOK());

  ASSERT_TRUE(mWriter.Save(mPath).IsOK());

  EXPECT_EQ(Restore("a"), MakeList("n", "2"));
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

TEST_F(ConfigurationWriter, SystemThatTakesNoMoreBytes_LeavesTheOldFile) {
  ASSERT_TRUE(mWriter.Store("a", MakeList("n", "old")).IsOK());
  ASSERT_TRUE(mWriter.Save(mPath).IsOK());
  ASSERT_TRUE(mWriter.Store("a", MakeList("n", std::string(100'000, 'x'))).IsOK());

  KrResult result;
  {
    const FileSizeLimit limit(4096);
    result = mWriter.Save(mPath);
  }

  EXPECT_EQ(result.GetCode(), KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(mPath), HasSubstr("File too large")));
  EXPECT_EQ(Restore("a"), MakeList("n", "old"));
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

TEST_F(ConfigurationWriter, FolderThatTakesNoFiles_IsAnErrorThatNamesTheFile) {
  // Nobody makes files in that folder, not even root.
  for (const std::string& path : {std::string("/sys/settings.xml"), mFolder.GetFile("missing/settings.xml")}) {
    const KrResult result = mWriter.Save(path);

    EXPECT_FALSE(result.IsOK());
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(path));
  }
}

TEST_F(ConfigurationWriter, SymbolicLink_LeadsToTheFileThatIsReplaced) {
  const std::string real = mFolder.GetFile("real.xml");
  std::filesystem::create_symlink(real, mPath);

  ASSERT_TRUE(mWriter.Store("a", MakeList("n", "1")).IsOK());
  ASSERT_TRUE(mWriter.Save(mPath).IsOK());

  EXPECT_TRUE(std::filesystem::is_symlink(mPath));
  EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(real)));
  EXPECT_EQ(Restore("a"), MakeList("n", "1"));
}

struct LimitRow {
  const char* name;
  std::size_t properties;
  std::size_t bytes;
  const char* limit;
};

class BeyondTheLimits : public ConfigurationWriter, public testing::WithParamInterface<LimitRow> {};

TEST_P(BeyondTheLimits, IsRefusedByTheLimitAndLeavesNoFile) {
  KrPropertyList list;
  for (std::size_t index = 0; index < GetParam().properties; ++index)
    list.Add({"n", std::string(GetParam().bytes, 'x')});
  ASSERT_TRUE(mWriter.Store("a", list).IsOK());

  const KrResult result = mWriter.Save(mPath);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr(mPath), HasSubstr(GetParam().limit)));
  EXPECT_TRUE(mFolder.GetNames().empty());
}

INSTANTIATE_TEST_SUITE_P(Limits, BeyondTheLimits,
                         testing::Values(LimitRow{"Properties", 10'001, 0, "10000 properties"},
                                         LimitRow{"Text", 1, 1024 * 1024 + 1, "1048576 bytes"},
                                         LimitRow{"Whole", 20, 1024 * 1024, "16777216 bytes"}),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST_F(ConfigurationWriter, ListsBeyondTheLimit_AreRefusedByIt) {
  for (int index = 0; index <= 1000; ++index)
    ASSERT_TRUE(mWriter.Store(std::to_string(index), KrPropertyList()).IsOK());

  const KrResult result = mWriter.Save(mPath);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("1000 lists"));
}

TEST_F(ConfigurationWriter, SavesAndLoadsAtOnce_SeeWholeFilesOnly) {
  ASSERT_TRUE(mWriter.Save(mPath).IsOK());
  const auto save = [this](char aLetter) {
    KrConfigurationWriter writer;
    EXPECT_TRUE(writer.Store("a", MakeList(std::string(1, aLetter), std::string(5'000, aLetter))).IsOK());
    for (int round = 0; round < 10; ++round)
      EXPECT_TRUE(writer.Save(mPath).IsOK());
  };
  std::atomic<bool> isDone = false;
  std::thread reader([this, &isDone] {
    while (!isDone) {
      KrConfigurationReader loaded;
      EXPECT_TRUE(loaded.Load(mPath).IsOK());
    }
  });

  std::thread first(save, 'x');
  std::thread second(save, 'y');
  first.join();
  second.join();
  isDone = true;
  reader.join();

  const KrPropertyList list = Restore("a");
  const KrString letter = list.GetProperty(0)->GetName();
  EXPECT_EQ(list, MakeList(letter, std::string(5'000, letter.ToUtf8().front())));
  EXPECT_THAT(mFolder.GetNames(), ElementsAre("settings.xml"));
}

} // namespace
