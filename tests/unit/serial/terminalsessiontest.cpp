#include "terminalsessionfixture.h"

#include <string>
#include <vector>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(TerminalSessionTest, WaitForWhatLoopsBack_IsThatOfTheTransferUnlessItIsSaidOtherwise) {
  EXPECT_EQ(TerminalSessionTimes().loopbackWait, FileTransfer::kLoopbackWait);
}

TEST_F(TerminalSessionTest, New_IsClosed) {
  EXPECT_FALSE(mSession->IsOpen());
  EXPECT_FALSE(mSession->IsSendingFile());
  EXPECT_FALSE(mSession->Send(ToBytes("x")));
}

TEST_F(TerminalSessionTest, OpenPort_ShowsWhatComes) {
  ASSERT_TRUE(Open());
  EXPECT_TRUE(mSession->IsOpen());
  EXPECT_TRUE(mLine->IsOpen());

  mLine->Receive("hello");

  EXPECT_TRUE(TakeUntil([this] { return mShown == u"hello"; }));
}

TEST_F(TerminalSessionTest, OneHundredThousandBytes_ComeWholeAndInOrder) {
  // Taken as they come, so that the pending text never fills: the other end waits for what it sent to be shown.
  ASSERT_TRUE(Open());
  std::u16string expected;

  for (int part = 0; part < 100; ++part) {
    const std::string bytes(1000, static_cast<char>('a' + part % 26));
    expected += std::u16string(bytes.begin(), bytes.end());
    mLine->Receive(bytes);
    ASSERT_TRUE(TakeUntil([&] { return mShown.size() == expected.size(); })) << "in part " << part;
  }

  EXPECT_EQ(mShown, expected);
  EXPECT_EQ(mEncoder.GetDroppedUnits(), 0U);
}

TEST_F(TerminalSessionTest, PortThatTheDeviceLacks_IsRefusedWith26) {
  const KrResult result = mSession->Open(&mAdapter, KrDeviceSerial::Bulk5);

  EXPECT_EQ(result.GetCodeNumber(), 26U);
  EXPECT_FALSE(mSession->IsOpen());
}

TEST_F(TerminalSessionTest, PortThatCannotBeOpened_LeavesTheSessionClosed) {
  mLine->FailOpening(KrResult(KrResult::Code::Busy, "Somebody has it."));

  const KrResult result = mSession->Open(&mAdapter, KrDeviceSerial::Serial0);

  EXPECT_EQ(result.GetCode(), KrResult::Code::Busy);
  EXPECT_FALSE(mSession->IsOpen());
  EXPECT_FALSE(mSession->Send(ToBytes("x")));
}

TEST_F(TerminalSessionTest, NoDevice_IsRefused) {
  EXPECT_FALSE(mSession->Open(nullptr, KrDeviceSerial::Serial0).IsOK());
  EXPECT_FALSE(mSession->IsOpen());
}

TEST_F(TerminalSessionTest, OpenWhileOpen_ClosesThePortBefore) {
  const std::shared_ptr<krtest::SerialLine> other = mAdapter.AddLine(1);
  ASSERT_TRUE(Open());

  ASSERT_TRUE(Open(KrDeviceSerial::Serial1));

  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_TRUE(other->IsOpen());
  EXPECT_TRUE(mSession->Send(ToBytes("x")));
  EXPECT_TRUE(TakeUntil([&] { return other->GetSent() == "x"; }));
}

TEST_F(TerminalSessionTest, SamePortOpenedAgain_IsOpen) {
  ASSERT_TRUE(Open());

  ASSERT_TRUE(Open());

  EXPECT_EQ(mLine->CountOpenings(), 2);
  EXPECT_TRUE(mLine->IsOpen());
  mLine->Receive("x");
  EXPECT_TRUE(TakeUntil([this] { return mShown == u"x"; }));
}

TEST_F(TerminalSessionTest, OpenThatFailsWhileOpen_LeavesTheSessionClosed) {
  ASSERT_TRUE(Open());

  EXPECT_FALSE(Open(KrDeviceSerial::Bulk0));

  EXPECT_FALSE(mSession->IsOpen());
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(TerminalSessionTest, Close_ClosesThePortAndMayBeRepeated) {
  ASSERT_TRUE(Open());

  mSession->Close();
  mSession->Close();

  EXPECT_FALSE(mSession->IsOpen());
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(TerminalSessionTest, Destruction_ClosesThePort) {
  ASSERT_TRUE(Open());

  mSession.reset();

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(TerminalSessionTest, Messages_AreSentInOrderOneWriteEach) {
  ASSERT_TRUE(Open());

  EXPECT_TRUE(mSession->Send(ToBytes("one")));
  EXPECT_TRUE(mSession->Send(ToBytes("second")));
  EXPECT_TRUE(mSession->Send(ToBytes("3")));

  EXPECT_TRUE(TakeUntil([this] { return mLine->GetSent() == "onesecond3"; }));
  EXPECT_THAT(mLine->GetWrites(), ElementsAre(3, 6, 1));
}

TEST_F(TerminalSessionTest, LineThatTakesNothing_HoldsUpNoSender) {
  mLine->SetRoom(0);
  ASSERT_TRUE(Open());

  EXPECT_TRUE(mSession->Send(ToBytes("one")));
  EXPECT_TRUE(mSession->Send(ToBytes("two")));
  EXPECT_EQ(mLine->GetSent(), "");
  mLine->SetRoom(100);

  EXPECT_TRUE(TakeUntil([this] { return mLine->GetSent() == "onetwo"; }));
}

TEST_F(TerminalSessionTest, MoreThanTheSendLimit_IsRefused) {
  mLine->SetRoom(0);
  ASSERT_TRUE(Open());

  EXPECT_TRUE(mSession->Send(std::vector<std::uint8_t>(TerminalSession::kSendLimit)));
  EXPECT_FALSE(mSession->Send(ToBytes("x")));

  // The line takes it after all, or closing would wait for it.
  mLine->SetRoom(SIZE_MAX);
  EXPECT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == TerminalSession::kSendLimit; }));
}

TEST_F(TerminalSessionTest, MessageJustBeforeClosing_IsStillSent) {
  ASSERT_TRUE(Open());

  EXPECT_TRUE(mSession->Send(ToBytes("bye")));
  mSession->Close();

  EXPECT_EQ(mLine->GetSent(), "bye");
}

TEST_F(TerminalSessionTest, CloseWhileTheLineTakesNothing_GivesTheMessageUp) {
  mSession = MakeSession({.sendGrace = std::chrono::milliseconds(1)});
  mLine->SetRoom(2);
  ASSERT_TRUE(Open());

  EXPECT_TRUE(mSession->Send(ToBytes("message")));
  EXPECT_TRUE(TakeUntil([this] { return mLine->GetSent() == "me"; }));
  mSession->Close();

  EXPECT_FALSE(mLine->IsOpen());
  mLine->SetRoom(100);
  ASSERT_TRUE(Open());
  EXPECT_TRUE(mSession->Send(ToBytes("x")));
  EXPECT_TRUE(TakeUntil([this] { return mLine->GetSent() == "mex"; })) << "what was given up does not come later";
}

TEST_F(TerminalSessionTest, DeviceLostWhileOpen_StaysOpenUntilItIsClosed) {
  ASSERT_TRUE(Open());

  mLine->Lose();
  EXPECT_TRUE(mSession->Send(ToBytes("x")));

  EXPECT_TRUE(TakeUntil([this] { return !mLine->GetWrites().empty(); }));
  EXPECT_TRUE(mSession->IsOpen());
  EXPECT_EQ(mLine->GetSent(), "");
  mSession->Close();
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_FALSE(Open());
}

TEST_F(TerminalSessionTest, ReadingThatFailsForAWhile_GoesOnAfterwards) {
  ASSERT_TRUE(Open());
  mLine->FailReading(KrResult(KrResult::Code::ProtocolError, "Noise."));
  ASSERT_TRUE(TakeUntil([this, before = mLine->CountReads()] { return mLine->CountReads() > before + 1; }));

  mLine->FailReading({});
  mLine->Receive("again");

  EXPECT_TRUE(TakeUntil([this] { return mShown == u"again"; }));
}

TEST_F(TerminalSessionTest, CloseDuringThePauseAfterAFailure_Ends) {
  ASSERT_TRUE(Open());
  mLine->FailReading(KrResult(KrResult::Code::ProtocolError, "Noise."));
  ASSERT_TRUE(TakeUntil([this, before = mLine->CountReads()] { return mLine->CountReads() > before; }));

  mSession->Close();

  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(TerminalSessionTest, ClosedWindow_GetsNothing) {
  mQueue->Close();
  ASSERT_TRUE(Open());
  mLine->Receive(std::string(200, 'x'));
  ASSERT_TRUE(TakeUntil([this] { return mEncoder.GetUnflushedBytes() == 200; }));

  mSession->Close();

  EXPECT_TRUE(mQueue->IsEmpty());
}

} // namespace

} // namespace krgui
