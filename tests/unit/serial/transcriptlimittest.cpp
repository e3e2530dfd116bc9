// What becomes of text that the pending text has no room for.

#include "recordingtranscript.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLimit = TranscriptEncoder::kPendingLimit;
constexpr std::size_t kPairLine = 16 * 3 + 2;
constexpr std::size_t kHybridLine = 16 * 3 + 3 + 16 + 2;

/// As many whole lines as have room, and the units that are left then.
constexpr std::size_t kPairLines = kLimit / kPairLine;
constexpr std::size_t kHybridLines = kLimit / kHybridLine;
constexpr std::size_t kHybridRest = kLimit % kHybridLine;

} // namespace

TEST(PendingLimit, Is16383Units) {
  EXPECT_EQ(kLimit, 16'383U);
}

TEST(PendingLimit, ReachedExactly_DropsNothing) {
  RecordingTranscript transcript;

  const std::u16string shown = transcript.Show({Bytes(kLimit, 0x41)});

  EXPECT_EQ(shown, std::u16string(kLimit, u'A'));
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), 0U);
}

TEST(PendingLimit, Exceeded_DropsAndCountsWhatDoesNotFit) {
  RecordingTranscript transcript;

  const std::u16string shown = transcript.Show({Bytes(kLimit, 0x41), {0x42, 0x0D, 0x43}});

  EXPECT_EQ(shown, std::u16string(kLimit, u'A'));
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), 4U);
}

TEST(PendingLimit, Exceeded_CountsDroppedBytesAsUnflushed) {
  RecordingTranscript transcript;

  transcript.Render(Bytes(kLimit + 10, 0x41));

  EXPECT_EQ(transcript.encoder.GetUnflushedBytes(), kLimit + 10);
}

TEST(PendingLimit, InTheMiddleOfALineEnd_KeepsItsCR) {
  RecordingTranscript transcript;

  const std::u16string shown = transcript.Show({Bytes(kLimit - 1, 0x41), {0x0D}});

  EXPECT_EQ(shown, std::u16string(kLimit - 1, u'A') + u"\r");
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), 1U);
}

TEST(PendingLimit, AfterADroppedCR_TheLFOfItsPairStillAddsNothing) {
  RecordingTranscript transcript;
  transcript.Show({Bytes(kLimit, 0x41), {0x0D}});

  EXPECT_EQ(transcript.Show({{0x0A, 0x42}}), std::u16string(kLimit, u'A') + u"B");
}

TEST(PendingLimit, InTheMiddleOfAPair_KeepsItsFirstUnit) {
  constexpr std::size_t kLineEndOfFirst = 3 + 2;
  constexpr std::size_t kLines = (kLimit - kLineEndOfFirst) / kPairLine;
  constexpr std::size_t kRest = (kLimit - kLineEndOfFirst) % kPairLine;
  static_assert(kRest % 3 == 1);
  RecordingTranscript transcript(DisplayFormat::Hexadecimal);
  transcript.Show({Bytes(15, 0xAB)});

  transcript.Show({Bytes(1 + kLines * 16 + kRest / 3 + 1, 0xAB)});

  EXPECT_EQ(transcript.appended.back().size(), kLimit);
  EXPECT_EQ(transcript.appended.back().substr(kLimit - 4), u"AB A");
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), 2U);
}

TEST(PendingLimit, Exceeded_DoesNotMoveTheColumnOfWhatFollows) {
  RecordingTranscript transcript(DisplayFormat::Hexadecimal);
  transcript.Show({Bytes(kPairLines * 16 + 32, 0xAB)});
  transcript.Show({CountUp(0x00, 17)});

  EXPECT_EQ(transcript.appended.back(), u"00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F \r\n10 ");
}

TEST(PendingLimit, AfterAFlush_HasRoomAgain) {
  RecordingTranscript transcript;
  transcript.Show({Bytes(kLimit + 1, 0x41)});

  transcript.Show({Bytes(kLimit, 0x42)});

  EXPECT_EQ(transcript.appended.back(), std::u16string(kLimit, u'B'));
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), 1U);
}

TEST(PendingLimit, AfterAClear_HasRoomAgain) {
  RecordingTranscript transcript;
  transcript.Render(Bytes(kLimit, 0x41));

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.Show({Bytes(kLimit, 0x42)}), std::u16string(kLimit, u'B'));
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), 0U);
}

TEST(PendingLimit, OfAHybridLineInPart_CutsItsCharactersUntilItIsShownAgain) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  const std::u16string cut = transcript.Show({Bytes(kHybridLines * 16, 0x41), {0x61, 0x62, 0x63}});
  const std::uint64_t dropped = transcript.encoder.GetDroppedUnits();

  const std::u16string whole = transcript.Show({{0x64, 0x65}});

  const std::size_t lines = kHybridLines * kHybridLine;
  EXPECT_EQ(cut.size(), kLimit);
  EXPECT_EQ(cut.substr(lines), std::u16string(u"61 62 63") + std::u16string(kHybridRest - 8, u' '));
  EXPECT_EQ(dropped, kHybridLine - 2 - kHybridRest);
  EXPECT_EQ(whole.substr(0, lines), cut.substr(0, lines));
  EXPECT_EQ(whole.substr(lines),
            std::u16string(u"61 62 63 64 65") + std::u16string(37, u' ') + u"abcde" + std::u16string(11, u' '));
  EXPECT_EQ(transcript.encoder.GetDroppedUnits(), dropped);
}

TEST(PendingLimit, OfAFullHybridLine_LeavesItWithoutItsEnd) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  const std::u16string cut = transcript.Show({Bytes((kHybridLines + 1) * 16, 0x41)});

  const std::u16string whole = transcript.Show({CountUp(0x41, 16)});

  EXPECT_EQ(cut.size(), kLimit);
  EXPECT_EQ(whole, cut + u"41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50    ABCDEFGHIJKLMNOP\r\n");
}

// The line that is shown in part was dropped altogether. What stands at the end of the transcript is a piece of a line
// before it, which goes in its stead.
TEST(PendingLimit, BeforeAHybridLineInPart_CostsThePieceOfTheLineThatWasCut) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  const std::u16string cut = transcript.Show({Bytes((kHybridLines + 2) * 16, 0x41), {0x61}});

  const std::u16string whole = transcript.Show({{0x62}});

  const std::size_t lines = kHybridLines * kHybridLine;
  EXPECT_EQ(cut.substr(lines).size(), kHybridRest);
  EXPECT_EQ(whole.substr(0, lines), cut.substr(0, lines));
  EXPECT_EQ(whole.substr(lines),
            std::u16string(u"61 62") + std::u16string(46, u' ') + u"ab" + std::u16string(14, u' '));
}

} // namespace krgui
