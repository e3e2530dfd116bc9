#include "krgenicam/krgensettings.h"

#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kMagicLine = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";

KrGenSettings MakeSettings(const KrString& aName, const KrString& aValue) {
  KrGenSettings settings;
  settings.Add(aName, aValue);
  return settings;
}

TEST(KrGenSettings, Text_BeginsWithMagicVersionAndDeviceAndHasALineForEachSetting) {
  KrGenSettings settings;
  settings.SetDevice("Maker Model");
  settings.Add("Width", "640");
  settings.Add("PixelFormat", "Mono8");

  EXPECT_EQ(settings.ToText(), "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                               "# GenApi persistence file (version 1.0.0)\n"
                               "# Device = Maker Model\n"
                               "Width\t640\n"
                               "PixelFormat\tMono8\n");
}

TEST(KrGenSettings, Text_ReadsBackInOrderWithNamesThatRepeat) {
  KrGenSettings written;
  written.SetDevice("Maker Model");
  for (const char* value : {"Red", "Blue"}) {
    written.Add("GainSelector", value);
    written.Add("Gain", "1.5");
  }

  KrGenSettings read;
  ASSERT_TRUE(read.FromText(written.ToText()).IsOK());

  EXPECT_EQ(read.GetSettings(), written.GetSettings());
  EXPECT_EQ(read.GetDevice(), "Maker Model");
}

struct ValueRow {
  const char* name;
  std::string value;
};

class SettingValue : public testing::TestWithParam<ValueRow> {};

TEST_P(SettingValue, WrittenAndRead_IsTheSame) {
  const KrGenSettings written = MakeSettings("DeviceUserID", KrString(GetParam().value));

  KrGenSettings read;
  const KrResult result = read.FromText(written.ToText());

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ASSERT_EQ(read.GetCount(), 1U);
  EXPECT_EQ(read.GetSettings()[0].value.ToUtf8(), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Values, SettingValue,
    testing::Values(ValueRow{"Plain", "camera 1"}, ValueRow{"Empty", ""}, ValueRow{"Backslashes", "C:\\new\\table\\"},
                    ValueRow{"LineFeed", "a\nb"}, ValueRow{"CarriageReturnLineFeed", "a\r\nb\r\n"},
                    ValueRow{"Tabs", "\ta\tb\t"}, ValueRow{"OnlyBlanks", "   "}, ValueRow{"BlanksAround", "  a b  "},
                    ValueRow{"BackslashBeforeALineEnd", "\\\n\\n"}, ValueRow{"ZeroByte", std::string("a\0b", 3)},
                    ValueRow{"ControlCharacters", "\x01\x1b[2J\x7f"}, ValueRow{"Comment", "# escaped"},
                    ValueRow{"Unicode", "Kam\xC3\xA9ra \xF0\x9F\x93\xB7"}, ValueRow{"NoUnicode", "\xFF\xFE\x80"},
                    ValueRow{"AnotherSetting", "1\nGain\t2"}, ValueRow{"ByteOrderMark", "\xEF\xBB\xBF"}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

// Readers that know no escapes take a value as it stands, and comments for nothing.
TEST(KrGenSettings, BackslashesAlone_AreWrittenAsTheyAre) {
  EXPECT_THAT(MakeSettings("Path", "C:\\new").ToText(), EndsWith("\nPath\tC:\\new\n"));
}

TEST(KrGenSettings, ValueWithALineEnd_IsEscapedBehindACommentThatSaysSo) {
  EXPECT_THAT(MakeSettings("Text", "a\\b\nc").ToText(), EndsWith("\n# escaped\nText\ta\\\\b\\nc\n"));
}

TEST(KrGenSettings, NameThatNoLineCanHold_IsLeftOut) {
  KrGenSettings written;
  for (const char* name : {"", "#Width", "Wi\tdth", "Wi\ndth", "Wi dth"})
    written.Add(name, "1");
  written.Add("Height", "2");

  KrGenSettings read;
  ASSERT_TRUE(read.FromText(written.ToText()).IsOK());

  EXPECT_THAT(read.GetSettings(), ElementsAre(KrGenSetting{"Height", "2"}));
}

TEST(KrGenSettings, DeviceWithLineEnds_StaysInItsComment) {
  KrGenSettings written;
  written.SetDevice("Maker\nGain\t7");

  KrGenSettings read;
  ASSERT_TRUE(read.FromText(written.ToText()).IsOK());

  EXPECT_EQ(read.GetCount(), 0U);
  EXPECT_EQ(read.GetDevice(), "Maker Gain 7");
}

struct TextRow {
  const char* name;
  std::string text;
};

class ToleratedText : public testing::TestWithParam<TextRow> {};

TEST_P(ToleratedText, GivesTheTwoSettings) {
  KrGenSettings settings;
  const KrResult result = settings.FromText(GetParam().text);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(settings.GetSettings(), ElementsAre(KrGenSetting{"Width", "640"}, KrGenSetting{"DeviceUserID", ""}));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ToleratedText,
    testing::Values(TextRow{"LineFeeds", std::string(kMagicLine) + "Width\t640\nDeviceUserID\t\n"},
                    TextRow{"CarriageReturnLineFeeds",
                            "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\n# x\r\nWidth\t640\r\nDeviceUserID\t\r\n"},
                    TextRow{"CarriageReturns",
                            "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\rWidth\t640\rDeviceUserID\t\r"},
                    TextRow{"NoLineEndAtTheEnd", std::string(kMagicLine) + "Width\t640\nDeviceUserID\t"},
                    TextRow{"BlanksAtTheEnds", std::string(kMagicLine) + "Width\t640  \t\nDeviceUserID\t   \n"},
                    TextRow{"TabsTakenByAnEditor", std::string(kMagicLine) + "Width\t640\nDeviceUserID\n"},
                    TextRow{"ByteOrderMark", "\xEF\xBB\xBF" + std::string(kMagicLine) + "Width\t640\nDeviceUserID\t\n"},
                    TextRow{"EmptyLinesAndComments",
                            std::string(kMagicLine) + "\n#Gain\t1\nWidth\t640\n   \n# x\nDeviceUserID\t\n"},
                    TextRow{"GuidInCapitals", "#{05D8C294-F295-4DFB-9D01-096BD04049F4}\nWidth\t640\nDeviceUserID\t\n"}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

struct RefusedRow {
  const char* name;
  std::string text;
  const char* complaint;
};

class RefusedText : public testing::TestWithParam<RefusedRow> {};

TEST_P(RefusedText, IsBadDataWithTheLineAndLeavesTheSettings) {
  KrGenSettings settings = MakeSettings("Width", "1");

  const KrResult result = settings.FromText(GetParam().text);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(GetParam().complaint));
  EXPECT_THAT(settings.GetSettings(), ElementsAre(KrGenSetting{"Width", "1"}));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RefusedText,
    testing::Values(RefusedRow{"Nothing", "", "Line 1 "}, RefusedRow{"OtherText", "Width\t640\n", "Line 1 "},
                    RefusedRow{"MagicInAValue", "Width\t{05D8C294-F295-4dfb-9D01-096BD04049F4}\n", "Line 1 "},
                    RefusedRow{"BlankInPlaceOfTheTab", std::string(kMagicLine) + "# x\r\nWidth 640\n", "Line 3 "},
                    RefusedRow{"NoName", std::string(kMagicLine) + "Width\t1\n\t640\n", "Line 3 "},
                    RefusedRow{"ZeroByte", std::string(kMagicLine) + std::string("Width\t6\0000\n", 11), "zero byte"},
                    RefusedRow{"UnknownEscape", std::string(kMagicLine) + "# escaped\nText\ta\\q\n", "Line 3 "},
                    RefusedRow{"EscapeThatEnds", std::string(kMagicLine) + "# escaped\nText\ta\\x1\n", "Line 3 "},
                    RefusedRow{"BackslashAtTheEnd", std::string(kMagicLine) + "# escaped\nText\ta\\\n", "Line 3 "}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(KrGenSettings, TextBeyondTheLimit_IsRefused) {
  KrGenSettings settings;
  const std::string text = kMagicLine + std::string((std::size_t{16} << 20), '#');

  EXPECT_EQ(settings.FromText(text), KrResult::Code::BadData);
}

TEST(KrGenSettings, TextBeyondTheLimit_IsNotWritten) {
  const TemporaryFolder folder;
  const std::string file = folder.GetFile("settings.txt");
  KrGenSettings settings;
  settings.Add("A", "1");
  ASSERT_TRUE(settings.Save(file).IsOK());
  settings.Add("B", std::string((std::size_t{8} << 20), '\\') + "\n"); // Escaped, twice as long.

  EXPECT_EQ(settings.Save(file), KrResult::Code::OutOfRange);

  KrGenSettings former;
  EXPECT_TRUE(former.Load(file).IsOK());
  EXPECT_EQ(former.GetCount(), 1U);
}

TEST(KrGenSettings, MoreSettingsThanTheLimit_AreRefusedAndThatManyTaken) {
  constexpr std::size_t kMost = 1'000'000;
  KrGenSettings settings;
  std::string text = kMagicLine;
  for (std::size_t i = 0; i < kMost; ++i)
    text += "A\t1\n";

  EXPECT_TRUE(settings.FromText(text).IsOK());
  EXPECT_EQ(settings.GetSettings().size(), kMost);
  const KrResult refused = settings.FromText(text + "A\t1\n");
  EXPECT_EQ(refused, KrResult::Code::BadData);
  EXPECT_NE(refused.GetDescription().ToUtf8().find("more than 1000000 settings"), std::string::npos)
      << refused.GetDescription().CStr();
}

TEST(KrGenSettings, TextWithinTheLimit_IsTaken) {
  KrGenSettings settings;
  std::string text = kMagicLine;
  text.resize(std::size_t{16} << 20, '#');

  EXPECT_TRUE(settings.FromText(text).IsOK());
}

TEST(KrGenSettings, EscapeMark_HoldsForTheNextLineAlone) {
  KrGenSettings settings;

  ASSERT_TRUE(settings.FromText(std::string(kMagicLine) + "# escaped\nA\t\\n\nB\t\\n\n").IsOK());

  EXPECT_THAT(settings.GetSettings(), ElementsAre(KrGenSetting{"A", "\n"}, KrGenSetting{"B", "\\n"}));
}

TEST(KrGenSettings, ReadAgain_ForgetsWhatWasThere) {
  KrGenSettings settings = MakeSettings("Width", "1");

  ASSERT_TRUE(settings.FromText(kMagicLine).IsOK());

  EXPECT_EQ(settings.GetCount(), 0U);
}

TEST(KrGenSettings, File_ReadsBackWhatWasSavedAndReplacesWhatWasThere) {
  const TemporaryFolder folder;
  const std::string name = folder.GetFile("camera.txt");
  KrGenSettings read;

  ASSERT_TRUE(MakeSettings("Width", "640").Save(name).IsOK());
  ASSERT_TRUE(MakeSettings("Height", "480").Save(name).IsOK());
  const KrResult result = read.Load(name);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(read.GetSettings(), ElementsAre(KrGenSetting{"Height", "480"}));
}

TEST(KrGenSettings, FileThatIsNotThere_GivesNotFoundWithItsNameAndChangesNothing) {
  const TemporaryFolder folder;
  KrGenSettings settings = MakeSettings("Width", "640");

  const KrResult result = settings.Load(folder.GetFile("none.txt"));

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("none.txt"));
  EXPECT_EQ(settings.GetCount(), 1u);
}

TEST(KrGenSettings, FileThatHoldsNoSettings_GivesBadDataWithItsNameAndLine) {
  const TemporaryFolder folder;
  const std::string name = folder.GetFile("other.txt");
  std::ofstream(name) << "Width\t640\n";
  KrGenSettings settings;

  const KrResult result = settings.Load(name);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("other.txt"));
}

} // namespace
