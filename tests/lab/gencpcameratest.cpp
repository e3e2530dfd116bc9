// What the GenCP camera of the lab answers to commands: registers, refusals, descriptions.

#include "gencpfixture.h"

#include "krgenicam/krgendescription.h"
#include "krgenicam/krgenparameterarray.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

using testing::HasSubstr;

namespace {

// The registers behind the line, as a parameter array takes them.
class GenCPPort final : public IKrRegisterPort {
public:
  using Access = std::function<bool(std::uint64_t aAddress, std::string& aBytes)>;

  GenCPPort(Access aRead, Access aWrite) : mRead(std::move(aRead)), mWrite(std::move(aWrite)) {}
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t,
                const std::stop_token&) override {
    std::string bytes(aLength, '\0');
    if (!mRead(aAddress, bytes))
      return KrResult::Code::ProtocolError;
    std::ranges::copy(bytes, static_cast<char*>(aData));
    return {};
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t,
                 const std::stop_token&) override {
    std::string bytes(static_cast<const char*>(aData), aLength);
    return mWrite(aAddress, bytes) ? KrResult() : KrResult(KrResult::Code::ProtocolError);
  }

private:
  const Access mRead;
  const Access mWrite;
};

} // namespace

TEST_F(GenCPTest, ReadMemory_OfTheVersion_AnswersAsTheStandardHasIt) {
  SendHex(kReadVersion);

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kVersion));
}

TEST_F(GenCPTest, ReadMemory_OfAnOddNumberOfBytes_SumsThemWithAZero) {
  SendHex(kReadModel);

  EXPECT_EQ(ReceiveHex(21), Hex(kModel));
}

TEST_F(GenCPTest, WriteMemory_OfAFeature_SaysHowMuchWasWritten) {
  SendHex(kWriteWidth);

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kWidthWritten));
  EXPECT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 512u);
}

TEST_F(GenCPTest, Commands_ThatCannotBeDone_AreRefusedWithTheStandardsStatus) {
  struct Row {
    const char* name;
    std::uint16_t id;
    std::uint16_t flags;
    std::string data;
    std::uint16_t status;
  };
  const std::string width = MakeNumber(0x10008, 8);
  const Row kRows[] = {
      {"unknown command", 0x0806, 0x4000, "", 0x8001},
      {"event, which the host does not send", 0x0C00, 0x4000, "", 0x8001},
      {"reading nothing", kReadMemory, 0x4000, MakeNumber(0, 12), 0x8002},
      {"reading more than a packet holds", kReadMemory, 0x4000, MakeNumber(0x100000, 8) + MakeNumber(1009, 4), 0x8002},
      {"reading with the reserved half set", kReadMemory, 0x4000, MakeNumber(0, 8) + MakeNumber(0x10004, 4), 0x8002},
      {"reading where there is nothing", kReadMemory, 0x4000, MakeNumber(0x9000, 8) + MakeNumber(4, 4), 0x8003},
      {"reading beyond the last address", kReadMemory, 0x4000, MakeNumber(~std::uint64_t{0}, 8) + MakeNumber(4, 4),
       0x8003},
      {"reading what is only written", kReadMemory, 0x4000, MakeNumber(0x1F8, 8) + MakeNumber(4, 4), 0x8006},
      {"reading without a length", kReadMemory, 0x4000, MakeNumber(0, 8), 0x800E},
      {"writing what is only read", kWriteMemory, 0x4000, MakeNumber(0, 8) + MakeNumber(1, 4), 0x8004},
      {"writing where there is nothing", kWriteMemory, 0x4000, MakeNumber(0x9000, 8) + MakeNumber(1, 4), 0x8003},
      {"writing within a register", kWriteMemory, 0x4000, MakeNumber(0x1000A, 8) + MakeNumber(1, 2), 0x8002},
      {"writing half a number", kWriteMemory, 0x4000, width + MakeNumber(1, 2), 0x8002},
      {"writing a width between two steps", kWriteMemory, 0x4000, width + MakeNumber(510, 4), 0x8002},
      {"writing a width beyond the sensor", kWriteMemory, 0x4000, width + MakeNumber(644, 4), 0x8002},
      {"writing nothing", kWriteMemory, 0x4000, width, 0x800E},
      {"an unknown speed", kWriteMemory, 0x4000, MakeNumber(0x20004, 8) + MakeNumber(3, 4), 0x8002},
      {"flags that mean nothing", kReadMemory, 0x4001, MakeNumber(0, 8) + MakeNumber(4, 4), 0x800E},
  };

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);

    EXPECT_EQ(Ask(row.id, row.data, row.flags), row.status);
    EXPECT_EQ(mData, "");
  }
}

TEST_F(GenCPTest, WriteMemory_AsRequestZero_IsRefused) {
  Send(MakeCommand(0x4000, kWriteMemory, 0, MakeNumber(0x10008, 8) + MakeNumber(512, 4)));
  mRequest = 0;

  EXPECT_EQ(ReceiveAnswer(0x0803), 0x8002);
}

TEST_F(GenCPTest, Command_ThatAsksForNoAnswer_IsDoneInSilence) {
  Send(MakeCommand(0, kWriteMemory, 7, MakeNumber(0x10008, 8) + MakeNumber(512, 4)));

  EXPECT_EQ(AskRead(0x10008, 4), 0) << "the first answer is to the second command";
  EXPECT_EQ(GetNumber(mData), 512u);
}

TEST_F(GenCPTest, Command_SentAgain_IsAnsweredAnewAndNotDoneAnew) {
  SendHex(kWriteWidth);
  ASSERT_EQ(ReceiveHex(kAnswerBytes), Hex(kWidthWritten));

  // The same request with another value: what was done is told, and nothing done.
  Send(MakeCommand(0xC000, kWriteMemory, 2, MakeNumber(0x10008, 8) + MakeNumber(256, 4)));

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kWidthWritten));
  EXPECT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 512u);
}

TEST_F(GenCPTest, Manifest_OfThePlainAndTheZippedDescription_HoldsThemWhole) {
  ASSERT_EQ(AskRead(0x1D0, 8), 0);
  const std::uint64_t table = GetNumber(mData);
  ASSERT_EQ(AskRead(table, 8 + 2 * 64), 0);
  const std::string manifest = mData;
  EXPECT_EQ(GetNumber(manifest.substr(0, 8)), 2u);

  std::string texts[2];
  for (std::size_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(i);
    const std::string entry = manifest.substr(8 + 64 * i, 64);
    EXPECT_EQ(ToHex(entry.substr(0, 8)), Hex(i == 0 ? "0100 0000 0101 0000" : "0101 0000 0101 0400"));
    const std::string stored = ReadAll(GetNumber(entry.substr(8, 8)), GetNumber(entry.substr(16, 8)));
    EXPECT_EQ(stored.substr(0, 2), i == 0 ? "<?" : "PK");
    KrGenDescription description;
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(stored, "camera", description).IsOK());
    texts[i] = description.GetText();
  }

  EXPECT_THAT(texts[0], HasSubstr("MinorVersion=\"0\""));
  EXPECT_THAT(texts[1], HasSubstr("MajorVersion=\"1\" MinorVersion=\"1\""));
  for (const std::string& text : texts)
    EXPECT_THAT(text, HasSubstr("<Float Name=\"ExposureTime\""));
}

TEST_F(GenCPTest, Description_OverTheLine_GivesFeaturesThatWork) {
  GenCPPort port(
      [this](std::uint64_t aAddress, std::string& aBytes) {
        const std::string read = ReadAll(aAddress, aBytes.size());
        const bool isWhole = read.size() == aBytes.size();
        aBytes = read;
        return isWhole;
      },
      [this](std::uint64_t aAddress, std::string& aBytes) { return AskWrite(aAddress, aBytes) == 0; });
  KrGenDescription description;
  ASSERT_TRUE(KrGenDescription::ReadFromDevice(port, KrGenBootstrap::GenCP, description).IsOK());
  std::unique_ptr<KrGenParameterArray> array;
  const KrResult opened = KrGenParameterArray::Open(description, port, {}, array);
  ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  KrStringList faults;
  ASSERT_TRUE(array->GetFaults(faults).IsOK());
  EXPECT_TRUE(faults.IsEmpty()) << faults.begin()->CStr();

  KrString model;
  EXPECT_TRUE(array->GetString("DeviceModelName")->GetValue(model).IsOK());
  EXPECT_EQ(model, "Model");
  EXPECT_TRUE(array->GetFloat("Gain")->SetValue(12).IsOK());
  EXPECT_FALSE(array->GetInteger("OffsetX")->SetValue(64).IsOK()) << "the width takes the whole sensor";
  EXPECT_TRUE(array->GetInteger("Width")->SetValue(320).IsOK());
  EXPECT_TRUE(array->GetInteger("OffsetX")->SetValue(64).IsOK());
  EXPECT_TRUE(array->GetEnum("UserSetSelector")->SetEntry("UserSet0").IsOK());
  EXPECT_TRUE(array->GetCommand("UserSetSave")->Execute().IsOK());
  EXPECT_TRUE(array->GetEnum("UserSetSelector")->SetEntry("Default").IsOK());
  EXPECT_FALSE(array->GetCommand("UserSetSave")->Execute().IsOK()) << "the camera's own set stays as it is";
  EXPECT_TRUE(array->GetCommand("UserSetLoad")->Execute().IsOK());
  ASSERT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 640u);
  EXPECT_TRUE(array->GetEnum("UserSetSelector")->SetEntry("UserSet0").IsOK());
  EXPECT_TRUE(array->GetCommand("UserSetLoad")->Execute().IsOK());
  ASSERT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 320u);
}

TEST_F(GenCPTest, Temperature_AsTimePasses_Changes) {
  ASSERT_EQ(AskRead(0x10078, 8), 0);
  const std::string before = mData;

  AdvanceMs(1000);

  ASSERT_EQ(AskRead(0x10078, 8), 0);
  EXPECT_NE(ToHex(mData), ToHex(before));
}
