// The GenCP camera of the lab, asked with packets that were worked out by hand from the standard (GenCP 1.3.1).

#include "clcamerafixture.h"

#include "krgenicam/krgendescription.h"
#include "krgenicam/krgenparameterarray.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <ostream>

using testing::HasSubstr;

namespace {

// Reading 4 bytes from 0, the version, as request 0; and GenCP 1.3 as the answer.
constexpr const char* kReadVersion =
    "0100 b7f3 b7ef 0000 4000 0800 000c 0000 0000 0000 0000 0000 0000 0004";
constexpr const char* kVersion = "0100 f7fa f7f6 0000 0000 0801 0004 0000 0001 0003";
// Reading 5 bytes of the model's name, as request 1: an odd number of bytes.
constexpr const char* kReadModel = "0100 b7f2 b7a9 0000 4000 0800 000c 0001 0000 0000 0000 0044 0000 0005";
constexpr const char* kModel = "0100 f7f8 da23 0000 0000 0801 0005 0001 4d6f 6465 6c";
// Writing 512 to Width, as request 2; 4 bytes were written.
constexpr const char* kWriteWidth = "0100 b7ef b5e6 0000 4000 0802 000c 0002 0000 0000 0001 0008 0000 0200";
constexpr const char* kWidthWritten = "0100 f7f6 f7f2 0000 0000 0803 0004 0002 0000 0004";
// Writing the bit of 115200 baud to the current speed, as request 3.
constexpr const char* kWriteRate = "0100 b7ee b7d8 0000 4000 0802 000c 0003 0000 0000 0002 0004 0000 0010";
constexpr const char* kRateWritten = "0100 f7f5 f7f1 0000 0000 0803 0004 0003 0000 0004";
// The answer takes half a second, as the pending acknowledge says, with a second to spare.
constexpr const char* kPending = "0100 f7f4 f218 0000 0000 0805 0004 0002 0000 05dc";

constexpr std::size_t kAnswerBytes = 20;

constexpr std::uint16_t kReadMemory = 0x0800;
constexpr std::uint16_t kWriteMemory = 0x0802;

std::string MakeWord(std::uint64_t aWord) {
  return {static_cast<char>(aWord >> 8), static_cast<char>(aWord)};
}

std::string MakeNumber(std::uint64_t aNumber, int aBytes) {
  std::string bytes;
  for (int shift = 8 * aBytes - 8; shift >= 0; shift -= 8)
    bytes += static_cast<char>(aNumber >> shift);
  return bytes;
}

std::uint64_t GetNumber(std::string_view aBytes) {
  std::uint64_t number = 0;
  for (const char byte : aBytes)
    number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

// RFC 768's sum, as GenCP takes it.
std::string MakeSum(std::string aBytes) {
  aBytes += std::string(aBytes.size() % 2, '\0');
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < aBytes.size(); i += 2)
    sum += GetNumber(std::string_view(aBytes).substr(i, 2));
  return MakeWord(0xFFFF - (sum == 0 ? 0 : (sum - 1) % 0xFFFF + 1));
}

std::string MakeCommand(std::uint16_t aFlags, std::uint16_t aID, std::uint16_t aRequest, const std::string& aData) {
  const std::string header = MakeWord(aFlags) + MakeWord(aID) + MakeWord(aData.size()) + MakeWord(aRequest);
  const std::string channel(2, '\0');
  return "\x01" + std::string(1, '\0') + MakeSum(channel + header) + MakeSum(channel + header + aData) + channel +
         header + aData;
}

class GenCPTest : public CLCameraTest {
protected:
  explicit GenCPTest(const std::string& aCameraKeys = "protocol: GenCP", const std::string& aPortKeys = {},
                     const std::string& aGrabber = "{sources: 2}")
      : CLCameraTest(MakeGrabberLab(aCameraKeys, aPortKeys, aGrabber)) {}

  /// Sends a command and gives the answer's status; its data go to mData.
  std::uint16_t Ask(std::uint16_t aID, const std::string& aData, std::uint16_t aFlags = 0x4000) {
    mRequest = static_cast<std::uint16_t>(mRequest % 0xFFFF + 1);
    Send(MakeCommand(aFlags, aID, mRequest, aData));
    return ReceiveAnswer(static_cast<std::uint16_t>(aID | 1));
  }
  std::uint16_t ReceiveAnswer(std::uint16_t aID) {
    const std::string header = Receive(16);
    if (header.size() < 16)
      return 0xFFFF;
    mData = Receive(GetNumber(header.substr(12, 2)));
    EXPECT_EQ(ToHex(header.substr(0, 2)), "01 00");
    EXPECT_EQ(ToHex(header.substr(2, 2)), ToHex(MakeSum(header.substr(6))));
    EXPECT_EQ(ToHex(header.substr(4, 2)), ToHex(MakeSum(header.substr(6) + mData)));
    EXPECT_EQ(GetNumber(header.substr(10, 2)), aID);
    EXPECT_EQ(GetNumber(header.substr(14, 2)), mRequest);
    return static_cast<std::uint16_t>(GetNumber(header.substr(8, 2)));
  }
  std::uint16_t AskRead(std::uint64_t aAddress, std::uint32_t aLength) {
    return Ask(kReadMemory, MakeNumber(aAddress, 8) + MakeNumber(aLength, 4));
  }
  std::uint16_t AskWrite(std::uint64_t aAddress, const std::string& aBytes) {
    return Ask(kWriteMemory, MakeNumber(aAddress, 8) + aBytes);
  }
  std::string ReadAll(std::uint64_t aAddress, std::uint64_t aSize) {
    constexpr std::uint64_t kMostBytes = 1008;
    std::string bytes;
    while (bytes.size() < aSize) {
      const auto piece = static_cast<std::uint32_t>(std::min(kMostBytes, aSize - bytes.size()));
      if (AskRead(aAddress + bytes.size(), piece) != 0 || mData.size() != piece)
        break;
      bytes += mData;
    }
    return bytes;
  }

  std::uint16_t mRequest = 0x1000;
  std::string mData;
};

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

TEST_F(GenCPTest, CurrentSpeed_WrittenAndConfirmed_IsTheCameras) {
  SendHex(kWriteRate);
  ASSERT_EQ(ReceiveHex(kAnswerBytes), Hex(kRateWritten)) << "the acknowledge comes at the former speed";
  SetRate("Baud115200");
  ASSERT_EQ(AskWrite(0x20004, MakeNumber(0x10, 4)), 0);

  AdvanceMs(1000);

  EXPECT_EQ(AskRead(0x20004, 4), 0);
  EXPECT_EQ(GetNumber(mData), 0x10u);
}

TEST_F(GenCPTest, CurrentSpeed_NotConfirmed_FallsBack) {
  SendHex(kWriteRate);
  ASSERT_EQ(ReceiveHex(kAnswerBytes), Hex(kRateWritten));

  AdvanceMs(1000);

  EXPECT_EQ(AskRead(0x20004, 4), 0) << "at the former speed";
  EXPECT_EQ(GetNumber(mData), 1u);
  SendHex(kWriteRate);
  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kRateWritten)) << "the same request is done anew";
}

TEST_F(GenCPTest, Camera_AtAnotherSpeed_HearsNothing) {
  SetRate("Baud19200");
  SendHex(kReadModel);
  AwaitSent(FromHex(kReadModel).size());

  SetRate("Baud9600");
  SendHex(kReadVersion);

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kVersion)) << "the first answer is to what came at the camera's speed";
}

TEST_F(GenCPTest, Control_OfAHostThatFallsSilent_EndsWithTheHeartbeat) {
  ASSERT_EQ(AskWrite(0x204, MakeNumber(1, 4)), 0);
  SendHex(kWriteRate);
  ASSERT_EQ(ReceiveHex(kAnswerBytes), Hex(kRateWritten));
  SetRate("Baud115200");
  ASSERT_EQ(AskWrite(0x20004, MakeNumber(0x10, 4)), 0);
  AdvanceMs(2000);
  ASSERT_EQ(AskRead(0, 4), 0) << "any access keeps it";
  AdvanceMs(2000);
  ASSERT_EQ(AskRead(0x204, 4), 0);
  ASSERT_EQ(GetNumber(mData), 1u);

  AdvanceMs(3500);

  SetRate("Baud9600");
  EXPECT_EQ(AskRead(0x204, 4), 0);
  EXPECT_EQ(GetNumber(mData), 0u);
}

TEST_F(GenCPTest, Control_GivenBack_BeginsAnewAtTheFirstSpeed) {
  ASSERT_EQ(AskWrite(0x204, MakeNumber(1, 4)), 0);
  ASSERT_EQ(AskWrite(0x20004, MakeNumber(0x10, 4)), 0);
  SetRate("Baud115200");
  ASSERT_EQ(AskWrite(0x20004, MakeNumber(0x10, 4)), 0);

  EXPECT_EQ(AskWrite(0x204, MakeNumber(0, 4)), 0) << "acknowledged at the speed of the command";

  SetRate("Baud9600");
  EXPECT_EQ(AskRead(0x20004, 4), 0);
  EXPECT_EQ(GetNumber(mData), 1u);
}

namespace {

class PendingTest : public GenCPTest {
protected:
  PendingTest() : GenCPTest("protocol: GenCP, pending: 500") {}
};

class SmallPacketsTest : public GenCPTest {
protected:
  SmallPacketsTest() : GenCPTest("protocol: GenCP, packetBytes: 64, descriptions: [zipped]") {}
};

class PoweredTest : public GenCPTest {
protected:
  PoweredTest() : GenCPTest("protocol: GenCP, pocl: true", {}, "{sources: 1, pocl: off}") {}
};

class UnpacedTest : public GenCPTest {
protected:
  UnpacedTest() : GenCPTest("protocol: GenCP", ", paced: false, rate: 115200") {}
};

} // namespace

TEST_F(PendingTest, WriteMemory_OfAFeature_IsPendingAndThenDone) {
  SendHex(kWriteWidth);

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kPending));
  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kWidthWritten));
}

TEST_F(PendingTest, WriteMemory_OfTheProtocolsRegisters_IsDoneAtOnce) {
  EXPECT_EQ(AskWrite(0x204, MakeNumber(1, 4)), 0);
}

TEST_F(PendingTest, Commands_WhileTheCameraIsBusy_AreToldSo) {
  const std::string width = MakeNumber(0x10008, 8) + MakeNumber(512, 4);

  // Together they take less than 100 ms at 9600 baud, after which the camera is still at work.
  Send(MakeCommand(0x4000, kWriteMemory, 1, width) + MakeCommand(0xC000, kWriteMemory, 1, width) +
       MakeCommand(0x4000, kReadMemory, 2, MakeNumber(0, 8) + MakeNumber(4, 4)));

  mRequest = 1;
  EXPECT_EQ(ReceiveAnswer(0x0805), 0);
  EXPECT_EQ(GetNumber(mData), 1500u);
  EXPECT_EQ(ReceiveAnswer(0x0805), 0) << "the same request";
  EXPECT_THAT(GetNumber(mData), testing::AllOf(testing::Gt(1300u), testing::Lt(1500u)));
  mRequest = 2;
  EXPECT_EQ(ReceiveAnswer(0x0801), 0x8007) << "another request";
  mRequest = 1;
  EXPECT_EQ(ReceiveAnswer(0x0803), 0);
}

TEST_F(SmallPacketsTest, ReadMemory_OfMoreThanThePacketsHold_IsRefused) {
  EXPECT_EQ(AskRead(0x44, 48), 0);
  EXPECT_EQ(mData.substr(0, 6), std::string("Model\0", 6));
  EXPECT_EQ(AskRead(0x44, 49), 0x8002);
}

TEST_F(SmallPacketsTest, Manifest_OfOneDescription_HasOneEntry) {
  ASSERT_EQ(AskRead(0x21000, 8), 0);

  EXPECT_EQ(GetNumber(mData), 1u);
}

TEST_F(PoweredTest, Camera_WithoutPower_IsSilentAndWithItBeginsAnew) {
  SendHex(kReadModel);
  AwaitSent(FromHex(kReadModel).size());
  SetPower(true);
  SendHex(kReadVersion);
  ASSERT_EQ(ReceiveHex(kAnswerBytes), Hex(kVersion)) << "the first command was not heard";
  ASSERT_EQ(AskWrite(0x10008, MakeNumber(512, 4)), 0);

  SetPower(false);
  SetPower(true);

  EXPECT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 640u);
}

TEST_F(PoweredTest, Camera_ThatWasWithoutPowerWhileThePortWasClosed_BeginsAnew) {
  SetPower(true);
  ASSERT_EQ(AskWrite(0x10008, MakeNumber(512, 4)), 0);
  ASSERT_TRUE(mPort.Close().IsOK());

  SetPower(false);
  SetPower(true);
  OpenPort(KrDeviceSerial::Serial0);

  EXPECT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 640u);
}

TEST_F(UnpacedTest, Camera_OnALineWithoutASpeed_AnswersAtAny) {
  SendHex(kReadVersion);

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kVersion));
}

namespace {

// What happens on the line to a command, which is sent again then.
struct DisturbanceRow {
  const char* name;
  KrResult (*disturb)(KrSimulatedFaults& aFaults);
};

const DisturbanceRow kDisturbances[] = {
    {"a byte lost", [](KrSimulatedFaults& aFaults) {
       return aFaults.LoseNextSerialBytes(0, KrSerialDirection::Sent, 1);
     }},
    {"every 20th byte repeated", [](KrSimulatedFaults& aFaults) {
       return aFaults.RepeatSerialBytes(0, KrSerialDirection::Sent, 20);
     }},
    {"a byte corrupted", [](KrSimulatedFaults& aFaults) {
       return aFaults.CorruptNextSerialBytes(0, KrSerialDirection::Sent, 1);
     }},
    {"every 20th byte lost", [](KrSimulatedFaults& aFaults) {
       return aFaults.LoseSerialBytes(0, KrSerialDirection::Sent, 20);
     }},
    {"every 20th byte corrupted", [](KrSimulatedFaults& aFaults) {
       return aFaults.CorruptSerialBytes(0, KrSerialDirection::Sent, 20);
     }},
};

void PrintTo(const DisturbanceRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

class DisturbedTest : public GenCPTest, public testing::WithParamInterface<DisturbanceRow> {};

} // namespace

TEST_P(DisturbedTest, Command_BehindADisturbedOne_IsHeard) {
  ASSERT_TRUE(GetParam().disturb(*GetFaults()).IsOK());
  SendHex(kReadModel);
  AwaitSent(FromHex(kReadModel).size());
  GetFaults()->EndSerialFaults();

  SendHex(kReadVersion);

  EXPECT_EQ(ReceiveHex(kAnswerBytes), Hex(kVersion)) << "nothing was said to what was broken";
}

INSTANTIATE_TEST_SUITE_P(Line, DisturbedTest, testing::ValuesIn(kDisturbances));

TEST_F(GenCPTest, Command_BehindAByteThatCameTwice_IsHeard) {
  ASSERT_TRUE(GetFaults()->RepeatNextSerialBytes(0, KrSerialDirection::Sent, 1).IsOK());

  SendHex(kReadModel);

  EXPECT_EQ(ReceiveHex(21), Hex(kModel)) << "what stands before a packet is passed over";
}

TEST_F(GenCPTest, Silence_OnOrder_LastsUntilItEnds) {
  ASSERT_TRUE(GetFaults()->SilenceSerialPort(0, true).IsOK());
  SendHex(kWriteWidth);
  // What asks for no answer, until the end of which the other's answer would have come.
  const std::string quiet = MakeCommand(0, kReadMemory, 7, MakeNumber(0, 8) + MakeNumber(4, 4));
  Send(quiet);
  AwaitSent(FromHex(kWriteWidth).size() + quiet.size());

  GetFaults()->EndSerialFaults();

  EXPECT_EQ(AskRead(0x10008, 4), 0);
  EXPECT_EQ(GetNumber(mData), 512u) << "the camera did what it was told";
}
