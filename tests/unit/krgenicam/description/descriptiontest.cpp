#include "readdescription.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>

namespace krgenicam {
namespace {

using testing::HasSubstr;

const NodeDescription& GetNode(const Description& aDescription, std::string_view aName) {
  return aDescription.GetNodes().at(aDescription.Find(aName));
}

TEST(Description_, WholeNode_GivesItsPropertiesInOrder) {
  const Description description = ReadNodes("<Integer Name=\" Width \" NameSpace=\"Standard\">\n"
                                            "  <ToolTip> How wide. </ToolTip>\n"
                                            "  <pValue>WidthReg</pValue>\n"
                                            "  <Unknown>x</Unknown>\n"
                                            "</Integer>\n"
                                            "<IntReg Name=\"WidthReg\"><Address>0x10</Address></IntReg>");

  EXPECT_EQ(ShowNode(description, "Width"), "ToolTip=How wide. pValue=WidthReg->WidthReg");
  EXPECT_EQ(GetNode(description, "Width").kind, NodeKind::Integer);
  EXPECT_TRUE(GetNode(description, "Width").isStandard);
  EXPECT_FALSE(GetNode(description, "WidthReg").isStandard);
  EXPECT_EQ(GetNode(description, "Width").line, 2U);
  EXPECT_EQ(description.GetProperties(GetNode(description, "Width"))[1].line, 4U);
  EXPECT_EQ(GetNode(description, "WidthReg").line, 7U);
  EXPECT_EQ(ShowFaults(description), "");
}

TEST(Description_, Root_NamesVendorModelAndSchema) {
  const Description description = ReadText("<RegisterDescription VendorName=\"V &amp; Co\" ModelName=\" M \" "
                                           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\"/>");

  EXPECT_EQ(description.GetVendorName(), "V & Co");
  EXPECT_EQ(description.GetModelName(), "M");
  EXPECT_EQ(description.GetSchemaMinorVersion(), 0);
  EXPECT_TRUE(description.GetNodes().empty());
}

TEST(Description_, Schema_IsJudgedByAttributesAndNameSpace) {
  const struct {
    const char* attributes;
    int minor;
  } rows[] = {
      {"", 1},
      {"SchemaMajorVersion='1' SchemaMinorVersion='1' SchemaSubMinorVersion='7'", 1},
      {"SchemaMajorVersion='1' SchemaMinorVersion='0'", 0},
      {"SchemaMajorVersion='0x1' SchemaMinorVersion=' 0x0 '", 0},
      {"xmlns='http://www.genicam.org/GenApi/Version_1_0'", 0},
      {"xmlns='http://www.genicam.org/GenApi/Version_1_1'", 1},
      {"xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns='http://www.genicam.org/GenApi/Version_1_0'", 0},
      {"SchemaMinorVersion='1' xmlns='http://www.genicam.org/GenApi/Version_1_0'", 1},
      {"SchemaMajorVersion='one' SchemaMinorVersion=''", 1},
  };

  for (const auto& row : rows)
    EXPECT_EQ(ReadText("<RegisterDescription " + std::string(row.attributes) + "/>").GetSchemaMinorVersion(), row.minor)
        << row.attributes;
}

TEST(Description_, Text_ThatIsNoDescription_IsRefusedWithPlaceAndReason) {
  const struct {
    const char* name;
    const char* text;
    const char* expected;
  } rows[] = {
      {"no element", "<!-- -->", "No document element found"},
      {"a tag cut off", "<RegisterDescription>\n  <Integer Na", "line 2, column 14"},
      {"an element cut off", "<RegisterDescription>\n<Integer Name=\"A\">\n<Value>1</Value>", "line 3, column 16"},
      {"a wrong end", "<RegisterDescription>\n<Integer></Float>\n</RegisterDescription>", "line 2, column 12"},
      {"an attribute without quotes", "<RegisterDescription A=b/>", "line 1, column 24"},
      {"another root", "\n<html/>", "line 2, column 2: its root element is \"html\" where"},
      {"a newer minor version", "<RegisterDescription SchemaMajorVersion='1' SchemaMinorVersion='2'/>",
       "follows schema 1.2, and the newest one that can be read is 1.1."},
      {"a newer major version", "<RegisterDescription SchemaMajorVersion='2' SchemaMinorVersion='0'/>",
       "follows schema 2.0"},
      {"a newer name space",
       "<RegisterDescription SchemaMajorVersion='1' xmlns='http://www.genicam.org/GenApi/Version_1_2'/>",
       "follows schema 1.2"},
      {"a newer name space of a prefix", "<g:RegisterDescription xmlns:g='http://www.genicam.org/GenApi/Version_3_0'/>",
       "follows schema 3.0"},
  };

  for (const auto& row : rows) {
    Description description;
    const KrResult result = TryToRead(row.text, description);
    EXPECT_EQ(result, KrResult::Code::BadData) << row.name;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("test.xml")) << row.name;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.expected)) << row.name;
    EXPECT_TRUE(description.GetNodes().empty()) << row.name;
  }
}

TEST(Description_, Text_ThatStraysFromTheSchema_IsStillUnderstood) {
  const struct {
    const char* name;
    const char* nodes;
    const char* expected; // Of node A.
  } rows[] = {
      {"prefixes", "<g:Integer Name='A'><g:Value>1</g:Value></g:Integer>", "Value=1"},
      {"blanks and line ends", "<Integer Name='\n A\t'><Value>\r\n 1 \n</Value></Integer>", "Value=1"},
      {"an empty element", "<Integer Name='A'><DisplayName/></Integer>", "DisplayName="},
      {"the other spelling of value sets", "<Integer Name='A'><ValidValuesSet>1;2</ValidValuesSet></Integer>",
       "ValidValueSet=1;2"},
      {"the dictionary's spelling", "<IntReg Name='A'><Endianness>BigEndian</Endianness></IntReg>",
       "Endianess=BigEndian"},
      {"CDATA", "<SwissKnife Name='A'><Formula><![CDATA[ 1 < 2 && 3 > 2 ]]></Formula></SwissKnife>",
       "Formula=1 < 2 && 3 > 2"},
      {"text in pieces",
       "<SwissKnife Name='A'><Formula>1 <!-- one -->+<![CDATA[ 2 < ]]>3<!----></Formula></SwissKnife>",
       "Formula=1 + 2 < 3"},
      {"CDATA first", "<SwissKnife Name='A'><Formula><![CDATA[1 <]]> 2</Formula></SwissKnife>", "Formula=1 < 2"},
      {"escapes", "<SwissKnife Name='A'><Formula>1 &lt; 2 &#x26;&#38; 1</Formula></SwissKnife>", "Formula=1 < 2 && 1"},
      {"double escapes, which formulas understand", "<SwissKnife Name='A'><Formula>1 &amp;lt; 2</Formula></SwissKnife>",
       "Formula=1 &lt; 2"},
      {"an unknown entity", "<Integer Name='A'><ToolTip>&evil;</ToolTip></Integer>", "ToolTip=&evil;"},
      {"unknown elements", "<Integer Name='A'><Foo><Value>2</Value></Foo><Value>1</Value></Integer>", "Value=1"},
      {"unknown nodes", "<Foo Name='A'><Integer Name='A'/></Foo><Integer Name='A'><Value>1</Value></Integer>",
       "Value=1"},
      {"extensions",
       "<Extension><Integer Name='A'/></Extension><Integer Name='A'><Extension><Value>2</Value>"
       "</Extension><Value>1</Value></Integer>",
       "Value=1"},
      {"a group", "<Group Comment='x'><Integer Name='A'><Value>1</Value></Integer></Group>", "Value=1"},
      {"an empty group", "<Group Comment='x'/><Group></Group><Integer Name='A'><Value>1</Value></Integer>", "Value=1"},
      {"a group in groups",
       "<Group><Group><Integer Name='B'/></Group><Group><Integer Name='A'/></Group></Group><Integer Name='C'/>", ""},
      {"several of one kind", "<Category Name='A'><pFeature>A</pFeature><pFeature>A</pFeature></Category>",
       "pFeature=A->A pFeature=A->A"},
      {"a node of no value", "<AdvFeatureLock Name='A'><FeatureID>1</FeatureID><Address>4</Address></AdvFeatureLock>",
       "Address=4"},
  };

  for (const auto& row : rows) {
    const Description description = ReadNodes(row.nodes);
    EXPECT_EQ(ShowNode(description, "A"), row.expected) << row.name;
    EXPECT_EQ(ShowFaults(description), "") << row.name;
  }
}

TEST(Description_, DocumentType_WithEntities_IsNeitherExpandedNorFetched) {
  const Description description =
      ReadText("<?xml version='1.0'?><!DOCTYPE d [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">"
               "<!ENTITY c SYSTEM \"file:///etc/passwd\">]>"
               "<RegisterDescription><Integer Name='A'><ToolTip>&b;&c;</ToolTip></Integer></RegisterDescription>");

  EXPECT_EQ(ShowNode(description, "A"), "ToolTip=&b;&c;");
}

TEST(Description_, Attributes_OfElements_AreKept) {
  const Description description =
      ReadNodes("<SwissKnife Name='K'><pVariable Name='V.Max'>R</pVariable><Constant Name='C'>3</Constant>"
                "<Expression Name='E'>C+1</Expression></SwissKnife>"
                "<Integer Name='I'><ValueIndexed Index='2'>5</ValueIndexed>"
                "<pValueIndexed Index='0x3'>R</pValueIndexed></Integer>"
                "<IntReg Name='R'><pIndex Offset='8'>I</pIndex><pIndex pOffset='K'>I</pIndex></IntReg>");

  EXPECT_EQ(ShowNode(description, "K"), "pVariable=R@V.Max->R Constant=3@C Expression=C+1@E");
  EXPECT_EQ(ShowNode(description, "I"), "ValueIndexed=5@2 pValueIndexed=R@0x3->R");
  EXPECT_EQ(ShowNode(description, "R"), "pIndex=I@8->I pIndex=I->I");
  const auto properties = description.GetProperties(GetNode(description, "R"));
  EXPECT_EQ(properties[0].offsetTarget, kNoNode);
  EXPECT_EQ(properties[1].offsetName, "K");
  EXPECT_EQ(properties[1].offsetTarget, description.Find("K"));
}

TEST(Description_, EntriesInPlace_AreNodesOfTheirEnumerationThatNobodyFinds) {
  const Description description = ReadNodes("<Enumeration Name='E'>\n"
                                            "<EnumEntry Name='On' NameSpace='Standard'><Value>1</Value></EnumEntry>\n"
                                            "<EnumEntry Name='Off'><Value>0</Value></EnumEntry>\n"
                                            "<Value>1</Value></Enumeration>"
                                            "<Enumeration Name='F'><EnumEntry Name='On'/></Enumeration>");

  EXPECT_EQ(ShowNames(description), "E On Off F On");
  EXPECT_EQ(ShowNode(description, "E"), "EnumEntry=->On EnumEntry=->Off Value=1");
  EXPECT_EQ(description.Find("On"), kNoNode);
  const NodeDescription& on = description.GetNodes()[1];
  EXPECT_EQ(on.kind, NodeKind::EnumEntry);
  EXPECT_EQ(on.owner, description.Find("E"));
  EXPECT_EQ(on.line, 3U);
  EXPECT_TRUE(on.isStandard);
  EXPECT_EQ(ShowProperties(description, on), "Value=1");
  EXPECT_EQ(ShowFaults(description), "");
}

TEST(Description_, EntriesByName_AreTakenFromAnywhere) {
  const Description description = ReadNodes("<Enumeration Name='E'><pEnumEntry>On</pEnumEntry></Enumeration>"
                                            "<EnumEntry Name='On'><Value>1</Value></EnumEntry>"
                                            "<Integer Name='On'/>");

  EXPECT_EQ(ShowNode(description, "E"), "EnumEntry=On->On");
  EXPECT_EQ(description.GetNodes()[1].owner, description.Find("E"));
  EXPECT_EQ(GetNode(description, "On").kind, NodeKind::Integer);
  EXPECT_EQ(ShowFaults(description), "");
}

TEST(Description_, FormulaInsideARegister_IsANodeOfItsOwn) {
  const Description description =
      ReadNodes("<IntReg Name='R'><Address>4</Address><IntSwissKnife Name='K'><pVariable Name='I'>J</pVariable>"
                "<Formula>I*8</Formula></IntSwissKnife><Length>4</Length></IntReg>"
                "<Integer Name='J'><pValue>K</pValue></Integer>");

  EXPECT_EQ(ShowNode(description, "R"), "Address=4 IntSwissKnife=->K Length=4");
  EXPECT_EQ(ShowNode(description, "K"), "pVariable=J@I->J Formula=I*8");
  EXPECT_EQ(GetNode(description, "K").owner, description.Find("R"));
  EXPECT_EQ(ShowNode(description, "J"), "pValue=K->K");
}

TEST(Description_, FormulaInsideARegister_LeavesItsNameToOthers) {
  const Description description = ReadNodes("<IntReg Name='R'><IntSwissKnife Name='K'/></IntReg>"
                                            "<IntReg Name='S'><IntSwissKnife/></IntReg>"
                                            "<Integer Name='K'/>");

  EXPECT_EQ(GetNode(description, "K").kind, NodeKind::Integer);
  EXPECT_EQ(ShowNode(description, "R"), "IntSwissKnife=->K");
  EXPECT_EQ(ShowNode(description, "S"), "IntSwissKnife=->");
  EXPECT_EQ(ShowFaults(description), "");
}

TEST(Description_, StructEntries_TakeFromTheirRegisterWhatTheyLack) {
  const Description description =
      ReadNodes("<StructReg Comment='x'>\n"
                "<ToolTip>All</ToolTip><Address>4</Address><Address>8</Address><pAddress>B</pAddress>"
                "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
                "<pInvalidator>B</pInvalidator><pInvalidator>Device</pInvalidator>\n"
                "<StructEntry Name='A'><ToolTip>Own</ToolTip><AccessMode>RO</AccessMode><Bit>3</Bit></StructEntry>\n"
                "<StructEntry Name='B'><LSB>0</LSB><MSB>1</MSB><pInvalidator>A</pInvalidator></StructEntry>\n"
                "<Endianess>BigEndian</Endianess></StructReg>"
                "<Port Name='Device'/>");

  EXPECT_EQ(ShowNode(description, "A"),
            "ToolTip=Own AccessMode=RO Bit=3 Address=4 Address=8 pAddress=B->B Length=4 pPort=Device->Device "
            "pInvalidator=B->B pInvalidator=Device->Device Endianess=BigEndian");
  EXPECT_EQ(ShowNode(description, "B"),
            "LSB=0 MSB=1 pInvalidator=A->A ToolTip=All Address=4 Address=8 pAddress=B->B Length=4 AccessMode=RW "
            "pPort=Device->Device Endianess=BigEndian");
  EXPECT_EQ(GetNode(description, "A").kind, NodeKind::MaskedIntReg);
  EXPECT_EQ(GetNode(description, "A").line, 4U);
  EXPECT_EQ(ShowNames(description), "A B Device");
  EXPECT_EQ(ShowFaults(description), "");
}

TEST(Description_, FormulaInsideAStructReg_IsSharedByItsEntries) {
  const Description description = ReadNodes("<StructReg><IntSwissKnife Name='K'><Formula>4</Formula></IntSwissKnife>"
                                            "<StructEntry Name='A'><Bit>0</Bit></StructEntry>"
                                            "<StructEntry Name='B'><Bit>1</Bit></StructEntry></StructReg>");

  EXPECT_EQ(ShowNode(description, "A"), "Bit=0 IntSwissKnife=->K");
  EXPECT_EQ(ShowNode(description, "B"), "Bit=1 IntSwissKnife=->K");
  EXPECT_EQ(ShowNode(description, "K"), "Formula=4");
  EXPECT_EQ(GetNode(description, "K").owner, description.Find("A"));
}

TEST(Description_, FaultyNodes_AreNamedWithLineAndReasonAndLeaveTheRestAlone) {
  const struct {
    const char* name;
    const char* nodes; // Begin in line 2; node Rest follows.
    const char* expected;
  } rows[] = {
      {"a second node of a name", "<Integer Name='A'/>\n<Float Name='A'/>\n",
       "3: A: There is a node of this name in line 2 already; this one is left out.\n"},
      {"names differ by case", "<Integer Name='A'/>\n<Float Name='a'/>\n", ""},
      {"a node without a name", "<Integer><Value>1</Value></Integer>\n",
       "2: : The element Integer has no name and is left out.\n"},
      {"a name of blanks", "<Integer Name='  '/>\n", "2: : The element Integer has no name and is left out.\n"},
      {"a struct entry without a name", "<StructReg>\n<StructEntry/>\n<StructEntry Name='S'/></StructReg>",
       "3: : The element StructEntry has no name and is left out.\n"},
      {"a second struct entry of a name", "<Integer Name='S'/>\n<StructReg>\n<StructEntry Name='S'/></StructReg>",
       "3: : A StructReg has no entry that can be used.\n"
       "4: S: There is a node of this name in line 2 already; this one is left out.\n"},
      {"a struct entry with an address",
       "<StructReg><StructEntry Name='S'><Address>4</Address></StructEntry></StructReg>",
       "2: S: An entry of a StructReg has no address of its own; it is passed over.\n"},
      {"an empty StructReg", "<StructReg/>", "2: : A StructReg has no entry that can be used.\n"},
      {"an entry without a name", "<Enumeration Name='E'>\n<EnumEntry/></Enumeration>",
       "3: E: An entry has no name and is left out.\n"},
      {"a second entry of a name", "<Enumeration Name='E'><EnumEntry Name='X'/>\n<EnumEntry Name='X'/></Enumeration>",
       "3: E: There is an entry \"X\" already; this one is left out.\n"},
      {"a name of no node", "<Integer Name='A'>\n<pValue>Nobody</pValue></Integer>",
       "3: A: pValue names \"Nobody\", and there is no such node.\n"},
      {"an empty name of a node", "<Integer Name='A'><pMin/></Integer>",
       "2: A: pMin names \"\", and there is no such node.\n"},
      {"an offset of no node", "<IntReg Name='A'><pIndex pOffset='Nobody'>A</pIndex></IntReg>",
       "2: A: pOffset names \"Nobody\", and there is no such node.\n"},
      {"an entry of no node", "<Enumeration Name='A'><pEnumEntry>Nobody</pEnumEntry></Enumeration>",
       "2: A: EnumEntry names \"Nobody\", and there is no such node.\n"},
      {"a name in another case", "<Integer Name='A'><pValue>a</pValue></Integer>",
       "2: A: pValue names \"a\", and there is no such node.\n"},
      {"a name of an entry", "<Enumeration Name='E'><EnumEntry Name='X'/><pValue>X</pValue></Enumeration>",
       "2: E: pValue names \"X\", and there is no such node.\n"},
  };

  for (const auto& row : rows) {
    const Description description =
        ReadNodes(std::string(row.nodes) + "<Integer Name='Rest'><Value>1</Value></Integer>");
    EXPECT_EQ(ShowFaults(description), row.expected) << row.name;
    EXPECT_EQ(ShowNode(description, "Rest"), "Value=1") << row.name;
  }
}

TEST(Description_, FirstNode_OfTwoOfOneName_Stays) {
  const Description description = ReadNodes("<Integer Name='A'><Value>1</Value></Integer>"
                                            "<Enumeration Name='A'><EnumEntry Name='X'/></Enumeration>");

  EXPECT_EQ(ShowNames(description), "A");
  EXPECT_EQ(ShowNode(description, "A"), "Value=1");
}

std::string Repeat(std::string_view aText, std::size_t aTimes) {
  std::string repeated;
  repeated.reserve(aText.size() * aTimes);
  for (std::size_t time = 0; time < aTimes; ++time)
    repeated += aText;
  return repeated;
}

TEST(Description_, Groups_TenThousandDeep_AreRead) {
  constexpr std::size_t kDepth = 10000;
  const Description description =
      ReadNodes(Repeat("<Group>", kDepth) + "<Integer Name='A'/>" + Repeat("</Group>", kDepth) + "<Integer Name='B'/>");

  EXPECT_EQ(ShowNames(description), "A B");
}

TEST(Description_, UnknownElements_TenThousandDeep_ArePassedOver) {
  constexpr std::size_t kDepth = 10000;
  const Description description =
      ReadNodes("<Integer Name='A'>" + Repeat("<Foo>", kDepth) + Repeat("</Foo>", kDepth) + "</Integer>" +
                Repeat("<Foo>", kDepth) + Repeat("</Foo>", kDepth) + "<Integer Name='B'/>");

  EXPECT_EQ(ShowNames(description), "A B");
}

TEST(Description_, Faults_BeyondAThousand_AreNotListed) {
  const Description description = ReadNodes(Repeat("<Integer/>", 5000));

  ASSERT_EQ(description.GetFaults().size(), 1001U);
  EXPECT_EQ(description.GetFaults().back().text, "There are more faults, which are not listed.");
}

TEST(Description_, Names_OfMoreThan1024Bytes_CostTheirNodesAndEntriesWithAFault) {
  const std::string longest(1024, 'n');
  const std::string tooLong(1025, 'n');
  const std::string begun = tooLong.substr(0, 60);

  const Description description =
      ReadNodes("<Integer Name='" + longest + "'/>\n<Integer Name='" + tooLong + "'/>\n<StructReg><StructEntry Name='" +
                tooLong + "'/><StructEntry Name='S'/></StructReg>\n<Enumeration Name='E'><EnumEntry Name='" + longest +
                "'/>\n<EnumEntry Name='" + tooLong + "'/>\n<EnumEntry Name='Short'><Symbolic>" + tooLong +
                "</Symbolic><Value>1</Value></EnumEntry></Enumeration>");

  EXPECT_EQ(ShowNames(description), longest + " S E " + longest + " Short");
  EXPECT_EQ(ShowNode(description, longest), "");
  EXPECT_EQ(ShowProperties(description, description.GetNodes().back()), "Value=1");
  EXPECT_EQ(ShowFaults(description),
            "3: " + begun + ": The node's name has more than 1024 bytes; it is left out.\n4: " + begun +
                ": The node's name has more than 1024 bytes; it is left out.\n"
                "6: E: An entry's name has more than 1024 bytes; it is left out.\n"
                "7: Short: An entry's symbolic name has more than 1024 bytes; it is left out.\n");
}

TEST(Description_, NameOfAFormulaInARegister_OfMoreThan1024Bytes_IsNone) {
  const std::string tooLong(1025, 'n');

  const Description description = ReadNodes("<IntReg Name='R'><IntSwissKnife Name='" + tooLong +
                                            "'><Formula>1</Formula></IntSwissKnife></IntReg><Integer Name='A'/>");

  EXPECT_EQ(ShowNames(description), "R  A");
  EXPECT_EQ(ShowNode(description, tooLong), "no such node");
  EXPECT_EQ(ShowFaults(description), "");
}

TEST(Description_, Nodes_BeyondTheMost_AreLeftOutWithAFault) {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  std::string nodes;
  for (std::size_t index = 0; index < kMost + 5; ++index)
    nodes += "<Node Name='N" + std::to_string(index) + "'/>";

  const Description description = ReadNodes(nodes);

  EXPECT_EQ(description.GetNodes().size(), kMost);
  EXPECT_EQ(ShowFaults(description), "2: : From here on nothing is read: there are more than 1048576 nodes.\n");
}

TEST(Description_, Properties_BeyondTheMost_CostTheNodeThatBringsThem) {
  // Two thousand elements that each of three thousand entries is given: six million.
  const std::string common = Repeat("<pInvalidator>A</pInvalidator>", 2000);
  std::string entries;
  for (std::size_t index = 0; index < 3000; ++index)
    entries += "<StructEntry Name='S" + std::to_string(index) + "'/>\n";

  const Description description = ReadNodes("<Integer Name='A'/><StructReg>" + common + entries + "</StructReg>");

  EXPECT_NE(ShowNode(description, "S2000"), "");
  EXPECT_EQ(ShowNode(description, description.GetNodes().back().name), "");
  EXPECT_EQ(ShowNode(description, "S2999"), "no such node");
  EXPECT_THAT(ShowFaults(description), HasSubstr("From here on nothing is read: the nodes have more than 4194304"));
}

TEST(Description_, Text_OfMoreTagsThanAnyCameraHas_IsRefused) {
  Description description;

  const KrResult result = TryToRead(WrapNodes(Repeat("<a/>", (std::size_t{1} << 22) + 1)), description);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("larger than what any camera should need"));
}

// The parser takes as much for an attribute, and where none is a sign is enough to be counted as one.
TEST(Description_, Text_OfMoreAttributesThanAnyCameraHas_IsRefused) {
  constexpr std::size_t kMost = std::size_t{1} << 22;
  Description description;
  const auto read = [&description](std::size_t aSigns) {
    const std::string around = WrapNodes("<Integer Name='A'><Description></Description></Integer>");
    const auto before = static_cast<std::size_t>(std::ranges::count(around, '='));
    return TryToRead(
        WrapNodes("<Integer Name='A'><Description>" + Repeat("=", aSigns - before) + "</Description></Integer>"),
        description);
  };

  EXPECT_TRUE(read(kMost).IsOK());
  const KrResult result = read(kMost + 1);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("larger than what any camera should need"));
}

TEST(Description_, Moved_KeepsItsTexts) {
  Description first = ReadNodes("<Integer Name='A'><Value>1</Value></Integer>");

  const Description second = std::move(first);

  EXPECT_EQ(ShowNode(second, "A"), "Value=1");
}

} // namespace
} // namespace krgenicam
