#include "serialmapreader.h"

#include "serialfeaturestext.h"

#include <gmock/gmock.h>

#include <fstream>
#include <ostream>
#include <string>

namespace {

using krserial::FileAccessNames;
using krserial::ParseSerialMaps;
using krserial::RegisterNames;
using krserial::SerialMap;
using krserial::SerialMaps;
using testing::HasSubstr;
using testing::StartsWith;

SerialMaps Parse(const std::string& aText) {
  SerialMaps maps;
  const KrResult result = ParseSerialMaps(aText, "map.yaml", maps);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return maps;
}

std::string GetProblems(const std::string& aText) {
  SerialMaps maps(1);
  const KrResult result = ParseSerialMaps(aText, "map.yaml", maps);
  EXPECT_EQ(result, KrResult::Code::InvalidInput);
  EXPECT_EQ(maps.size(), 1U) << "set although the text is no good";
  return result.GetDescription().ToUtf8();
}

TEST(SerialMapReader, TheMapsThatShip_AreGood) {
  const SerialMaps maps = Parse(std::string(krserial::kSerialFeaturesText));

  ASSERT_EQ(maps.size(), 1U);
  EXPECT_EQ(maps[0].entries[0], KrString("SerialPort0"));
  EXPECT_EQ(maps[0].entries[1], KrString("SerialPort1"));
  EXPECT_FALSE(maps[0].entries[2]);
  EXPECT_TRUE(std::holds_alternative<FileAccessNames>(maps[0].names));
}

TEST(SerialMapReader, FileAccess_HasTheStandardsNamesUnlessOthersAreGiven) {
  const SerialMaps maps = Parse("serialFeatures:\n"
                                "  - name: own file\n"
                                "    way: fileAccess\n"
                                "    ports: {Bulk7: Line}\n"
                                "    fileAccessBuffer: Cust::MyBuffer\n");

  ASSERT_EQ(maps.size(), 1U);
  const auto& names = std::get<FileAccessNames>(maps[0].names);
  EXPECT_EQ(names.fileAccessBuffer, KrString("Cust::MyBuffer"));
  EXPECT_EQ(names.fileSelector, KrString("FileSelector"));
  EXPECT_EQ(names.fileOperationResult, KrString("FileOperationResult"));
  EXPECT_EQ(maps[0].entries[9], KrString("Line"));
}

TEST(SerialMapReader, Registers_HaveWhatIsGiven) {
  const SerialMaps maps = Parse("serialFeatures:\n"
                                "  - name: registers\n"
                                "    way: registers\n"
                                "    ports: {Serial0: A, Serial1: B}\n"
                                "    selector: S\n"
                                "    receiveCommand: RC\n"
                                "    receivedCount: RN\n"
                                "    receiveData: RD\n"
                                "    takenCommand: TC\n"
                                "    transmitRoom: TR\n"
                                "    transmitData: TD\n"
                                "    transmitLength: TL\n"
                                "    transmitCommand: TX\n");

  const auto& names = std::get<RegisterNames>(maps.at(0).names);
  EXPECT_EQ(names.selector, KrString("S"));
  EXPECT_EQ(names.receiveCommand, KrString("RC"));
  EXPECT_EQ(names.receivedCount, KrString("RN"));
  EXPECT_EQ(names.receiveData, KrString("RD"));
  EXPECT_EQ(names.takenCommand, KrString("TC"));
  EXPECT_EQ(names.transmitRoom, KrString("TR"));
  EXPECT_EQ(names.transmitData, KrString("TD"));
  EXPECT_EQ(names.transmitLength, KrString("TL"));
  EXPECT_EQ(names.transmitCommand, KrString("TX"));
}

TEST(SerialMapReader, RegistersWithoutSelector_HaveOnePortWithoutEntry) {
  const SerialMaps maps =
      Parse("serialFeatures:\n"
            "  - {name: one, way: registers, ports: {Serial1: ~}, receivedCount: RN, receiveData: RD,"
            " transmitData: TD}\n");

  EXPECT_EQ(maps.at(0).entries[1], KrString(""));
  EXPECT_FALSE(maps.at(0).entries[0]);
}

TEST(SerialMapReader, AnEmptyList_HasNoMaps) {
  EXPECT_TRUE(Parse("serialFeatures: []\n").empty());
}

struct DamagedRow {
  const char* name;
  const char* text;
  const char* problem; ///< The first line.
};

void PrintTo(const DamagedRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

constexpr DamagedRow kDamaged[] = {
    {"Nothing", "", "map.yaml:1:1: a file of serial features has to be keys with values"},
    {"NoYaml", "serialFeatures: [", "map.yaml:1:"},
    {"NoText", "serialFeatures: \xFF\n", "map.yaml:1:17: the file is no UTF-8 text"},
    {"AList", "- name: x\n", "map.yaml:1:1: a file of serial features has to be keys with values"},
    {"AnotherKey", "serialFeature: []\n", "map.yaml:1:1: a file of serial features needs the key \"serialFeatures\""},
    {"NoList", "serialFeatures: {}\n", "map.yaml:1:17: \"serialFeatures\" has to be a list"},
    {"AMapThatIsAWord", "serialFeatures: [word]\n", "map.yaml:1:18: a map of features has to be keys with values"},
    {"NoWay", "serialFeatures:\n  - {name: x, ports: {Serial0: A}}\n",
     "map.yaml:2:5: a map of features needs the key \"way\""},
    {"AnotherWay", "serialFeatures:\n  - {name: x, ports: {Serial0: A}, way: magic}\n",
     "map.yaml:2:41: \"way\" has to be one of fileAccess, registers; not \"magic\""},
    {"NoName", "serialFeatures:\n  - {way: fileAccess, ports: {Serial0: A}}\n",
     "map.yaml:2:5: a map of features needs the key \"name\""},
    {"NoPorts", "serialFeatures:\n  - {name: x, way: fileAccess}\n",
     "map.yaml:2:5: a map of features needs the key \"ports\""},
    {"EmptyPorts", "serialFeatures:\n  - {name: x, way: fileAccess, ports: {}}\n",
     "map.yaml:2:39: the list of ports needs a port, for example \"Serial0\""},
    {"PortsThatAreAList", "serialFeatures:\n  - {name: x, way: fileAccess, ports: [Serial0]}\n",
     "map.yaml:2:39: the list of ports has to be keys with values"},
    {"AnotherPort", "serialFeatures:\n  - {name: x, way: fileAccess, ports: {Serial0: A, Serial2: B}}\n",
     "map.yaml:2:52: the list of ports has no key \"Serial2\"; is \"Serial0\" meant?"},
    {"AFileWithoutEntry", "serialFeatures:\n  - {name: x, way: fileAccess, ports: {Serial0: ~}}\n",
     "map.yaml:2:49: \"Serial0\" has to be a name of letters"},
    {"AnEntryTwice", "serialFeatures:\n  - {name: x, way: fileAccess, ports: {Serial0: A, Serial1: A}}\n",
     "map.yaml:2:61: the entry \"A\" has a port already"},
    {"ANameWithASpace", "serialFeatures:\n  - {name: x, way: fileAccess, ports: {Serial0: A}, fileSelector: \"a b\"}\n",
     "map.yaml:2:67: \"fileSelector\" has to be a name of letters, digits and underscores"},
    {"ANameSpaceAlone",
     "serialFeatures:\n  - {name: x, way: fileAccess, ports: {Serial0: A}, fileSelector: \"Std::\"}\n",
     "map.yaml:2:67: \"fileSelector\" has to be a name"},
    {"AKeyOfTheOtherWay", "serialFeatures:\n  - {name: x, way: fileAccess, ports: {Serial0: A}, receiveData: R}\n",
     "map.yaml:2:53: a map of features has no key \"receiveData\""},
    {"AnEntryWithoutSelector",
     "serialFeatures:\n  - {name: x, way: registers, ports: {Serial0: A}, receivedCount: C, receiveData: R, "
     "transmitData: T}\n",
     "map.yaml:2:48: \"Serial0\" has to be empty (~) without the key \"selector\""},
    {"TwoPortsWithoutSelector",
     "serialFeatures:\n  - {name: x, way: registers, ports: {Serial0: ~, Serial1: ~}, receivedCount: C, receiveData: "
     "R, "
     "transmitData: T}\n",
     "map.yaml:2:38: without the key \"selector\" there can be one port only"},
    {"NoCount",
     "serialFeatures:\n  - {name: x, way: registers, ports: {Serial0: ~}, receiveData: R, transmitData: T}\n",
     "map.yaml:2:5: a map of features needs the key \"receivedCount\""},
    {"TwoDocuments", "serialFeatures: []\n---\nserialFeatures: []\n", "map.yaml:2:1: a second document begins"},
    {"AKeyTwice", "serialFeatures: []\nserialFeatures: []\n",
     "map.yaml:2:1: the key \"serialFeatures\" is there twice"},
};

class DamagedMap : public testing::TestWithParam<DamagedRow> {};

TEST_P(DamagedMap, IsRefusedWithItsPlace) {
  EXPECT_THAT(GetProblems(GetParam().text), StartsWith(GetParam().problem));
}

INSTANTIATE_TEST_SUITE_P(SerialMapReader, DamagedMap, testing::ValuesIn(kDamaged),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(SerialMapReader, AllMistakes_AreTold) {
  const std::string problems = GetProblems("serialFeatures:\n"
                                           "  - name: one\n"
                                           "    way: fileAccess\n"
                                           "    ports: {Serial0: A}\n"
                                           "    fileSelector: [x]\n"
                                           "    colour: red\n"
                                           "    size: large\n"
                                           "  - name: two\n"
                                           "    way: slow\n"
                                           "    ports: {Serial0: A}\n");

  EXPECT_THAT(problems, StartsWith("map.yaml:5:19: \"fileSelector\""));
  EXPECT_THAT(problems, HasSubstr("\nmap.yaml:6:5: a map of features has no key \"colour\""));
  EXPECT_THAT(problems, HasSubstr("\nmap.yaml:7:5: a map of features has no key \"size\""));
  EXPECT_THAT(problems, HasSubstr("\nmap.yaml:9:10: \"way\""));
  EXPECT_EQ(std::count(problems.begin(), problems.end(), '\n'), 3);
}

TEST(SerialMapReader, MistakesBesideAnUnknownWay_AreTold) {
  const std::string problems = GetProblems("serialFeatures:\n"
                                           "  - name: one\n"
                                           "    way: register\n"
                                           "    selector: [x]\n"
                                           "    receivedCount: RN\n"
                                           "    fileOpenMode: FM\n"
                                           "    transmitDatum: TD\n"
                                           "    ports: {Serial0: A, Serail1: ~}\n");

  EXPECT_THAT(problems, HasSubstr("map.yaml:3:10: \"way\""));
  EXPECT_THAT(problems, HasSubstr("map.yaml:4:15: \"selector\""));
  EXPECT_THAT(problems, HasSubstr("map.yaml:7:5: a map of features has no key \"transmitDatum\"; is \"transmitData\""));
  EXPECT_THAT(problems, HasSubstr("map.yaml:8:25: the list of ports has no key \"Serail1\"; is \"Serial1\" meant?"));
  EXPECT_EQ(std::count(problems.begin(), problems.end(), '\n'), 3);
}

TEST(SerialMapReader, KeyThatComesNearNone_IsToldWithoutAGuess) {
  EXPECT_EQ(GetProblems("serialFeatures: []\nextra: 1\n"),
            "map.yaml:2:1: a file of serial features has no key \"extra\"");
}

TEST(SerialMapReader, ManyMistakes_AreToldUpToALimit) {
  std::string text = "serialFeatures:\n";
  for (int i = 0; i < 60; ++i)
    text += "  - {name: x, colour: red, way: slow}\n";

  const std::string problems = GetProblems(text);

  EXPECT_EQ(std::count(problems.begin(), problems.end(), '\n'), 100);
  EXPECT_TRUE(problems.ends_with(": and more"));
}

TEST(SerialMapReader, MapsOfTheDocument_AreTaken) {
  std::ifstream file(KR_SERIAL_DOCUMENT);
  std::string block;
  bool isInside = false;
  int blocks = 0;

  for (std::string line; std::getline(file, line);) {
    if (isInside && line == "```") {
      EXPECT_FALSE(Parse(block).empty()) << block;
      ++blocks;
    } else if (isInside) {
      block += line + "\n";
    }
    isInside = line == "```yaml" || (isInside && line != "```");
    block = isInside ? block : "";
  }

  EXPECT_EQ(blocks, 2);
}

TEST(SerialMapReader, TooManyMaps_AreRefused) {
  std::string text = "serialFeatures:\n";
  for (int i = 0; i < 65; ++i)
    text += "  - {name: x, way: fileAccess, ports: {Serial0: A}}\n";

  EXPECT_THAT(GetProblems(text), StartsWith("map.yaml:66:5: \"serialFeatures\" has more than 64 items"));
}

} // namespace
