// The camera of the lab for CL Protocol, asked with packets of its own protocol that were worked out by hand.

#include "clcamerafixture.h"

#include "krgenicam/krgendescription.h"
#include "simulation/clcamera/clprotocolcamera.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

constexpr const char* kIdentify = "a5 49 01 00 00 00 10 d7 f4";
constexpr const char* kIdentity = "5a 49 01 00 00 18 43 4d 61 6b 65 72 00 46 61 6d 00 4d 6f 64 65 6c 00 31 2e 30 00 "
                                  "53 4e 37 00 f2 b2";
constexpr const char* kReadWidth = "a5 52 02 00 00 06 00 00 01 00 08 00 04 7f fc";
constexpr const char* kWidth640 = "5a 52 02 00 00 04 4d 00 00 02 80 f8 e2";
constexpr const char* kWriteWidth = "a5 57 03 00 00 08 f8 00 01 00 08 00 00 02 00 4b 93";
constexpr const char* kWritten = "5a 57 03 00 00 00 4b 47 bf";
constexpr const char* kPending = "5a 57 03 01 00 02 48 01 f4 af 5d";
constexpr const char* kSetRate = "a5 42 04 00 00 04 10 00 01 c2 00 0b 53";
constexpr const char* kRateSet = "5a 42 04 00 00 00 5f 2b 5b";

constexpr std::size_t kHeaderBytes = 7;

std::string MakeNumber(std::uint32_t aNumber, int aBytes) {
  std::string bytes;
  for (int shift = 8 * aBytes - 8; shift >= 0; shift -= 8)
    bytes += static_cast<char>(aNumber >> shift);
  return bytes;
}

std::uint32_t GetNumber(std::string_view aBytes) {
  std::uint32_t number = 0;
  for (const char byte : aBytes)
    number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

std::uint16_t MakeCRC(std::string_view aBytes) {
  return krtransport::MakeCLProtocolCRC({reinterpret_cast<const std::uint8_t*>(aBytes.data()), aBytes.size()});
}

std::string MakeCommand(char aLetter, const std::string& aData) {
  std::string packet = "\xA5" + std::string(1, aLetter) + '\x11' + std::string(1, '\0') +
                       MakeNumber(static_cast<std::uint32_t>(aData.size()), 2);
  unsigned sum = 0;
  for (const char byte : packet)
    sum += static_cast<unsigned char>(byte);
  packet += static_cast<char>(0xFF - sum % 0x100);
  packet += aData;
  return packet + MakeNumber(MakeCRC(packet), 2);
}

class CLProtocolTest : public CLCameraTest {
protected:
  explicit CLProtocolTest(const std::string& aKeys = "protocol: CLProtocol") : CLCameraTest(MakeGrabberLab(aKeys)) {}

  /// The answer's status; its data go to mData.
  int Ask(char aLetter, const std::string& aData) {
    Send(MakeCommand(aLetter, aData));
    const std::string header = Receive(kHeaderBytes);
    if (header.size() < kHeaderBytes)
      return -1;
    mData = Receive(GetNumber(header.substr(4, 2)));
    EXPECT_EQ(GetNumber(Receive(2)), MakeCRC(header + mData));
    EXPECT_EQ(header[1], aLetter);
    EXPECT_EQ(header[2], '\x11');
    return static_cast<unsigned char>(header[3]);
  }

  std::string mData;
};

class PendingCLProtocolTest : public CLProtocolTest {
protected:
  PendingCLProtocolTest() : CLProtocolTest("protocol: CLProtocol, pending: 500") {}
};

} // namespace

TEST(CLProtocolCRC, OfTheUsualDigits_IsTheUsualValue) {
  EXPECT_EQ(MakeCRC("123456789"), 0x29B1);
}

TEST_F(CLProtocolTest, Identify_SaysWhatTheCameraIs) {
  SendHex(kIdentify);

  EXPECT_EQ(ReceiveHex(33), kIdentity);
}

TEST_F(CLProtocolTest, Registers_AreReadAndWritten) {
  SendHex(kReadWidth);
  EXPECT_EQ(ReceiveHex(13), kWidth640);

  SendHex(kWriteWidth);
  EXPECT_EQ(ReceiveHex(9), kWritten);

  EXPECT_EQ(Ask('R', MakeNumber(0x10008, 4) + MakeNumber(4, 2)), 0);
  EXPECT_EQ(GetNumber(mData), 512u);
}

TEST_F(CLProtocolTest, Commands_ThatCannotBeDone_AreRefusedWithAReason) {
  struct Row {
    const char* name;
    char letter;
    std::string data;
    int status;
  };
  const Row kRows[] = {
      {"unknown command", 'X', "", 0x80},
      {"reading where there is nothing", 'R', MakeNumber(0x9000, 4) + MakeNumber(4, 2), 0x81},
      {"a register of GenCP alone", 'R', MakeNumber(0x1C4, 4) + MakeNumber(8, 2), 0x81},
      {"writing what is only read", 'W', MakeNumber(0x10000, 4) + MakeNumber(4, 4), 0x82},
      {"reading what is only written", 'R', MakeNumber(0x10404, 4) + MakeNumber(4, 2), 0x83},
      {"writing what is out of range", 'W', MakeNumber(0x10008, 4) + MakeNumber(2, 4), 0x84},
      {"identifying with data", 'I', "x", 0x85},
      {"reading nothing", 'R', MakeNumber(0x10008, 4) + MakeNumber(0, 2), 0x85},
      {"reading too much", 'R', MakeNumber(0x10008, 4) + MakeNumber(257, 2), 0x85},
      {"writing nothing", 'W', MakeNumber(0x10008, 4), 0x85},
      {"a description that is not there", 'D', MakeNumber(2, 1) + MakeNumber(0, 4) + MakeNumber(4, 2), 0x84},
      {"behind a description", 'D', MakeNumber(0, 1) + MakeNumber(0x7FFFFFFF, 4) + MakeNumber(4, 2), 0x84},
      {"a speed that the camera lacks", 'B', MakeNumber(12345, 4), 0x84},
      {"half a speed", 'B', MakeNumber(9600, 2), 0x85},
  };

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);

    EXPECT_EQ(Ask(row.letter, row.data), row.status);
    EXPECT_EQ(mData, "");
  }
}

TEST_F(CLProtocolTest, Descriptions_ReadPieceByPiece_AreWhole) {
  ASSERT_EQ(Ask('L', ""), 0);
  const std::string list = mData;
  ASSERT_EQ(list.size(), 1u + 2 * 7);
  EXPECT_EQ(ToHex(list.substr(0, 4)), "02 00 01 00") << "two, the first of them XML 1.0";
  EXPECT_EQ(ToHex(list.substr(8, 3)), "01 01 01") << "the second a ZIP archive of 1.1";

  for (std::uint32_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(i);
    const std::uint32_t size = GetNumber(list.substr(4 + 7 * i, 4));
    std::string stored;
    while (stored.size() < size &&
           Ask('D', MakeNumber(i, 1) + MakeNumber(static_cast<std::uint32_t>(stored.size()), 4) + MakeNumber(256, 2)) ==
               0)
      stored += mData;
    EXPECT_EQ(stored.size(), size);
    KrGenDescription description;
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(stored, "camera", description).IsOK());
    EXPECT_THAT(std::string(description.GetText()), HasSubstr("<Integer Name=\"Width\""));
  }
}

TEST_F(CLProtocolTest, Speed_IsToldAndChangedBehindTheAnswer) {
  SendHex(kSetRate);
  EXPECT_EQ(ReceiveHex(9), kRateSet);
  SetRate("Baud115200");

  ASSERT_EQ(Ask('B', ""), 0);

  EXPECT_EQ(GetNumber(mData.substr(0, 4)), 115200u);
  EXPECT_EQ(GetNumber(mData.substr(4, 4)), 9600u);
  EXPECT_EQ(mData.size(), 4u + 8 * 4);
}

TEST_F(CLProtocolTest, Command_BehindABrokenOne_IsHeard) {
  ASSERT_TRUE(GetFaults()->CorruptNextSerialBytes(0, KrSerialDirection::Sent, 5).IsOK());
  SendHex(kIdentify);

  SendHex(kReadWidth);

  EXPECT_EQ(ReceiveHex(13), kWidth640);
}

TEST_F(PendingCLProtocolTest, Writing_IsPendingAndThenDone) {
  SendHex(kWriteWidth);
  EXPECT_EQ(ReceiveHex(11), kPending);

  EXPECT_EQ(ReceiveHex(9), kWritten);
}

TEST_F(PendingCLProtocolTest, Command_WhileTheCameraIsBusy_IsToldSo) {
  Send(FromHex(kWriteWidth) + FromHex(kReadWidth));

  EXPECT_EQ(ReceiveHex(11), kPending);
  EXPECT_EQ(ReceiveHex(9).substr(0, 11), "5a 52 02 86");
  EXPECT_EQ(ReceiveHex(9), kWritten);
}
