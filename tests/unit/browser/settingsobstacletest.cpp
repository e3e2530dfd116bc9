#include "logic/browser/settingsobstacle.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace krgui {
namespace {

using Steps = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kNodes = R"(
<Integer Name="Width"><Value>64</Value><Min>16</Min><Max>640</Max></Integer>
<Float Name="Gain"><Value>1</Value><Min>0</Min><Max>24</Max></Float>
<Boolean Name="Reverse"><Value>false</Value></Boolean>
<Enumeration Name="Channel"><EnumEntry Name="Red"><Value>0</Value></EnumEntry>
  <EnumEntry Name="Blue"><Value>1</Value></EnumEntry>
  <EnumEntry Name="Deep"><pIsAvailable>Zero</pIsAvailable><Value>2</Value></EnumEntry>
  <Value>0</Value><pSelected>Level</pSelected></Enumeration>
<Integer Name="Level"><Value>1</Value><Max>9</Max></Integer>
<Integer Name="Zero"><Value>0</Value></Integer>
<StringReg Name="Label"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
<Register Name="Bytes"><Address>8</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
<Command Name="Run"><pValue>Zero</pValue><CommandValue>1</CommandValue></Command>
)";

const ComparedFeatures kFeatures = {
    {"Width", {.type = KrGenType::Integer}},
    {"Gain", {.type = KrGenType::Float, .limit = "Locked by Zero (1)."}},
    {"Channel", {.type = KrGenType::Enumeration}},
    {"Level", {.type = KrGenType::Integer, .selectors = {"Channel"}}},
};

class SettingsObstacle : public testing::Test {
protected:
  std::vector<std::string> Note(const Steps& aFile) {
    KrGenSettings file;
    for (const auto& [name, value] : aFile)
      file.Add(name, value);
    SettingsDifference difference = CompareSettings(file, {}, kFeatures);
    NoteObstacles(difference, file, *camera.array, kFeatures, mProgress);
    std::vector<std::string> notes;
    for (const ComparedSetting& setting : difference.settings)
      notes.push_back(setting.name.ToUtf8() + "[" + setting.positions.ToUtf8() + "] " + setting.note.ToUtf8());
    return notes;
  }

  DescribedCamera camera{kNodes};
  KrGenProgress mProgress = [](std::size_t, std::size_t) { return true; };
};

TEST_F(SettingsObstacle, Values_ThatCannotBeSet_HaveTheReason) {
  constexpr const char* kNoEntry = "There is no entry of this name.";
  struct {
    const char* name;
    const char* value;
    const char* text;
  } constexpr kRows[] = {
      {"Width", "abc", "The value is no whole number of 64 bits."},
      {"Width", "", "The value is no whole number of 64 bits."},
      {"Width", "nan", "The value is no whole number of 64 bits."},
      {"Width", "17.5", "The value is no whole number of 64 bits."},
      {"Width", "99999999999999999999", "The value is no whole number of 64 bits."},
      {"Width", "15", "It is below the minimum of the moment."},
      {"Width", "0x281", "It is above the maximum of the moment."},
      {"Width", "0x280", ""},
      {"Width", " 16 ", ""},
      {"Width", "1e2", ""},
      {"Gain", "nan", "The value is no number."},
      {"Gain", "loud", "The value is no number."},
      {"Gain", "inf", "It is above the maximum of the moment."},
      {"Gain", "-0.1", "It is below the minimum of the moment."},
      {"Gain", "0x10", ""},
      {"Gain", "+1.5", ""},
      {"Reverse", "yes", "The value is none of 1, 0, true and false."},
      {"Reverse", "TRUE", ""},
      {"Channel", "Purple", kNoEntry},
      {"Channel", "red", kNoEntry},
      {"Channel", "7", "There is no entry of this number."},
      {"Channel", "Deep", "The entry is not available at the moment."},
      {"Channel", "1", ""},
      {"Channel", "Blue", ""},
      {"Label", "12345", "It is longer than 4 bytes, the most that is taken."},
      {"Label", "1234", ""},
      {"Bytes", "0x0g", "The value is not made of two hexadecimal digits for each byte."},
      {"Bytes", "0af", "The value is not made of two hexadecimal digits for each byte."},
      {"Bytes", "0x0aFF", ""},
      {"Run", "1", "It has no value that can be set."},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(FindObstacle(*camera.array->Get(row.name), row.value, false), row.text) << row.name << ' ' << row.value;
}

TEST_F(SettingsObstacle, LimitsOfWhatIsSelected_AreNotJudged) {
  EXPECT_EQ(FindObstacle(*camera.array->Get("Level"), "99", true), "");
  EXPECT_EQ(FindObstacle(*camera.array->Get("Level"), "wide", true), "The value is no whole number of 64 bits.");
}

TEST_F(SettingsObstacle, Notes_AreOfTheValueAndOfItsSelectorsPositions) {
  EXPECT_THAT(Note({{"Width", "1"},
                    {"Channel", "Purple"},
                    {"Level", "2"},
                    {"Channel", "Blue"},
                    {"Level", "x"},
                    {"Missing", "1"}}),
              testing::ElementsAre("Width[] It is below the minimum of the moment.",
                                   "Level[Channel=Purple] Channel=Purple: There is no entry of this name.",
                                   "Channel[] ", "Level[Channel=Blue] The value is no whole number of 64 bits.",
                                   "Missing[] This device has no such feature."));
}

TEST_F(SettingsObstacle, LockedFeature_KeepsItsLockInTheNote) {
  EXPECT_THAT(Note({{"Gain", "nan"}}), testing::ElementsAre("Gain[] Locked by Zero (1). The value is no number."));
}

TEST_F(SettingsObstacle, ProgressThatEndsIt_LeavesTheRestWithout) {
  mProgress = [](std::size_t, std::size_t) { return false; };

  EXPECT_THAT(Note({{"Width", "1"}}), testing::ElementsAre("Width[] "));
}

TEST_F(SettingsObstacle, DeviceThatDoesNotAnswer_IsNone) {
  camera.array->Close();

  EXPECT_EQ(FindObstacle(*camera.array->Get("Width"), "1", false), "");
}

} // namespace
} // namespace krgui
