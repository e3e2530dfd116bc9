#include "logic/browser/descriptiontext.h"

#include "nodebench.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace krgui;

namespace {

std::string Describe(const TreeItemData& aNode) {
  return FormatDescription(aNode).ToUtf8();
}

std::string DescribeFeature(const std::string& aNodes, const char* aName = "X") {
  NodeBench camera(aNodes);
  return Describe(*camera.MakeNode(aName));
}

// The block that every feature has.
std::string MakeFeatureBlock(const std::string& aType, const std::string& aName = "X") {
  return "\nFeature Name: <b>" + aName + "</b>\nType: <b>" + aType +
         "</b>\nName Space: <b>Custom</b>\nVisibility: <b>Beginner</b>\nStreamable: <b>False</b>\n";
}

} // namespace

TEST(DescriptionText, Integer_HasBoundsAndIncrement) {
  struct {
    const char* description;
    const char* content;
    const char* text;
  } constexpr kRows[] = {
      {"whole range", "", "\nUnbound signed 64 bits integer\nIncrement: <b>1</b>\n"},
      {"sixteen bits", "<Min>0</Min><Max>65535</Max>", "\nUnbound unsigned 16 bits integer\nIncrement: <b>1</b>\n"},
      {"decimal", "<Min>1</Min><Max>65535</Max><Inc>2</Inc>",
       "\nMin: <b>1</b> Max: <b>65535</b>\nIncrement: <b>2</b>\n"},
      {"hexadecimal", "<Min>1</Min><Max>65535</Max><Inc>16</Inc><Representation>HexNumber</Representation>",
       "\nMin: <b>1</b> Max: <b>FFFF</b>\nIncrement: <b>16</b>\n"},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(DescribeFeature("<Integer Name=\"X\"><Value>1</Value>" + std::string(row.content) + "</Integer>"),
              row.text + MakeFeatureBlock("Integer"))
        << row.description;
}

TEST(DescriptionText, OtherTypes_HaveTheirOwnParts) {
  struct {
    const char* type;
    std::string nodes;
    const char* text;
  } const kRows[] = {
      {"Float", "<Float Name=\"X\"><Value>1</Value><Min>-0.5</Min><Max>1000000</Max></Float>",
       "\nMin: <b>-0.5</b> Max: <b>1e+06</b>\n"},
      {"String",
       "<StringReg Name=\"X\"><Address>0</Address><Length>16</Length><AccessMode>RW</AccessMode>"
       "<pPort>Device</pPort></StringReg>",
       "\nMax Length: <b>16</b> bytes\n"},
      {"String",
       "<Integer Name=\"Zero\"><Value>0</Value></Integer><StringReg Name=\"X\"><pIsAvailable>Zero</pIsAvailable>"
       "<Address>0</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>",
       "\nMax Length: <b>0</b> bytes\n"},
      {"Register",
       "<Register Name=\"X\"><Address>0</Address><Length>12</Length><AccessMode>RW</AccessMode>"
       "<pPort>Device</pPort></Register>",
       "\nThis feature can only be accessed programmatically.\nLength: <b>12</b> bytes\n"},
      {"Boolean", "<Boolean Name=\"X\"><Value>true</Value></Boolean>", ""},
      {"Command",
       MakeRegister("Raw", 0) + "<Command Name=\"X\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>", ""},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(DescribeFeature(row.nodes), row.text + MakeFeatureBlock(row.type));
}

TEST(DescriptionText, Selectors_StandFirst) {
  struct {
    const char* description;
    const char* nodes;
    const char* text;
  } constexpr kRows[] = {
      {"none", "", ""},
      {"one", "<Integer Name=\"GainSelector\"><Value>0</Value><pSelected>X</pSelected></Integer>",
       "Selector: <b>GainSelector</b>\n\n\n"},
      {"two",
       "<Integer Name=\"A\"><Value>0</Value><pSelected>X</pSelected></Integer>"
       "<Integer Name=\"B\"><Value>0</Value><pSelected>X</pSelected></Integer>",
       "Selectors: <b>A</b>, <b>B</b>\n\n\n"},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(DescribeFeature(std::string(row.nodes) + "<Boolean Name=\"X\"><Value>true</Value></Boolean>"),
              row.text + MakeFeatureBlock("Boolean"))
        << row.description;
}

TEST(DescriptionText, DescriptionOfTheFeature_FollowsTheSelectors) {
  const std::string feature = "<Boolean Name=\"X\"><Description>What it is, <b>not marked up</b>.</Description>"
                              "<Value>true</Value></Boolean>";
  const std::string plain = "<Boolean Name=\"X\"><Description>What it is.</Description><Value>true</Value></Boolean>";
  const std::string selector = "<Integer Name=\"A\"><Value>0</Value><pSelected>X</pSelected></Integer>";

  EXPECT_EQ(DescribeFeature(plain), "What it is.\n" + MakeFeatureBlock("Boolean"));
  EXPECT_EQ(DescribeFeature(selector + plain), "Selector: <b>A</b>\n\nWhat it is.\n" + MakeFeatureBlock("Boolean"));
}

TEST(DescriptionText, BoldRunWithoutAnEnd_EndsWithTheCamerasText) {
  const std::string open = "<Description>All &lt;b&gt;bold</Description>";
  NodeBench camera("<Category Name=\"Root\"><pFeature>A</pFeature></Category><Category Name=\"A\">" + open +
                   "</Category><Enumeration Name=\"X\">" + open + "<EnumEntry Name=\"E\">" + open +
                   "<Value>0</Value></EnumEntry><Value>0</Value></Enumeration>");

  EXPECT_EQ(Describe(*camera.MakeCategoryNode("A")),
            "All <b>bold</b>\n\nCategory Name: <b>A</b>\nType: <b>Category</b>\nName Space: <b>Custom</b>\n");
  EXPECT_EQ(Describe(*camera.MakeNode("X")),
            "All <b>bold</b>\n" + MakeFeatureBlock("Enumeration") +
                "\n<b>E</b>\nAll <b>bold</b>\n\nEnum Entry Name: <b>E</b>\nEnum Entry Value: <b>0 (0x0)</b>\n"
                "Name Space: <b>Custom</b>\nVisibility:<b>Beginner</b>\n\n");
}

TEST(DescriptionText, FeatureBlock_HasTheNodesWords) {
  EXPECT_EQ(DescribeFeature("<Boolean Name=\"X\" NameSpace=\"Standard\"><Visibility>Guru</Visibility>"
                            "<Streamable>Yes</Streamable><Value>true</Value></Boolean>"),
            "\nFeature Name: <b>X</b>\nType: <b>Boolean</b>\nName Space: <b>Standard</b>\nVisibility: <b>Guru</b>\n"
            "Streamable: <b>True</b>\n");
}

TEST(DescriptionText, Enumeration_ListsAllItsEntriesAtTheEnd) {
  const std::string text = DescribeFeature(
      "<Integer Name=\"Zero\"><Value>0</Value></Integer><Enumeration Name=\"X\">"
      "<EnumEntry Name=\"A\" NameSpace=\"Standard\"><Description>The first</Description>"
      "<DisplayName>Letter A</DisplayName><Visibility>Expert</Visibility><Value>17</Value></EnumEntry>"
      "<EnumEntry Name=\"B\"><Visibility>Invisible</Visibility><pIsAvailable>Zero</pIsAvailable><Value>-1</Value>"
      "</EnumEntry><Value>17</Value></Enumeration>");

  EXPECT_EQ(text, MakeFeatureBlock("Enumeration") +
                      "\n<b>Letter A</b>\nThe first\n\nEnum Entry Name: <b>A</b>\nEnum Entry Value: <b>17 (0x11)</b>\n"
                      "Name Space: <b>Standard</b>\nVisibility:<b>Expert</b>\n\n"
                      "<b>B</b>\n\nEnum Entry Name: <b>B</b>\nEnum Entry Value: <b>-1 (0xFFFFFFFF)</b>\n"
                      "Name Space: <b>Custom</b>\nVisibility:<b>Invisible</b>\n\n");
}

TEST(DescriptionText, EntryValues_AreDecimalAndHexadecimal) {
  struct {
    const char* value;
    const char* text;
  } constexpr kRows[] = {
      {"0", "0 (0x0)"},
      {"255", "255 (0xFF)"},
      {"4294967295", "4294967295 (0xFFFFFFFF)"},
      {"-2147483648", "-2147483648 (0x80000000)"},
      {"4294967297", "4294967297 (0x100000001)"},
  };

  for (const auto& row : kRows) {
    const std::string text =
        DescribeFeature("<Enumeration Name=\"X\"><EnumEntry Name=\"A\"><Value>" + std::string(row.value) +
                        "</Value></EnumEntry><Value>" + row.value + "</Value></Enumeration>");
    EXPECT_NE(text.find("Enum Entry Value: <b>" + std::string(row.text) + "</b>\n"), std::string::npos) << text;
  }
}

TEST(DescriptionText, BoundsThatCannotBeRead_AreZero) {
  const std::string nodes =
      MakeUncachedRegister("Limit", 8) +
      "<Integer Name=\"X\"><Value>1</Value><pMin>Limit</pMin><pMax>Limit</pMax><pInc>Limit</pInc></Integer>"
      "<Float Name=\"Y\"><Value>1</Value><pMin>Limit</pMin><pMax>Limit</pMax></Float>";
  struct {
    const char* description;
    std::function<KrResult()> fail;
  } const kRows[] = {
      {"port that fails", [] { return KrResult(KrResult::Code::TimeLimitExceeded, "No answer."); }},
      {"port that throws", []() -> KrResult { throw std::runtime_error("The cable burns."); }},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.description);
    NodeBench camera(nodes);
    const auto integer = camera.MakeNode("X");
    const auto number = camera.MakeNode("Y");
    camera.AwaitNotifications();
    camera.port.SetFault(
        [&](const RegisterAccessRecord& aRecord) { return aRecord.address == 8 ? row.fail() : KrResult(); });

    const std::string ofInteger = Describe(*integer);
    const std::string ofFloat = Describe(*number);
    camera.port.SetFault({});

    EXPECT_EQ(ofInteger, "\nMin: <b>0</b> Max: <b>0</b>\nIncrement: <b>0</b>\n" + MakeFeatureBlock("Integer"));
    EXPECT_EQ(ofFloat, "\nMin: <b>0</b> Max: <b>0</b>\n" + MakeFeatureBlock("Float", "Y"));
  }
}

TEST(DescriptionText, Category_HasItsOwnBlock) {
  const std::string nodes = "<Category Name=\"Root\"><pFeature>A</pFeature><pFeature>B</pFeature></Category>"
                            "<Category Name=\"A\" NameSpace=\"Standard\"><Description>All of A</Description>"
                            "</Category><Category Name=\"B\"/>";
  NodeBench camera(nodes);

  EXPECT_EQ(Describe(*camera.MakeCategoryNode("A")),
            "All of A\n\nCategory Name: <b>A</b>\nType: <b>Category</b>\nName Space: <b>Standard</b>\n");
  EXPECT_EQ(camera.MakeCategoryNode("B")->GetDescription().ToUtf8(),
            "\nCategory Name: <b>B</b>\nType: <b>Category</b>\nName Space: <b>Custom</b>\n");
}

TEST(DescriptionText, GetDescriptionOfANode_IsTheSame) {
  NodeBench camera("<Boolean Name=\"X\"><Value>true</Value></Boolean>");
  const auto node = camera.MakeNode("X");

  EXPECT_EQ(node->GetDescription(), FormatDescription(*node));
  EXPECT_EQ(node->GetDescription().ToUtf8(), MakeFeatureBlock("Boolean"));
}

TEST(DescriptionText, OfManyMegabytes_IsCutToItsBeginning) {
  const std::string text =
      DescribeFeature("<Boolean Name=\"X\"><Description>" + std::string(8U << 20, 'x') + "</Description></Boolean>");

  EXPECT_EQ(text, std::string(256U << 10, 'x') + "…");
}

TEST(DescriptionText, CutWithinABoldRun_EndsIt) {
  const std::string before(262'141, 'x');

  const std::string text = DescribeFeature("<Boolean Name=\"X\"><Description>" + before + "&lt;b&gt;" +
                                           std::string(1000, 'y') + "&lt;/b&gt;</Description></Boolean>");

  EXPECT_EQ(text, before + "<b>…</b>");
}

TEST(DescriptionText, CutWithinATagOrACharacter_LeavesItOut) {
  const std::string before(262'142, 'x');

  for (const char* const behind : {"&lt;b&gt;y&lt;/b&gt;yy", "\U0001F4F7yy"})
    EXPECT_EQ(DescribeFeature("<Boolean Name=\"X\"><Description>" + before + behind + "</Description></Boolean>"),
              before + "…");
}

TEST(DescriptionText, OfAHundredThousandEntries_IsCutToTheFirst) {
  std::string entries;
  for (int i = 0; i < 100'000; ++i)
    entries += "<EnumEntry Name=\"E" + std::to_string(i) + "\"><Value>" + std::to_string(i) + "</Value></EnumEntry>";

  const std::string text = DescribeFeature("<Enumeration Name=\"X\">" + entries + "<Value>0</Value></Enumeration>");

  EXPECT_NE(text.find("<b>E0</b>"), std::string::npos);
  EXPECT_LE(text.size(), (256U << 10) + std::string("…</b>").size());
}

TEST(DescriptionText, TitleOfManyMegabytes_IsCutToItsBeginning) {
  NodeBench camera("<Boolean Name=\"X\"><DisplayName>" + std::string(8U << 20, 'x') + "</DisplayName></Boolean>");

  EXPECT_EQ(FormatDescriptionTitle(*camera.MakeNode("X")).ToUtf8(), std::string(1024, 'x') + "…");
}
