#include "terminalsessionfixture.h"

#include <filesystem>
#include <string>
#include <thread>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST_F(TerminalSessionTest, File_IsSentWholeAndItsEndTold) {
  const std::string bytes = MakeFile(1000);
  mLine->SetRoom(999);
  ASSERT_TRUE(Open());

  mSession->SendFile(MakeOrder());
  const bool wasSending = mSession->IsSendingFile();
  mLine->SetRoom(SIZE_MAX);
  ASSERT_TRUE(AwaitEnds(1));

  EXPECT_TRUE(wasSending);
  EXPECT_FALSE(mSession->IsSendingFile());
  EXPECT_EQ(mLine->GetSent(), bytes);
  EXPECT_THAT(mLine->GetWrites(), ElementsAre(256, 256, 256, 232));
  EXPECT_EQ(mSession->GetMailbox().GetProgress().written, 1000U);
  ASSERT_THAT(mStatistics, SizeIs(2));
  EXPECT_EQ(mStatistics[1], u"1000/1000 successfully transmitted bytes (100%)\n");
}

TEST_F(TerminalSessionTest, FileThatLoopsBack_IsValidated) {
  MakeFile(100'000);
  mLine->SetLoopback(true);
  mSession = MakeSession({.loopbackWait = std::chrono::hours(24)});
  ASSERT_TRUE(Open());
  mSession->SetLoopbackOn(true);

  mSession->SendFile(MakeOrder(true));
  // What was read is matched before the next read begins; then the wait is cut short.
  ASSERT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == 100'000 && mLine->CountWaiting() == 0; }));
  ASSERT_TRUE(TakeUntil([this, reads = mLine->CountReads()] { return mLine->CountReads() > reads; }));
  mSession->StopFile();
  ASSERT_TRUE(AwaitEnds(1));

  ASSERT_THAT(mStatistics, SizeIs(3));
  EXPECT_EQ(mStatistics[2], u"100000/100000 bytes received from loopback (100%)\n");
}

TEST_F(TerminalSessionTest, FileWithTheLoopbackOff_MatchesNothing) {
  MakeFile(1000);
  mLine->SetLoopback(true);
  ASSERT_TRUE(Open());

  mSession->SendFile(MakeOrder(true));
  ASSERT_TRUE(AwaitEnds(1));

  ASSERT_THAT(mStatistics, SizeIs(3));
  EXPECT_EQ(mStatistics[2], u"0/1000 bytes received from loopback (0%)\n");
}

TEST_F(TerminalSessionTest, FileWithEcho_IsEchoedWhole) {
  const std::string bytes = MakeFile(5000);
  TransferOrder order = MakeOrder();
  order.echoes = [] { return true; };
  ASSERT_TRUE(Open());

  mSession->SendFile(order);
  ASSERT_TRUE(AwaitEnds(1));

  EXPECT_EQ(mEcho, bytes);
}

TEST_F(TerminalSessionTest, FileAfterMessages_ComesAfterThem) {
  const std::string bytes = MakeFile(300);
  mLine->SetRoom(0);
  ASSERT_TRUE(Open());
  EXPECT_TRUE(mSession->Send(ToBytes("first ")));
  EXPECT_TRUE(mSession->Send(ToBytes("second ")));

  mSession->SendFile(MakeOrder());
  mLine->SetRoom(SIZE_MAX);
  ASSERT_TRUE(AwaitEnds(1));

  EXPECT_EQ(mLine->GetSent(), "first second " + bytes);
}

TEST_F(TerminalSessionTest, SecondFileWhileOneIsSent_IsIgnored) {
  MakeFile(1000);
  mLine->SetRoom(100);
  ASSERT_TRUE(Open());
  mSession->SendFile(MakeOrder());

  mSession->SendFile(MakeOrder());
  mLine->SetRoom(SIZE_MAX);
  ASSERT_TRUE(AwaitEnds(1));
  mSession->Close();
  TakeAll();

  EXPECT_EQ(mEnds, 1);
  EXPECT_EQ(mLine->GetSent().size(), 1000U);
}

TEST_F(TerminalSessionTest, FileAfterFile_IsSentToo) {
  const std::string bytes = MakeFile(1000);
  ASSERT_TRUE(Open());

  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(AwaitEnds(1));
  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(AwaitEnds(2));

  EXPECT_EQ(mLine->GetSent(), bytes + bytes);
}

TEST_F(TerminalSessionTest, FileWithoutAPort_IsIgnored) {
  MakeFile(1000);

  mSession->SendFile(MakeOrder());

  EXPECT_FALSE(mSession->IsSendingFile());
  EXPECT_TRUE(mQueue->IsEmpty());
}

TEST_F(TerminalSessionTest, MissingFile_IsToldAndTheNextOneGoes) {
  ASSERT_TRUE(Open());
  const TransferOrder order = MakeOrder();

  mSession->SendFile(order);
  ASSERT_TRUE(AwaitEnds(1));
  MakeFile(10);
  mSession->SendFile(order);
  ASSERT_TRUE(AwaitEnds(2));

  EXPECT_THAT(mFailures, ElementsAre(order.path.ToWide()));
  EXPECT_EQ(mLine->GetSent().size(), 10U);
}

TEST_F(TerminalSessionTest, StopWhileTheLineTakesNothing_EndsTheFileAndKeepsThePort) {
  MakeFile(1000);
  mLine->SetRoom(300);
  ASSERT_TRUE(Open());
  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == 300; }));

  mSession->StopFile();
  ASSERT_TRUE(AwaitEnds(1));

  ASSERT_THAT(mStatistics, SizeIs(2));
  EXPECT_EQ(mStatistics[1], u"300/1000 successfully transmitted bytes (30%)\n");
  mLine->SetRoom(SIZE_MAX);
  mLine->Receive("still here");
  EXPECT_TRUE(mSession->Send(ToBytes("!")));
  EXPECT_TRUE(TakeUntil([this] { return mShown == u"still here" && mLine->GetSent().ends_with('!'); }));
}

TEST_F(TerminalSessionTest, StopWhileAMessageBeforeFindsNoRoom_EndsTheFile) {
  MakeFile(1000);
  mLine->SetRoom(0);
  ASSERT_TRUE(Open());
  EXPECT_TRUE(mSession->Send(ToBytes("first")));
  mSession->SendFile(MakeOrder());

  mSession->StopFile();
  ASSERT_TRUE(AwaitEnds(1));
  mLine->SetRoom(SIZE_MAX);

  EXPECT_TRUE(TakeUntil([this] { return mLine->GetSent() == "first"; }));
}

TEST_F(TerminalSessionTest, StopWithoutAFile_DoesNothing) {
  mSession->StopFile();
  ASSERT_TRUE(Open());
  mSession->StopFile();
  MakeFile(10);

  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(AwaitEnds(1));
  mSession->StopFile();

  EXPECT_EQ(mLine->GetSent().size(), 10U);
}

TEST_F(TerminalSessionTest, CloseWhileAFileIsSent_EndsItAndTellsSo) {
  MakeFile(1000);
  mLine->SetRoom(300);
  ASSERT_TRUE(Open());
  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == 300; }));

  mSession->Close();
  TakeAll();

  EXPECT_EQ(mEnds, 1);
  EXPECT_FALSE(mSession->IsSendingFile());
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(TerminalSessionTest, OpenWhileAFileIsSent_EndsTheFile) {
  MakeFile(1000);
  mLine->SetRoom(300);
  ASSERT_TRUE(Open());
  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == 300; }));

  ASSERT_TRUE(Open());

  EXPECT_FALSE(mSession->IsSendingFile());
  EXPECT_TRUE(mSession->IsOpen());
}

TEST_F(TerminalSessionTest, DeviceLostWhileAFileIsSent_EndsTheFile) {
  MakeFile(1000);
  mLine->SetRoom(300);
  ASSERT_TRUE(Open());
  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == 300; }));

  mLine->Lose();
  ASSERT_TRUE(AwaitEnds(1));

  EXPECT_EQ(mStatistics.back(), u"300/1000 successfully transmitted bytes (30%)\n");
  EXPECT_TRUE(mSession->IsOpen());
}

TEST_F(TerminalSessionTest, DestructionWhileAFileIsSent_Ends) {
  MakeFile(1000);
  mLine->SetRoom(300);
  ASSERT_TRUE(Open());
  mSession->SendFile(MakeOrder());
  ASSERT_TRUE(TakeUntil([this] { return mLine->GetSent().size() == 300; }));

  mSession.reset();

  EXPECT_FALSE(mLine->IsOpen());
}

} // namespace

} // namespace krgui
