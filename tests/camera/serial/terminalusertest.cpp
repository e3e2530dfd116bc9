// The serial terminal as a user meets it: typing, sending, changing ports, with what others say at the line's other
// end.

#include "terminaluser.h"
#include "socatline.h"

#include <QKeyEvent>

#include <gmock/gmock.h>

namespace {

using krtest::SocatLine;
using testing::HasSubstr;

/// Counts the repeated presses of a key that is held. Thread: user interface.
class KeyRepeats : public QObject {
public:
  KeyRepeats() { qApp->installEventFilter(this); }
  int Get() const { return mCount; }

protected:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::KeyPress && static_cast<const QKeyEvent*>(aEvent)->isAutoRepeat())
      ++mCount;
    return false;
  }

private:
  int mCount = 0;
};

QStringList ListPorts() {
  QStringList ports;
  if (const auto* const list = FindTerminalControl<QComboBox>(id::kPort))
    for (int index = 0; index < list->count(); ++index)
      ports += list->itemText(index);
  return ports;
}

} // namespace

TEST_F(TerminalUser, TextTyped_ArrivesWithItsTrailerAndIsShown) {
  SocatLine line(TerminalLab::Get().GetFastLine());

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.SendTyped("Hello, line");
    EXPECT_EQ(line.Await(12), "Hello, line\r");
    aHands.AwaitShown("Hello, line");

    aHands.Check(id::kSendHexadecimal, true);
    aHands.SendTyped("03 64 ab 7F");
    EXPECT_EQ(line.Await(17).substr(12), "\x03\x64\xAB\x7F\r");
    EXPECT_TRUE(aUser.IsEnabled(kTerminal, id::kSend));
  });
}

TEST_F(TerminalUser, BadHexadecimal_IsToldAndNothingSent) {
  SocatLine line(TerminalLab::Get().GetFastLine());

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.Check(id::kSendHexadecimal, true);
    aHands.SendTyped("12G4");
    ASSERT_TRUE(aUser.AwaitWindow("Error"));
    EXPECT_THAT(aUser.GetMessage("Error").toStdString(), HasSubstr("Error parsing send data string."));
    aUser.Press("Return");
    aUser.AwaitNoWindow("Error");
    aUser.AwaitWindow(kTerminal);

    aHands.SendTyped("0d");
    EXPECT_EQ(line.Await(2), "\r\r");
  });
}

TEST_F(TerminalUser, EnterHeld_SendsOnce) {
  SocatLine line(TerminalLab::Get().GetFastLine());
  KeyRepeats repeats;

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
    aHands.Fill(id::kData, "once");
    aUser.Hold("Return");
    EXPECT_TRUE(aUser.Await("the key repeating", [&] { return repeats.Get() >= 5; }));
    aUser.Release("Return");

    aHands.SendTyped("next");
    EXPECT_EQ(line.Await(10), "once\rnext\r");
  });
}

TEST_F(TerminalUser, EnterWithoutData_SendsNothing) {
  SocatLine line(TerminalLab::Get().GetFastLine());

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
    aUser.Click(kTerminal, id::kData);
    aUser.Press("Return");

    aHands.SendTyped("x");
    EXPECT_EQ(line.Await(2), "x\r");
  });
}

TEST_F(TerminalUser, InstrumentAsked_Answers) {
  Run(KrDeviceSerial::Bulk0, [](UserHands&, const TerminalHands& aHands) {
    aHands.SendTyped("*IDN?");
    aHands.AwaitShown("*IDN?\nSimulated Instrument,S1-Bulk0\n");
    aHands.SendTyped("VALUE 42");
    aHands.AwaitShown("VALUE 42\nOK\n");
    aHands.SendTyped("VALUE?");
    aHands.AwaitShown("VALUE?\nVALUE 42\n");
  });
}

TEST_F(TerminalUser, PortChangedWhileMuchIsReceived_GoesOnAtTheOther) {
  SocatLine fast(TerminalLab::Get().GetFastLine());
  SocatLine slow(TerminalLab::Get().GetSlowLine());

  Run(KrDeviceSerial::Serial0, [&](UserHands& aUser, const TerminalHands& aHands) {
    EXPECT_TRUE(aUser.Await("the ports", [] { return ListPorts() == QStringList{"Serial0", "Serial1", "Bulk0"}; }));
    fast.Send(krtest::MakeNumberedLines(4'000'000));
    aHands.AwaitShown("line 5");

    aUser.Click(kTerminal, id::kPort);
    aUser.AwaitMenu();
    aUser.Press("Down");
    aUser.Press("Return");
    aUser.Await("the other port", [] {
      const auto* const list = FindTerminalControl<QComboBox>(id::kPort);
      return list && list->currentText() == "Serial1";
    });
    aUser.AwaitEnabled(kTerminal, id::kSend);

    slow.Send("from the other line\r\n");
    aHands.AwaitShown("from the other line");
    aHands.SendTyped("to the other line");
    EXPECT_EQ(slow.Await(18), "to the other line\r");
  });
}
