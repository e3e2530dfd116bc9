#include "frameledger.h"

#include <gtest/gtest.h>

#include <vector>

using krdevice::FrameLedger;

namespace {

struct Numbers {
  const char* name;
  std::vector<std::uint64_t> ids;
  std::uint64_t missing;
};

const Numbers kRows[] = {
    {"no frame", {}, 0},
    {"first frame of any number", {4711}, 0},
    {"first frame 0", {0, 1, 2}, 0},
    {"one after the other", {1, 2, 3, 4}, 0},
    {"one gap", {1, 2, 5}, 2},
    {"two gaps", {1, 3, 7}, 4},
    {"16 bits wrap from 65535 to 1", {65534, 65535, 1, 2}, 0},
    {"gap before the wrap", {65533, 65535, 1}, 1},
    {"gap over the wrap", {65534, 3}, 3},
    {"last number lost at the wrap", {65534, 1}, 1},
    {"64 bits go on beyond 16", {65534, 65535, 65536, 65537}, 0},
    {"gap beyond 16 bits", {65535, 65538}, 2},
    {"gap beyond 32 bits", {0x1'0000'0000, 0x1'0000'0003}, 2},
    {"end of 64 bits", {UINT64_MAX - 1, UINT64_MAX, 1, 2}, 0},
    {"duplicate", {1, 2, 2, 3}, 0},
    {"duplicate before a gap", {2, 2, 4}, 1},
    {"backwards", {10, 8, 9}, 0},
    {"begins anew at 1", {500, 501, 1, 2, 3}, 0},
    {"begins anew at 0 just before the wrap", {65000, 0, 1}, 0},
    {"begins anew far before the wrap", {40000, 1}, 0},
    {"begins anew beyond 16 bits", {70000, 1, 2}, 0},
    {"gap after beginning anew", {500, 1, 3}, 1},
    {"leap beyond belief", {5, UINT64_MAX, 6}, 0},
};

} // namespace

TEST(FrameLedger, Numbers_SkippedOnes_AreMissing) {
  for (const Numbers& row : kRows) {
    SCOPED_TRACE(row.name);
    FrameLedger ledger;

    for (const std::uint64_t id : row.ids)
      ledger.CountSkipped(ledger.Follow(id), 0);

    EXPECT_EQ(ledger.GetMissing(), row.missing);
  }
}

TEST(FrameLedger, CountSkipped_DiscardedFrames_AreTakenOffOnce) {
  FrameLedger ledger;
  ledger.CountSkipped(ledger.Follow(1), 0);

  ledger.CountSkipped(ledger.Follow(4), 2);
  EXPECT_EQ(ledger.GetMissing(), 0u) << "both were discarded";
  ledger.CountSkipped(ledger.Follow(7), 2);
  EXPECT_EQ(ledger.GetMissing(), 2u) << "those discards were seen before";
  ledger.CountSkipped(ledger.Follow(11), 3);

  EXPECT_EQ(ledger.GetMissing(), 4u) << "one of three was discarded";
}

TEST(FrameLedger, CountSkipped_DiscardsAheadOfTheirGap_AreTakenOffInTheEnd) {
  FrameLedger ledger;
  ledger.CountSkipped(ledger.Follow(1), 0);

  // One frame was lost on the way; meanwhile two later ones were discarded.
  ledger.CountSkipped(ledger.Follow(3), 2);
  ledger.CountSkipped(ledger.Follow(6), 2);

  EXPECT_EQ(ledger.GetMissing(), 1u);
}
