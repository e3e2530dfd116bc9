#include "settingscommands.h"

#include "describedcamera.h"
#include "portwatch.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kRegistersCount = 30;

// Thirty registers of four bytes to save: Value0 at address 0, Value1 at 4 and so on.
std::string MakeRegisters() {
  std::string nodes;
  for (int i = 0; i < kRegistersCount; ++i)
    nodes += "<IntReg Name=\"Value" + std::to_string(i) + "\"><Streamable>Yes</Streamable><Address>" +
             std::to_string(4 * i) + R"(</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
      <Endianess>LittleEndian</Endianess></IntReg>)";
  return nodes;
}

class SettingsOf : public testing::Test {
protected:
  SettingsOf() { Open(MakeRegisters()); }

  void Open(const std::string& aNodes) {
    mArray.reset();
    mWatch.emplace(mPort);
    KrGenDescription description;
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(aNodes), "test", description).IsOK());
    ASSERT_TRUE(KrGenParameterArray::Open(description, *mWatch, {}, mArray).IsOK());
  }
  int Save() {
    const CommandLine line = {.verb = Verb::Save, .file = mPath, .force = true};
    return SaveSettings(
        *mArray, [this] { return mWatch->GetLoss(); }, line, mOut, mErrors);
  }
  int Load(const std::string& aLines) {
    KrGenSettings settings;
    EXPECT_TRUE(settings.FromText("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n" + aLines).IsOK());
    return LoadSettings(*mArray, settings, mOut, mErrors);
  }
  // Each access from an address on ends so.
  void FailFrom(std::uint64_t aAddress, KrResult::Code aCode) {
    mPort.SetFault([aAddress, aCode](const RegisterAccessRecord& aRecord) {
      return aRecord.address >= aAddress ? KrResult(aCode, "Nothing came.") : KrResult();
    });
  }
  std::size_t CountErrorLines() const {
    const std::string text = mErrors.str();
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  KrGenMemoryPort mMemory;
  RecordingPort mPort{mMemory};
  std::optional<PortWatch> mWatch;
  std::unique_ptr<KrGenParameterArray> mArray;
  TemporaryFolder mFolder;
  const std::string mPath = mFolder.GetFile("settings.txt");
  std::ostringstream mOut;
  std::ostringstream mErrors;
};

TEST_F(SettingsOf, DeviceThatAnswers_ReplaceTheFile) {
  TemporaryFolder::WriteFile(mPath, "good");

  EXPECT_EQ(Save(), 0) << mErrors.str();

  EXPECT_EQ(mOut.str(), "settings=30 problems=0 file=" + mPath + "\n");
  EXPECT_THAT(TemporaryFolder::ReadFile(mPath), HasSubstr("\nValue29\t0\n"));
}

TEST_F(SettingsOf, DeviceThatFallsSilent_LeaveTheFileAsItIs) {
  for (const KrResult::Code code :
       {KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost, KrResult::Code::Aborted}) {
    Open(MakeRegisters());
    TemporaryFolder::WriteFile(mPath, "good");
    FailFrom(4, code);

    EXPECT_EQ(Save(), 1) << KrResult(code).GetCodeString().CStr();

    EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "good");
    EXPECT_EQ(mOut.str(), "");
    EXPECT_THAT(mErrors.str(), EndsWith("krtool: the settings were not saved, because the device did not answer all "
                                        "along.\n"));
  }
}

TEST_F(SettingsOf, DeviceThatFallsSilentAfterARefusal_LeaveTheFileAsItIs) {
  TemporaryFolder::WriteFile(mPath, "good");
  mPort.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address == 0    ? KrResult(KrResult::Code::ProtocolError, "Refused.")
           : aRecord.address == 40 ? KrResult(KrResult::Code::TimeLimitExceeded, "Nothing came.")
                                   : KrResult();
  });

  EXPECT_EQ(Save(), 1);

  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "good");
}

TEST_F(SettingsOf, DeviceThatRefusesSome_AreSavedWithoutThem) {
  FailFrom(4 * (kRegistersCount - 1), KrResult::Code::ProtocolError);

  EXPECT_EQ(Save(), 1);

  EXPECT_EQ(mOut.str(), "settings=29 problems=1 file=" + mPath + "\n");
  EXPECT_THAT(TemporaryFolder::ReadFile(mPath), AllOf(HasSubstr("\nValue28\t0\n"), Not(HasSubstr("Value29"))));
}

TEST_F(SettingsOf, DeviceWithManyProblems_AreTwentyLinesAndACount) {
  FailFrom(0, KrResult::Code::ProtocolError);

  EXPECT_EQ(Save(), 1);

  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("krtool: Value19 "), Not(HasSubstr("krtool: Value20 ")),
                                   HasSubstr("\nkrtool: and 10 more.\n")));
}

TEST_F(SettingsOf, FileOfManyUnknownNames_AreTwentyLinesAndACount) {
  std::string lines;
  for (int i = 0; i < kRegistersCount; ++i)
    lines += "Nobody" + std::to_string(i) + "\t1\n";

  EXPECT_EQ(Load(lines), 1);

  EXPECT_EQ(CountErrorLines(), kMostProblems + 1);
  EXPECT_THAT(mErrors.str(), EndsWith("\nkrtool: and 10 more.\n"));
  EXPECT_EQ(mOut.str(), "settings=30 problems=30\n");
}

TEST_F(SettingsOf, DescriptionThatMarksNothing_MakeNoFile) {
  Open("<Integer Name=\"Width\"><Value>1</Value></Integer>");

  EXPECT_EQ(Save(), 1);

  EXPECT_THAT(mErrors.str(), HasSubstr("nothing was saved: the description marks no feature"));
  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SettingsOf, FileWithAStepThatIsSuperseded_AreCountedAsTheFileHasThem) {
  EXPECT_EQ(Load("Value0\t1\nValue0\t2\nNobody\t1\n"), 1);

  EXPECT_EQ(mOut.str(), "settings=3 problems=1\n");
}

TEST_F(SettingsOf, FileOfAnotherModel_ArePointedOutAndSet) {
  EXPECT_EQ(Load("# Device = Vendor Other\nValue0\t7\n"), 0);

  EXPECT_EQ(mErrors.str(), "krtool: The settings are those of another model: of \"Vendor Other\"; the device is "
                           "\"Vendor Model\".\n");
  EXPECT_EQ(mOut.str(), "settings=1 problems=0\n");
}

TEST_F(SettingsOf, FileOfTheSameModelOrOfNone_AreSetSilently) {
  EXPECT_EQ(Load("# Device = Vendor Model\nValue0\t7\n"), 0);
  EXPECT_EQ(Load("Value0\t8\n"), 0);

  EXPECT_EQ(mErrors.str(), "");
}

} // namespace
} // namespace krtool
