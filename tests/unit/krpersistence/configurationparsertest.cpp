#include "configurationparser.h"
#include "configurationtext.h"

#include <gmock/gmock.h>

namespace krpersistence {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kSmall = R"(<?xml version="1.0" encoding="UTF-8"?>
<configuration version="1.0">
  <list name="Browser">
    <property name="View" value="Tree"/>
  </list>
</configuration>
)";

Configuration MakeSmall() {
  KrPropertyList properties;
  properties.Add({"View", "Tree"});
  return {{"Browser", properties}};
}

// What stands between the root's tags, with the root around it in line 1.
std::string Wrap(const std::string& aInside) {
  return "<configuration version=\"1.0\">" + aInside + "</configuration>";
}

TEST(ConfigurationText, Lists_AreWrittenAsDocumented) {
  std::string text;

  ASSERT_TRUE(WriteConfigurationText(MakeSmall(), text).IsOK());

  EXPECT_EQ(text, kSmall);
}

TEST(ConfigurationParser, Lists_AreReadInTheirOrder) {
  Configuration read;

  const KrResult result = ParseConfiguration(kSmall, read);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(read, MakeSmall());
}

TEST(ConfigurationParser, EndingAnywhere_IsNeverTakenForWhole) {
  const std::string whole = kSmall;
  const std::size_t end = whole.rfind('>');

  for (std::size_t length = 0; length <= end; ++length) {
    Configuration read = MakeSmall();

    EXPECT_EQ(ParseConfiguration(whole.substr(0, length), read).GetCode(), KrResult::Code::BadData) << length;
    EXPECT_EQ(read, MakeSmall()) << length;
  }
}

TEST(ConfigurationParser, EveryByteChangedInTurn_IsReadOrRefused) {
  const std::string whole = kSmall;
  for (std::size_t at = 0; at < whole.size(); ++at)
    for (const char byte : {'\0', '<', '>', '&', '"', '\\', 'x', '\xff'}) {
      std::string changed = whole;
      changed[at] = byte;
      Configuration read = MakeSmall();

      const KrResult result = ParseConfiguration(changed, read);

      EXPECT_TRUE(result.IsOK() || read == MakeSmall()) << changed;
    }
}

struct AcceptedRow {
  const char* name;
  std::string bytes;
};

class HandWritten : public testing::TestWithParam<AcceptedRow> {};

TEST_P(HandWritten, IsReadLikeWhatWeWrite) {
  Configuration read;

  const KrResult result = ParseConfiguration(GetParam().bytes, read);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(read, MakeSmall());
}

const std::string kPropertyTag = "<property name='View' value='Tree'/>";

INSTANTIATE_TEST_SUITE_P(
    Documents, HandWritten,
    testing::Values(
        AcceptedRow{"WithoutDeclaration", Wrap("<list name='Browser'>" + kPropertyTag + "</list>")},
        AcceptedRow{"WithByteOrderMark", std::string("\xEF\xBB\xBF") + kSmall},
        AcceptedRow{"WithWindowsLineEnds", Wrap("\r\n<list name='Browser'>\r\n" + kPropertyTag + "\r\n</list>\r\n")},
        AcceptedRow{"WithComments", "<!-- a -->" + Wrap("<list name='Browser'><!-- b -->" + kPropertyTag + "</list>")},
        AcceptedRow{"WithEmptyLine",
                    Wrap("<list name='Browser'><property value='Tree' name='View'></property></list>") + "\n\n"},
        AcceptedRow{"OfALaterMinorVersion",
                    "<configuration version=\"1.27\"><list name='Browser'>" + kPropertyTag + "</list></configuration>"},
        AcceptedRow{
            "WithUnknownElements",
            Wrap("<theme a='b'>dark<x/></theme><list name='Browser'><group><property name='n' value='v'/></group>" +
                 kPropertyTag + "</list>")},
        AcceptedRow{
            "WithUnknownAttributes",
            Wrap("<list name='Browser' colour='&nothing;'><property name='View' kind='text' value='Tree'/></list>")},
        AcceptedRow{"WithReferences",
                    Wrap("<list name='&#66;rowser'><property name='V&#x69;ew' value='Tree'/></list>")}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

struct DamageRow {
  const char* name;
  std::string bytes;
  const char* location;
  const char* reason;
  KrResult::Code code = KrResult::Code::BadData;
};

class Damaged : public testing::TestWithParam<DamageRow> {};

TEST_P(Damaged, IsRefusedWithPlaceAndReason) {
  Configuration read = MakeSmall();

  const KrResult result = ParseConfiguration(GetParam().bytes, read);

  EXPECT_EQ(result.GetCode(), GetParam().code);
  EXPECT_THAT(result.GetDescription().ToUtf8(), StartsWith(GetParam().location));
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(GetParam().reason));
  EXPECT_EQ(read, MakeSmall());
}

INSTANTIATE_TEST_SUITE_P(
    Documents, Damaged,
    testing::Values(
        DamageRow{"Empty", "", "line 1, column 1:", ""}, DamageRow{"OnlyText", "hello", "line 1, column 1:", "text"},
        DamageRow{"OnlyADeclaration", "<?xml version=\"1.0\"?>\n", "line 2, column 1:", "ends before"},
        DamageRow{"AnotherDocument", "<html/>", "line 1, column 1:", "no configuration"},
        DamageRow{"TagsThatDoNotMatch", Wrap("\n<list name='a'>\n</lost>"), "line 3, column ", "mismatch"},
        DamageRow{"AttributeWithoutQuotes", Wrap("\n<list name=a></list>"), "line 2, column ", "attribute"},
        DamageRow{"AttributeMissing", Wrap("\n<list name='a'>\n  <property name='b'/></list>"),
                  "line 3, column 3:", "value is missing"},
        DamageRow{"AttributeTwice", Wrap("\n<list name='a' name='b'/>"), "line 2, column 1:", "name is there twice"},
        DamageRow{"ListWithoutName", Wrap("\n\n <list/>"), "line 3, column 2:", "name is missing"},
        DamageRow{"ListWithEmptyName", Wrap("<list name=''/>"), "line 1, column 30:", "empty"},
        DamageRow{"ListTwice", Wrap("\n<list name='a'/>\n<list name='a'/>"), "line 3, column 1:", "already"},
        DamageRow{"TextInAList", Wrap("\n<list name='a'>stray</list>"),
                  "line 2, column 16:", "text in the element <list>"},
        DamageRow{"TextInTheRoot", Wrap("\n stray"), "line 2, column 2:", "text in the element <configuration>"},
        DamageRow{"CharacterDataInAList", Wrap("\n<list name='a'><![CDATA[x]]></list>"), "line 2, column ", "text"},
        DamageRow{"TextBehindTheEnd", Wrap("") + "\nrest", "line 2, column 1:", "text outside"},
        DamageRow{"SecondDocument", Wrap("") + "\n" + Wrap(""), "line 2, column 1:", "second document"},
        DamageRow{"UnknownReference", Wrap("\n<list name='a&b;'/>"), "line 2, column 13:", "&"},
        DamageRow{"ReferenceToZero", Wrap("\n<list name='a&#0;'/>"), "line 2, column 13:", "&"},
        DamageRow{"BracketInAValue", Wrap("\n<list name='a<b'/>"), "line 2, column 13:", "&lt;"},
        DamageRow{"UnknownEscape", Wrap("\n<list name='a\\q'/>"), "line 2, column 13:", "backslash"},
        DamageRow{"ZeroByte", Wrap("\n<list name='a") + std::string(1, '\0') + "'/>",
                  "line 2, column 30:", "not allow"},
        DamageRow{"ControlCharacter", Wrap("\n<list name='\x01'/>"), "line 2, column 13:", "not allow"},
        DamageRow{"BytesThatAreNoUtf8", Wrap("\n<list name='\xff'/>"), "line 2, column 13:", "UTF-8"},
        DamageRow{"LineEndsOfEveryKind", Wrap("\r\n\r\n\n\r<list/>"), "line 5, column 1:", "missing"},
        DamageRow{"ColumnsOfCharacters", Wrap("\n<!-- größe --><list/>"), "line 2, column 15:", "missing"},
        DamageRow{"AnotherEncoding", "<?xml version='1.0' encoding='ISO-8859-1'?>" + Wrap(""),
                  "line 1, column 1:", "UTF-8"},
        DamageRow{"DeclarationInTheMiddle", "<!-- -->\n" + Wrap("") + "<?xml version='1.0'?>", "line 2, column ",
                  "first"},
        DamageRow{"DocumentType", "<!DOCTYPE configuration [<!ENTITY a \"b\">]>\n" + Wrap(""),
                  "line 1, column 1:", "document type"},
        DamageRow{"VersionMissing", "\n<configuration/>", "line 2, column 1:", "version is missing"},
        DamageRow{"VersionThatIsNone", "<configuration version='one'/>", "line 1, column 1:", "two numbers"},
        DamageRow{"VersionWithoutMinor", "<configuration version='1'/>", "line 1, column 1:", "two numbers"},
        DamageRow{"VersionZero", "<configuration version='0.9'/>", "line 1, column 1:", "two numbers"},
        DamageRow{"NewerVersion", "\n<configuration version='2.3'><lists/></configuration>",
                  "line 2, column 1:", "needs a library that reads version 2", KrResult::Code::NotSupported}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(ConfigurationParser, EntitiesThatGrow_AreNotExpanded) {
  const std::string bomb = "<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>" +
                           Wrap("<list name='a'><property name='&b;' value=''/></list>");
  Configuration read;

  EXPECT_EQ(ParseConfiguration(bomb, read).GetCode(), KrResult::Code::BadData);
}

TEST(ConfigurationParser, DeepNesting_IsNoDanger) {
  std::string deep;
  for (int level = 0; level < 500'000; ++level)
    deep += "<a>";
  Configuration read;

  EXPECT_EQ(ParseConfiguration(deep, read).GetCode(), KrResult::Code::BadData);
}

// As many elements as the limit allows, and one more.
TEST(ConfigurationParser, MoreListsThanTheLimit_AreRefusedByIt) {
  std::string lists;
  for (std::size_t index = 0; index < kMostLists; ++index)
    lists += "<list name='" + std::to_string(index) + "'/>";
  Configuration read;

  EXPECT_TRUE(ParseConfiguration(Wrap(lists), read).IsOK());
  const KrResult result = ParseConfiguration(Wrap(lists + "\n<list name='one more'/>"), read);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(StartsWith("line 2"), HasSubstr("1000 lists")));
  EXPECT_EQ(read.size(), kMostLists);
}

TEST(ConfigurationParser, MorePropertiesThanTheLimit_AreRefusedByIt) {
  std::string properties = "<list name='a'>";
  for (std::size_t index = 0; index < kMostProperties; ++index)
    properties += "<property name='' value=''/>";
  Configuration read;

  EXPECT_TRUE(ParseConfiguration(Wrap(properties + "</list>"), read).IsOK());
  const KrResult result = ParseConfiguration(Wrap(properties + "<property name='' value=''/></list>"), read);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("10000 properties"));
}

TEST(ConfigurationParser, TextBeyondTheLimit_IsRefusedByIt) {
  Configuration read;

  EXPECT_TRUE(ParseConfiguration(Wrap("<list name='" + std::string(kMostTextBytes, 'a') + "'/>"), read).IsOK());
  const KrResult result = ParseConfiguration(Wrap("<list name='" + std::string(kMostTextBytes + 1, 'a') + "'/>"), read);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("1048576 bytes"));
}

TEST(ConfigurationParser, MoreUnknownElementsThanTheLimit_AreRefusedByIt) {
  const std::string empty = Wrap("");
  const std::size_t allowed = kMostMarkup - static_cast<std::size_t>(std::ranges::count(empty, '<'));
  std::string elements;
  for (std::size_t index = 0; index < allowed; ++index)
    elements += "<a/>";
  Configuration read;

  EXPECT_TRUE(ParseConfiguration(Wrap(elements), read).IsOK());
  const KrResult result = ParseConfiguration(Wrap(elements + "<a/>"), read);

  EXPECT_TRUE(result == KrResult::Code::OutOfRange) << result.GetCodeString().CStr();
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("1000000 elements"));
}

TEST(ConfigurationParser, FileBeyondTheLimit_IsRefusedByIt) {
  Configuration read;

  const KrResult result = ParseConfiguration(std::string(kMostFileBytes + 1, ' '), read);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("16777216 bytes"));
}

} // namespace
} // namespace krpersistence
