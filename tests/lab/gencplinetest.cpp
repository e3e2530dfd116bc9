// The GenCP camera of the lab and its line: speed, control, pending answers, power, and what disturbs a line.

#include "gencpfixture.h"

#include <gmock/gmock.h>

#include <ostream>

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
    {"a byte lost",
     [](KrSimulatedFaults& aFaults) { return aFaults.LoseNextSerialBytes(0, KrSerialDirection::Sent, 1); }},
    {"every 20th byte repeated",
     [](KrSimulatedFaults& aFaults) { return aFaults.RepeatSerialBytes(0, KrSerialDirection::Sent, 20); }},
    {"a byte corrupted",
     [](KrSimulatedFaults& aFaults) { return aFaults.CorruptNextSerialBytes(0, KrSerialDirection::Sent, 1); }},
    {"every 20th byte lost",
     [](KrSimulatedFaults& aFaults) { return aFaults.LoseSerialBytes(0, KrSerialDirection::Sent, 20); }},
    {"every 20th byte corrupted",
     [](KrSimulatedFaults& aFaults) { return aFaults.CorruptSerialBytes(0, KrSerialDirection::Sent, 20); }},
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
