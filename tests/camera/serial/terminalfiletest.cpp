// Files and much data between the terminal and a program of others, and what may happen on the way.

#include "socatline.h"
#include "terminaluser.h"

#include <gmock/gmock.h>

namespace {

using krtest::SocatLine;

constexpr std::size_t kMegabyte = 1'000'000;
constexpr std::size_t kBlock = 8'000;

// A text as the transcript shows it.
QString ToShown(const std::string& aText) {
  return QString::fromLatin1(aText.data(), static_cast<qsizetype>(aText.size())).replace("\r\n", "\n");
}

class LoopbackUser : public TerminalUser {
protected:
  /// Sends a file of a megabyte through the port's loopback, validated, and waits for the line of the transcript that
  /// tells what came back.
  void SendInLoopback(const QString& aReport) {
    const QString path = WriteFile("looped.txt", krtest::MakeNumberedLines(kMegabyte));
    const SocatLine line(TerminalLab::Get().GetFastLine());
    Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
      aHands.Check(id::kLoopback, true);
      // The window learns of the device's loopback when it looks at the controls again.
      aHands.Check(id::kOther, true);
      aHands.Check(id::kValidation, true);
      aHands.SendFile(path);
      aHands.AwaitShown(aReport);
      aUser.AwaitEnabled(kTerminal, id::kSendFile);
      aHands.Check(id::kLoopback, false);
    });
  }
};

} // namespace

TEST_F(TerminalUser, FileOfAMegabyteSent_ArrivesWhole) {
  const std::string bytes = krtest::MakeNumberedLines(kMegabyte);
  const QString path = WriteFile("sent.txt", bytes);
  SocatLine line(TerminalLab::Get().GetFastLine());

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.SendFile(path);
    EXPECT_TRUE(line.Await(kMegabyte) == bytes);
    aHands.AwaitShown("1000000/1000000 successfully transmitted bytes (100%)");
    aUser.AwaitEnabled(kTerminal, id::kSendFile);
    EXPECT_TRUE(aUser.IsEnabled(kTerminal, id::kSend));
  });
}

TEST_F(TerminalUser, MegabyteReceived_IsShownWholeAndInOrder) {
  const std::string bytes = krtest::MakeNumberedLines(kMegabyte) + "\r\n";
  SocatLine line(TerminalLab::Get().GetFastLine());
  const std::uint64_t before = GetCounts(KrDeviceSerial::Serial0).received;
  QString shown;

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands&) {
    // In blocks of lines that the buffer of what is not yet in the transcript holds, however slow the machine is.
    for (std::size_t begin = 0, end = 0; begin < bytes.size(); begin = end) {
      end = bytes.rfind('\n', begin + kBlock) + 1;
      const std::string block = bytes.substr(begin, end - begin);
      line.Send(block);
      ASSERT_TRUE(aUser.Await("what was sent in the transcript",
                              [&] {
                                shown = GetTranscript();
                                return shown.endsWith(ToShown(block));
                              }))
          << "From " << begin << ": " << shown.right(200).toStdString();
    }
  });

  EXPECT_EQ(GetCounts(KrDeviceSerial::Serial0).received - before, bytes.size());
  // To its limit of 32,768 units, of which each line end is two; as much as was appended last may be free.
  const qsizetype units = shown.size() + shown.count('\n');
  EXPECT_LE(units, 32'768);
  EXPECT_GE(units, 32'768 - 16'384);
  EXPECT_TRUE(ToShown(bytes).endsWith(shown)) << shown.right(200).toStdString();
}

TEST_F(LoopbackUser, LoopbackOfAFileValidated_ReportsAllOfIt) {
  SendInLoopback("1000000/1000000 bytes received from loopback (100%)");
}

TEST_F(LoopbackUser, LoopbackThatLosesOneByteInAThousand_ReportsThoseThatCameBack) {
  ASSERT_TRUE(mFaults->LoseSerialBytes(0, KrSerialDirection::Sent, 1000).IsOK());

  SendInLoopback("999000/1000000 bytes received from loopback (99.9%)");

  mFaults->EndSerialFaults();
}

TEST_F(TerminalUser, FileThatIsNotThere_IsToldAndSendingIsPossibleAgain) {
  const QString path = TerminalLab::Get().GetPath("nowhere.txt");

  Run(KrDeviceSerial::Bulk0, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.SendFile(path);
    ASSERT_TRUE(aUser.AwaitWindow("Error"));
    EXPECT_EQ(aUser.GetMessage("Error"), "The following file could not be opened: " + path);
    aUser.Press("Return");
    aUser.AwaitWindow(kTerminal);
    aUser.AwaitEnabled(kTerminal, id::kSendFile);
    EXPECT_TRUE(aUser.IsEnabled(kTerminal, id::kSend));
  });
}

TEST_F(TerminalUser, CameraVanishesWhileAFileIsSent_EndsTheSending) {
  const QString path = WriteFile("cut.txt", krtest::MakeNumberedLines(kMegabyte));
  SocatLine line(TerminalLab::Get().GetSlowLine());

  Run(KrDeviceSerial::Serial1, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.SendFile(path);
    EXPECT_GE(line.Await(100).size(), 100u);

    mFaults->Disappear();

    aHands.AwaitShown("/1000000 successfully transmitted bytes (");
    aUser.AwaitEnabled(kTerminal, id::kSendFile);
    EXPECT_LT(line.Await(0).size(), kMegabyte);
  });
  mFaults->Return();
}

TEST_F(TerminalUser, WindowClosedWhileAFileIsSent_EndsWithTheLineFree) {
  const std::string bytes = krtest::MakeNumberedLines(kMegabyte);
  const QString path = WriteFile("closed.txt", bytes);
  SocatLine line(TerminalLab::Get().GetSlowLine());

  Run(KrDeviceSerial::Serial1, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.SendFile(path);
    EXPECT_GE(line.Await(100).size(), 100u);
    ASSERT_TRUE(aUser.AwaitWindow(kTerminal));
    aUser.Press("alt+F4");
    EXPECT_TRUE(aUser.AwaitNoWindow(kTerminal));
  });

  const std::string received = line.Await(0);
  EXPECT_LT(received.size(), kMegabyte);
  EXPECT_EQ(received, bytes.substr(0, received.size()));
}
