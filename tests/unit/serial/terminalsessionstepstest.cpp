#include "terminalsessionfixture.h"

#include <array>
#include <random>
#include <string>

namespace krgui {

namespace {

/// A session that is used as no user would: opened, sent with, stopped and closed at random moments. What is looked for
/// are hangs, races and crashes; what must hold at each step is checked.
class TerminalSessionSteps : public TerminalSessionTest {
protected:
  TerminalSessionSteps() {
    mAdapter.AddLine(1)->SetLoopback(true);
    mLine->SetLoopback(true);
    mSession = MakeSession({.sendGrace = std::chrono::milliseconds(1)});
    MakeFile(3000);
  }

  void Step(int aKind) {
    using Action = void (TerminalSessionSteps::*)();
    static constexpr std::array<Action, 10> kActions = {
        &TerminalSessionSteps::OpenOne,  &TerminalSessionSteps::SendMessage, &TerminalSessionSteps::SendOneFile,
        &TerminalSessionSteps::StopOne,  &TerminalSessionSteps::CloseOne,    &TerminalSessionSteps::TakeSome,
        &TerminalSessionSteps::Fill,     &TerminalSessionSteps::Empty,       &TerminalSessionSteps::ReceiveSome,
        &TerminalSessionSteps::MakeAnew,
    };
    (this->*kActions.at(static_cast<std::size_t>(aKind)))();
  }
  static constexpr int kKinds = 10;

  void OpenOne() {
    const KrDeviceSerial port = mSteps() % 2 == 0 ? KrDeviceSerial::Serial0 : KrDeviceSerial::Serial1;
    EXPECT_TRUE(Open(port));
    EXPECT_FALSE(mSession->IsSendingFile());
    mSession->SetLoopbackOn(mSteps() % 2 == 0);
  }
  void SendMessage() { EXPECT_EQ(mSession->Send(ToBytes("a message\r")), mSession->IsOpen()); }
  void SendOneFile() {
    TransferOrder order = MakeOrder(mSteps() % 2 == 0);
    order.echoes = [isOn = mSteps() % 2 == 0] { return isOn; };
    mSession->SendFile(order);
  }
  void StopOne() { mSession->StopFile(); }
  void CloseOne() {
    mSession->Close();
    EXPECT_FALSE(mSession->IsOpen());
    EXPECT_FALSE(mLine->IsOpen());
  }
  void TakeSome() { TakeAll(); }
  void Fill() { mLine->SetRoom(0); }
  void Empty() { mLine->SetRoom(SIZE_MAX); }
  void ReceiveSome() { mLine->Receive(std::string(100, 'r')); }
  void MakeAnew() {
    // Numbers of the old mailbox mean nothing in the new one's.
    TakeAll();
    mSession.reset();
    DropMessages();
    EXPECT_FALSE(mLine->IsOpen());
    mSession = MakeSession({.sendGrace = std::chrono::milliseconds(1)});
  }
  void DropMessages() {
    while (mQueue->Take()) {
    }
  }

  std::minstd_rand mSteps{20240607};
};

TEST_F(TerminalSessionSteps, TwoThousandRandomSteps_EndAsTheyShould) {
  for (int step = 0; step < 2000; ++step)
    Step(static_cast<int>(mSteps() % kKinds));

  mLine->SetRoom(SIZE_MAX);
  EXPECT_TRUE(Open());
  TakeAll();
  mEnds = 0;
  const std::size_t before = mLine->GetSent().size();
  mSession->SendFile(MakeOrder());
  EXPECT_TRUE(AwaitEnds(1));
  EXPECT_EQ(mLine->GetSent().size() - before, 3000U) << "after all of it a file still goes out whole";
}

TEST_F(TerminalSessionSteps, TwoHundredOpenings_SendLoopBackStopAndClose) {
  for (int round = 0; round < 200; ++round) {
    ASSERT_TRUE(Open());
    mSession->SetLoopbackOn(true);
    EXPECT_TRUE(mSession->Send(ToBytes("hello")));
    mSession->SendFile(MakeOrder(true));
    const std::size_t before = mLine->GetSent().size();
    switch (mSteps() % 4) {
    case 0:
      break;
    case 1:
      EXPECT_TRUE(TakeUntil([&] { return mLine->GetSent().size() > before || !mSession->IsSendingFile(); }));
      break;
    case 2:
      mSession->StopFile();
      break;
    default:
      mSession->StopFile();
      EXPECT_TRUE(TakeUntil([this] { return !mSession->IsSendingFile(); }));
      break;
    }
    mSession->Close();
    TakeAll();
  }

  EXPECT_EQ(mEnds, 200);
  EXPECT_EQ(mLine->CountOpenings(), 200);
  EXPECT_FALSE(mLine->IsOpen());
}

} // namespace

} // namespace krgui
