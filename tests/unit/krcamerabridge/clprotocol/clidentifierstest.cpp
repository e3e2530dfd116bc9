#include "clprotocol/clidentifiers.h"

#include <gmock/gmock.h>

namespace krcamerabridge {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CLFullID, ItsParts_AreDirectoryFileAndShortForm) {
  const auto id = ParseCLFullID("/opt/cl/Linux64_x64#libmaker.so#Maker#Family#Model");

  ASSERT_TRUE(id);
  EXPECT_EQ(id->directory, "/opt/cl/Linux64_x64");
  EXPECT_EQ(id->fileName, "libmaker.so");
  EXPECT_EQ(id->shortID, "Maker#Family#Model");
  EXPECT_EQ(MakeCLFullID(*id), "/opt/cl/Linux64_x64#libmaker.so#Maker#Family#Model");
}

TEST(CLFullID, ADirectoryWithTheSeparator_IsTakenWhole) {
  const auto id = ParseCLFullID("/opt/C#/libold.so#sub#libmaker.so#Maker");

  ASSERT_TRUE(id);
  EXPECT_EQ(id->directory, "/opt/C#/libold.so#sub");
  EXPECT_EQ(id->fileName, "libmaker.so");
}

TEST(CLFullID, WhatIsNone_IsRefused) {
  for (const char* text : {"", "#", "Maker#Family", "/opt#maker.so#Maker", "/opt#libmaker.so", "/opt#libmaker.so#",
                           "/opt#libmaker.so#A#B#C#D#E#F", "/opt#libmaker.so#A##B", "libmaker.so#Maker"})
    EXPECT_FALSE(ParseCLFullID(text)) << text;
}

TEST(CLFullID, NamesOfMoreThanAThousandBytes_AreRefused) {
  const std::string most(1000, 'x');

  EXPECT_TRUE(ParseCLFullID("/opt#libmaker.so#" + most));
  EXPECT_FALSE(ParseCLFullID("/opt#libmaker.so#" + most + "x"));
  EXPECT_FALSE(IsCLShortID(most.substr(0, 500) + "#" + most.substr(0, 500)));
}

TEST(CLTemplate, Matches_WholeNamesAlone) {
  EXPECT_TRUE(MatchesCLTemplate("Maker#Family#Model", "Maker"));
  EXPECT_TRUE(MatchesCLTemplate("Maker#Family#Model", "Maker#Family"));
  EXPECT_TRUE(MatchesCLTemplate("Maker#Family", "Maker#Family"));
  EXPECT_FALSE(MatchesCLTemplate("Maker#FamilyTwo", "Maker#Family"));
  EXPECT_FALSE(MatchesCLTemplate("Maker", "Maker#Family"));
  EXPECT_FALSE(MatchesCLTemplate("Other#Family", "Maker"));
}

TEST(CLXMLID, ItsParts_AreSchemaDeviceAndVersion) {
  const auto id = ParseCLXMLID("SchemaVersion.1.1@Maker#Family@XMLVersion.1.2.3");

  ASSERT_TRUE(id);
  EXPECT_EQ(id->schemaMajor, 1u);
  EXPECT_EQ(id->schemaMinor, 1u);
  EXPECT_EQ(id->device, "Maker#Family");
  EXPECT_THAT(id->versions, ElementsAre(1u, 2u, 3u));
}

TEST(CLXMLID, WhatIsNone_IsRefused) {
  for (const char* text :
       {"", "@@", "SchemaVersion.1@Maker@XMLVersion.1.0.0", "SchemaVersion.1.1@Maker@XMLVersion.1.0",
        "SchemaVersion.1.1@@XMLVersion.1.0.0", "SchemaVersion.1.x@Maker@XMLVersion.1.0.0",
        "SchemaVersion.1.-1@Maker@XMLVersion.1.0.0", "SchemaVersion.1.99999999999@Maker@XMLVersion.1.0.0",
        "SchemaVersion.1.1@Maker@XMLVersion.1.0.0@", "schemaVersion.1.1@Maker@XMLVersion.1.0.0"})
    EXPECT_FALSE(ParseCLXMLID(text)) << text;
}

TEST(CLXMLIDs, AreSortedBySchemaThenDeviceThenVersion) {
  const std::vector<std::string> sorted = {"SchemaVersion.1.1@Maker#Family#Model@XMLVersion.1.0.0",
                                           "SchemaVersion.1.1@Maker#Family@XMLVersion.10.0.0",
                                           "SchemaVersion.1.1@Maker#Family@XMLVersion.9.10.0",
                                           "SchemaVersion.1.1@Maker#Family@XMLVersion.9.9.11",
                                           "SchemaVersion.1.1@Maker#Family@XMLVersion.9.9.2",
                                           "SchemaVersion.1.0@Maker#Family#Model@XMLVersion.99.0.0"};

  EXPECT_EQ(SelectCLXMLIDs({sorted.rbegin(), sorted.rend()}, "Maker#Family#Model#_1_0"), sorted);
}

TEST(CLXMLIDs, OfOtherCamerasOrUnknownSchemasOrTwice_AreLeftOut) {
  EXPECT_THAT(
      SelectCLXMLIDs({"SchemaVersion.1.1@Maker#Family@XMLVersion.1.0.0", "nonsense",
                      "SchemaVersion.1.2@Maker#Family@XMLVersion.1.0.0",
                      "SchemaVersion.2.0@Maker#Family@XMLVersion.1.0.0", "SchemaVersion.1.1@Maker#Fam@XMLVersion.1.0.0",
                      "SchemaVersion.1.1@Maker#Family#Model#Two@XMLVersion.1.0.0",
                      "SchemaVersion.1.1@Maker#Family@XMLVersion.1.0.0"},
                     "Maker#Family#Model"),
      ElementsAre("SchemaVersion.1.1@Maker#Family@XMLVersion.1.0.0"));
}

TEST(CLList, IsPartedByTabAndEndsAtItsZero) {
  EXPECT_THAT(SplitCLList(std::string_view("A\tB\t\tC\0D", 8)), ElementsAre("A", "B", "C"));
  EXPECT_THAT(SplitCLList(""), IsEmpty());
  EXPECT_EQ(SplitCLList([] {
              std::string texts;
              for (int i = 0; i < 5000; ++i)
                texts += "x\t";
              return texts;
            }())
                .size(),
            1000u);
}

TEST(CLWords, AreOneLineOfALimitedLength) {
  EXPECT_EQ(MakeCLWords(std::string_view("one\ntwo\x1b[31m\n\0three", 20)), "one two [31m");
  EXPECT_EQ(MakeCLWords(std::string(5000, 'x')).size(), 1000u);
}

} // namespace
} // namespace krcamerabridge
