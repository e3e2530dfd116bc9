// The camera of the lab that speaks text commands; checksums were worked out by hand where a test says nothing else.

#include "clcamerafixture.h"

#include <gmock/gmock.h>

#include <numeric>

using testing::StartsWith;

namespace {

class TextTest : public CLCameraTest {
protected:
  explicit TextTest(const std::string& aKeys = "protocol: text") : CLCameraTest(MakeGrabberLab(aKeys)) {}

  std::string ReceiveLine() {
    std::string line;
    while (!line.ends_with('\r')) {
      const std::string byte = Receive(1);
      if (byte.empty())
        break;
      line += byte;
    }
    return line;
  }
  /// Of bytes as they stand.
  std::string AskBytes(const std::string& aBytes) {
    Send(aBytes);
    return ReceiveLine();
  }
  /// With the checksum that belongs to it.
  std::string Ask(const std::string& aCommand) {
    const auto add = [](unsigned aSum, char aByte) { return aSum + static_cast<unsigned char>(aByte); };
    const unsigned sum = std::accumulate(aCommand.begin(), aCommand.end(), 0U, add);
    char check[8];
    std::snprintf(check, sizeof(check), "*%02X\r", sum % 256);
    return AskBytes(aCommand + check);
  }
};

class CheckedTextTest : public TextTest {
protected:
  CheckedTextTest() : TextTest("protocol: text, checkedAnswers: true") {}
};

class PendingTextTest : public TextTest {
protected:
  PendingTextTest() : TextTest("protocol: text, pending: 500") {}
};

} // namespace

TEST_F(TextTest, Commands_WithTheirChecksum_AreDone) {
  EXPECT_EQ(AskBytes("gain=12*3F\r"), "OK\r");
  EXPECT_EQ(AskBytes("gain?*DE\r"), "12\r");
  EXPECT_EQ(AskBytes("width=512*F5\r"), "OK\r");
  EXPECT_EQ(AskBytes("Width?*3F\r"), "512\r") << "capitals do not matter";
  EXPECT_EQ(AskBytes("exposuretime?*69\r"), "1000\r");
  EXPECT_EQ(AskBytes("id?*0C\r"), "Maker,Model,SN7\r");
}

TEST_F(CheckedTextTest, Answers_HaveChecksums) {
  EXPECT_EQ(AskBytes("gain=12*3F\r"), "OK*9A\r");
  EXPECT_EQ(AskBytes("gain?*DE\r"), "12*63\r");
  EXPECT_THAT(AskBytes("gain?*DF\r"), StartsWith("ERR 1 checksum*"));
}

TEST_F(TextTest, Features_OfEveryKind_HaveTheirTexts) {
  EXPECT_EQ(Ask("pixelformat?"), "Mono8\r");
  EXPECT_EQ(Ask("testpattern=greydiagonalramp"), "OK\r");
  EXPECT_EQ(Ask("testpattern?"), "GreyDiagonalRamp\r");
  EXPECT_EQ(Ask("deviceuserid=left"), "OK\r");
  EXPECT_EQ(Ask("deviceuserid?"), "left\r");
  EXPECT_EQ(Ask("gain=0.5"), "OK\r");
  EXPECT_EQ(Ask("gain?"), "0.5\r");
  EXPECT_THAT(Ask("devicetemperature?"), StartsWith("4"));
  EXPECT_EQ(Ask("usersetload=1"), "OK\r");
  EXPECT_EQ(Ask("gain?"), "0\r");
}

TEST_F(TextTest, Commands_ThatCannotBeDone_GetAnError) {
  struct Row {
    const char* command;
    const char* answer;
  };
  const Row kRows[] = {
      {"nosuch?", "ERR 2"},      {"nosuch=1", "ERR 2"},      {"gain=99", "ERR 3"},
      {"gain=loud", "ERR 3"},    {"gain=", "ERR 3"},         {"gain=nan", "ERR 3"},
      {"width=513", "ERR 3"},    {"width=-4", "ERR 3"},      {"pixelformat=Mono9", "ERR 3"},
      {"widthmax=640", "ERR 4"}, {"usersetload?", "ERR 5"},  {"gain", "ERR 6"},
      {"baud=1200", "ERR 3"},    {"usersetload=2", "ERR 3"},
  };

  for (const Row& row : kRows)
    EXPECT_THAT(Ask(row.command), StartsWith(row.answer)) << row.command;
  EXPECT_EQ(AskBytes("gain=12*40\r"), "ERR 1 checksum\r");
  EXPECT_EQ(AskBytes("gain=12\r"), "ERR 1 checksum\r");
  EXPECT_EQ(AskBytes("\r"), "ERR 6 no command\r");
  EXPECT_EQ(AskBytes(std::string(5000, 'a') + "\r"), "ERR 6 no command\r");
  EXPECT_EQ(Ask("gain?"), "0\r") << "nothing was set";
}

TEST_F(TextTest, Speed_ChangesBehindTheAnswer) {
  ASSERT_EQ(AskBytes("baud=115200*02\r"), "OK\r");
  SetRate("Baud115200");

  EXPECT_EQ(Ask("baud?"), "115200\r");
}

TEST_F(TextTest, Answers_ThatTheLineDisturbs_AreDisturbed) {
  ASSERT_TRUE(GetFaults()->CorruptSerialBytes(0, KrSerialDirection::Received, 2).IsOK());
  Send("gain=12*3F\r");
  EXPECT_EQ(Receive(3), "O[\r");
  GetFaults()->EndSerialFaults();
  ASSERT_TRUE(GetFaults()->RepeatNextSerialBytes(0, KrSerialDirection::Received, 2).IsOK());

  Send("gain?*DE\r");

  EXPECT_EQ(Receive(5), "1122\r");
  KrSimulatedSerialCounts counts;
  ASSERT_TRUE(GetFaults()->GetSerialCounts(0, counts).IsOK());
  EXPECT_EQ(counts.corruptedReceived, 1u);
  EXPECT_EQ(counts.repeatedReceived, 2u);
  EXPECT_EQ(counts.received, 8u);
}

TEST_F(PendingTextTest, Answers_ComeLaterAndInTheirOrder) {
  Send("gain=12*3F\rgain?*DE\r");

  EXPECT_EQ(ReceiveLine(), "OK\r");
  EXPECT_EQ(ReceiveLine(), "12\r");
}
