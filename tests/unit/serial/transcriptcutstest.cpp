// The transcript does not depend on how bytes were cut into reads, nor on when it was flushed.

#include "recordingtranscript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace krgui {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Random = std::mt19937;

constexpr int kRuns = 300;
/// The longest run whose text has room in the pending text in every format.
constexpr std::size_t kLongestRun = TranscriptEncoder::kPendingLimit / 69 * 16;

std::size_t Choose(Random& aRandom, std::size_t aLeast, std::size_t aMost) {
  return std::uniform_int_distribution<std::size_t>(aLeast, aMost)(aRandom);
}

/// Half of all bytes matter to the formats: line ends, null, and the borders of what is visible.
Bytes MakeBytes(Random& aRandom) {
  constexpr std::uint8_t kSpecial[] = {0x00, 0x0A, 0x0D, 0x20, 0x21, 0x7E, 0x7F, 0xFF};
  Bytes bytes(Choose(aRandom, 0, Choose(aRandom, 0, 1) == 0 ? 100 : kLongestRun));
  for (std::uint8_t& byte : bytes) {
    byte = Choose(aRandom, 0, 1) == 0 ? kSpecial[Choose(aRandom, 0, std::size(kSpecial) - 1)]
                                      : static_cast<std::uint8_t>(Choose(aRandom, 0, 255));
  }
  return bytes;
}

void RenderInPieces(RecordingTranscript& aTranscript, const Bytes& aBytes, Random& aRandom) {
  const std::size_t longest = Choose(aRandom, 1, 70);
  const std::size_t flushesOneIn = Choose(aRandom, 1, 8);
  for (std::size_t i = 0; i < aBytes.size();) {
    const std::size_t count = std::min(Choose(aRandom, 0, longest), aBytes.size() - i);
    aTranscript.encoder.RenderBytes(aBytes.data() + i, static_cast<std::uint32_t>(count));
    i += count;
    if (Choose(aRandom, 1, flushesOneIn) == 1)
      aTranscript.Flush();
  }
  aTranscript.Flush();
}

constexpr DisplayFormat kFormats[] = {DisplayFormat::ASCII, DisplayFormat::Hexadecimal, DisplayFormat::Hybrid};

std::string TellFormat(const testing::TestParamInfo<DisplayFormat>& aInfo) {
  constexpr const char* kNames[] = {"ASCII", "Hexadecimal", "Hybrid"};
  return kNames[aInfo.index];
}

class TranscriptCuts : public testing::TestWithParam<DisplayFormat> {};

} // namespace

TEST_P(TranscriptCuts, BytesCutAtRandom_ShowAsInOnePiece) {
  for (int run = 0; run < kRuns; ++run) {
    SCOPED_TRACE(run);
    Random random(static_cast<Random::result_type>(run));
    const Bytes bytes = MakeBytes(random);
    RecordingTranscript whole(GetParam());
    RecordingTranscript cut(GetParam());

    const std::u16string expected = whole.Show({bytes});
    RenderInPieces(cut, bytes, random);

    ASSERT_EQ(whole.encoder.GetDroppedUnits(), 0U);
    ASSERT_EQ(cut.GetShown(), expected);
  }
}

TEST_P(TranscriptCuts, BytesCutAtRandomAfterAClearMidLine_ShowAsInOnePiece) {
  for (int run = 0; run < kRuns; ++run) {
    SCOPED_TRACE(run);
    Random random(static_cast<Random::result_type>(1'000'000 + run));
    const Bytes bytes = MakeBytes(random);
    RecordingTranscript whole(GetParam());
    RecordingTranscript cut(GetParam());
    RenderInPieces(cut, CountUp(0x41, Choose(random, 1, 40)), random);
    cut.Render(CountUp(0x0D, Choose(random, 0, 20)));

    const std::u16string expected = whole.Show({bytes});
    cut.encoder.ClearTranscript(cut);
    RenderInPieces(cut, bytes, random);

    ASSERT_EQ(cut.GetShown(), expected);
  }
}

// How many units of the oldest go depends on what is appended at once; which ones are left does not.
TEST_P(TranscriptCuts, MoreThanTheTranscriptHolds_ShowsTheEndOfTheWhole) {
  constexpr std::size_t kNoLimit = 1'000'000;
  for (int run = 0; run < 5; ++run) {
    SCOPED_TRACE(run);
    Random random(static_cast<Random::result_type>(2'000'000 + run));
    RecordingTranscript whole(GetParam(), kNoLimit);
    RecordingTranscript cut(GetParam());
    std::size_t mostAppended = 0;

    for (int i = 0; i < 24; ++i) {
      Bytes bytes(kLongestRun);
      std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(Choose(random, 0, 255)); });
      whole.Show({bytes});
      RenderInPieces(cut, bytes, random);
    }

    for (const std::u16string& appended : cut.appended)
      mostAppended = std::max(mostAppended, appended.size());
    const std::u16string shown = cut.GetShown();
    ASSERT_EQ(whole.encoder.GetDroppedUnits() + cut.encoder.GetDroppedUnits(), 0U);
    ASSERT_GT(whole.GetShown().size(), RecordingTranscript::kLimit);
    ASSERT_LE(shown.size(), RecordingTranscript::kLimit);
    ASSERT_GE(shown.size(), RecordingTranscript::kLimit - mostAppended);
    ASSERT_TRUE(whole.GetShown().ends_with(shown));
  }
}

INSTANTIATE_TEST_SUITE_P(EveryFormat, TranscriptCuts, testing::ValuesIn(kFormats), TellFormat);

} // namespace krgui
