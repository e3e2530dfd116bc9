// Programs with a serial terminal: the viewer, whose camera comes and goes, and the example.

#include "await.h"
#include "socatline.h"
#include "viewerwithports.h"

#include <QProcess>

namespace {

using krtest::SocatLine;

const int kProgramLimitMs = krtest::GetGenerousMs();

bool IsEnabled(int aControl) {
  const auto* const control = FindTerminalControl<QWidget>(aControl);
  return control && control->isEnabled();
}

// Hands at the window of another process.
void RunXdotool(const QStringList& aArguments) {
  QProcess hands;
  hands.start("xdotool", aArguments);
  ASSERT_TRUE(hands.waitForFinished(kProgramLimitMs));
  EXPECT_EQ(hands.exitCode(), 0) << hands.readAllStandardError().toStdString();
}

} // namespace

TEST_F(ViewerUser, TerminalOpenedByItsKey_TalksToTheCamera) {
  SocatLine line(TerminalLab::Get().GetFastLine());

  RunViewer([&](UserHands& aUser, const TerminalHands& aHands) {
    aUser.Press("ctrl+t");
    ASSERT_TRUE(aHands.AwaitOpen());
    aHands.SendTyped("from the viewer");
    EXPECT_EQ(line.Await(16), "from the viewer\r");
    line.Send("to the viewer\r\n");
    aHands.AwaitShown("to the viewer");
  });
}

TEST_F(ViewerUser, CameraLostAndBackWhileAFileIsSent_IsTakenUpAgain) {
  const QString path = WriteFile("lost.txt", krtest::MakeNumberedLines(1'000'000));
  SocatLine fast(TerminalLab::Get().GetFastLine());
  SocatLine slow(TerminalLab::Get().GetSlowLine());

  RunViewer([&](UserHands& aUser, const TerminalHands& aHands) {
    aUser.Press("ctrl+t");
    ASSERT_TRUE(aHands.AwaitOpen());
    aHands.SendFile(path);
    EXPECT_GE(fast.Await(1000).size(), 1000u);

    mFaults->Disappear();
    EXPECT_TRUE(aUser.Await("the terminal without a camera",
                            [] { return !IsToolOffered(kTerminalKey) && !IsEnabled(id::kSend); }));
    mFaults->Return();
    EXPECT_TRUE(aUser.Await("the terminal on the camera again",
                            [] { return IsToolOffered(kTerminalKey) && IsEnabled(id::kSend); }));

    aHands.SendTyped("here again");
    EXPECT_TRUE(fast.AwaitEnd("here again\r").ends_with("here again\r"));
  });
}

TEST_F(ViewerUser, EndedWhileAFileIsSent_ClosesTheTerminal) {
  const QString path = WriteFile("ended.txt", krtest::MakeNumberedLines(1'000'000));
  SocatLine line(TerminalLab::Get().GetFastLine());

  RunViewer([&](UserHands& aUser, const TerminalHands& aHands) {
    aUser.Press("ctrl+t");
    ASSERT_TRUE(aHands.AwaitOpen());
    aHands.SendFile(path);
    EXPECT_GE(line.Await(1000).size(), 1000u);
  });

  EXPECT_EQ(FindTerminalControl<QWidget>(id::kSend), nullptr);
}

TEST_F(TerminalUser, Example_ShowsTheTerminalUntilItIsClosed) {
  QProcess process;
  process.start(KR_EXAMPLE_PATH, {"--simulate", "Bulk0"});
  ASSERT_TRUE(process.waitForStarted(kProgramLimitMs));

  RunXdotool({"search", "--sync", "--onlyvisible", "--name", kTerminal, "windowactivate", "--sync"});
  RunXdotool({"key", "alt+F4"}); // To the screen: the window has gone before the keys are released.

  ASSERT_TRUE(process.waitForFinished(kProgramLimitMs));
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  EXPECT_TRUE(process.readAllStandardOutput().contains("Bulk0"));
}

TEST_F(TerminalUser, ExampleAskedForAPortThatIsNotThere_SaysSo) {
  QProcess process;
  process.start(KR_EXAMPLE_PATH, {"--simulate", "Bulk7"});
  ASSERT_TRUE(process.waitForFinished(kProgramLimitMs));

  EXPECT_EQ(process.exitCode(), 1);
  EXPECT_TRUE(process.readAllStandardError().contains("Bulk7"));
}
