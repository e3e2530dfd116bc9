#include "gigevision/packetledger.h"

#include <gtest/gtest.h>

namespace {

using krtransport::FrameEnd;
using krtransport::PacketLedger;

// Frames of ten packets; totals are what the receiver counted since the stream's begin.

TEST(PacketLedger, WholeFrames_MissNothing) {
  PacketLedger ledger(10);

  ledger.Begin({1, 0});
  ledger.End(FrameEnd::Whole, {10, 0});
  ledger.Begin({11, 0});
  ledger.End(FrameEnd::Whole, {20, 0});

  EXPECT_EQ(ledger.GetMissing(), 0u);
  EXPECT_EQ(ledger.GetPacketsPerFrame(), 10u);
}

TEST(PacketLedger, FrameCutShort_EndsWhereTheNextBegins) {
  PacketLedger ledger(10);

  ledger.Begin({1, 0});
  ledger.Begin({8, 0}); // Seven of the first, and this one.
  ledger.Begin({18, 0});
  ledger.End(FrameEnd::CutShort, {20, 0});
  ledger.End(FrameEnd::Whole, {20, 0});

  EXPECT_EQ(ledger.GetMissing(), 3u);
}

TEST(PacketLedger, LastFrameCutShort_EndsWhenItIsGivenUp) {
  PacketLedger ledger(10);

  ledger.Begin({1, 0});
  ledger.End(FrameEnd::CutShort, {6, 0});

  EXPECT_EQ(ledger.GetMissing(), 4u);
}

TEST(PacketLedger, PacketsResent_CountAsMissingInTime) {
  PacketLedger ledger(10);

  ledger.Begin({1, 0});
  ledger.End(FrameEnd::Whole, {10, 2});
  ledger.Begin({11, 2});
  ledger.End(FrameEnd::CutShort, {18, 3}); // Eight, of which one was sent again.

  EXPECT_EQ(ledger.GetMissing(), 2u + 3u);
}

TEST(PacketLedger, WholeFrameOfAnotherSize_ShowsWhatAFrameNeeds) {
  PacketLedger ledger(99);

  ledger.Begin({1, 0});
  ledger.End(FrameEnd::Whole, {10, 0});
  ledger.Begin({11, 0});
  ledger.End(FrameEnd::CutShort, {18, 0});

  EXPECT_EQ(ledger.GetMissing(), 2u);
}

TEST(PacketLedger, FrameAborted_MissesNothing) {
  PacketLedger ledger(10);

  ledger.Begin({1, 0});
  ledger.End(FrameEnd::Aborted, {3, 0});

  EXPECT_EQ(ledger.GetMissing(), 0u);
}

TEST(PacketLedger, EndWithoutBegin_IsPassedOver) {
  PacketLedger ledger(10);

  ledger.End(FrameEnd::CutShort, {3, 0});

  EXPECT_EQ(ledger.GetMissing(), 0u);
}

} // namespace
