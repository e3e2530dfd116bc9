// The lines of the hybrid format, and how one that is shown in part is replaced as it grows.

#include "recordingtranscript.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A line as it has to look: pairs and characters as given, each padded to its column.
std::u16string Line(std::u16string_view aPairs, std::u16string_view aCharacters) {
  std::u16string line(aPairs);
  line.resize(48, u' ');
  line += u"   ";
  line += aCharacters;
  line.resize(67, u' ');
  return line;
}

const std::u16string kFullLine = u"41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50    ABCDEFGHIJKLMNOP\r\n";

} // namespace

TEST(HybridLine, Of16Bytes_HasPairsCharactersAndALineEnd) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);

  EXPECT_EQ(transcript.Show({CountUp(0x41, 16)}), kFullLine);
  EXPECT_EQ(kFullLine.size(), 48U + 3U + 16U + 2U);
}

TEST(HybridLine, BytesThatAreNotVisible_ShowAsDots) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);

  const std::u16string shown = transcript.Show(
      {{0x00, 0x0A, 0x0D, 0x1F, 0x20, 0x21, 0x2E, 0x30, 0x7D, 0x7E, 0x7F, 0x80, 0xA0, 0xC1, 0xFE, 0xFF}});

  EXPECT_EQ(shown, u"00 0A 0D 1F 20 21 2E 30 7D 7E 7F 80 A0 C1 FE FF    .....!.0}~......\r\n");
}

TEST(HybridLine, FlushedInPart_ShowsItsCharactersAndNoLineEnd) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);

  EXPECT_EQ(transcript.Show({CountUp(0x41, 3)}), Line(u"41 42 43", u"ABC"));
}

TEST(HybridLine, FlushedInPartAgain_ReplacesWhatWasShown) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 3)});

  EXPECT_EQ(transcript.Show({CountUp(0x44, 2)}), Line(u"41 42 43 44 45", u"ABCDE"));
}

TEST(HybridLine, FlushedAfterEachByte_IsOneLineAllTheTime) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  const Bytes bytes = CountUp(0x41, 16);

  for (std::size_t i = 0; i < 15; ++i) {
    const std::u16string shown = transcript.Show({{bytes[i]}});

    EXPECT_EQ(shown, Line(kFullLine.substr(0, 3 * i + 2), kFullLine.substr(51, i + 1)));
  }
  EXPECT_EQ(transcript.Show({{bytes[15]}}), kFullLine);
}

TEST(HybridLine, CompletedAfterItWasShownInPart_TakesItsPlace) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 3)});

  EXPECT_EQ(transcript.Show({CountUp(0x44, 13)}), kFullLine);
}

TEST(HybridLine, CompletedWithMoreLinesBeforeTheNextFlush_LosesNoneOfThem) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 3)});

  const std::u16string shown = transcript.Show({CountUp(0x44, 13), CountUp(0x41, 16), CountUp(0x41, 16), {0x61}});

  EXPECT_EQ(shown, kFullLine + kFullLine + kFullLine + Line(u"61", u"a"));
}

TEST(HybridLine, ShownInPartBehindFullLines_IsReplacedAlone) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 16), CountUp(0x41, 16), {0x61}});

  EXPECT_EQ(transcript.Show({{0x62}}), kFullLine + kFullLine + Line(u"61 62", u"ab"));
}

TEST(HybridLine, FlushedAtExactly16Bytes_IsClosed) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 16)});

  EXPECT_EQ(transcript.Show({{0x61}}), kFullLine + Line(u"61", u"a"));
}

TEST(HybridLine, CompletedAtAFlushAfterItWasShownInPart_IsClosed) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 15)});
  transcript.Show({{0x50}});

  EXPECT_EQ(transcript.Show({{0x61}}), kFullLine + Line(u"61", u"a"));
}

TEST(HybridLine, EmptyFlushes_ChangeNothing) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Flush();
  transcript.Show({CountUp(0x41, 3)});
  transcript.Flush();
  transcript.Show({{}});
  const std::size_t appended = transcript.appended.size();

  EXPECT_EQ(transcript.Show({CountUp(0x44, 13)}), kFullLine);
  EXPECT_EQ(appended, 1U);
}

TEST(HybridLine, ClearedWhileShownInPart_IsForgotten) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x61, 3)});

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.Show({CountUp(0x41, 16)}), kFullLine);
}

TEST(HybridLine, ClearedWhilePending_IsForgotten) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x61, 3)});
  transcript.Render(CountUp(0x64, 2));

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.Show({CountUp(0x41, 2)}), Line(u"41 42", u"AB"));
}

TEST(HybridLine, ClearedBetweenItsCompletionAndTheFlush_TakesNoLineAway) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x61, 3)});
  transcript.Render(CountUp(0x64, 13));
  transcript.encoder.ClearTranscript(transcript);
  transcript.Append(u"A line of somebody else");

  EXPECT_EQ(transcript.Show({CountUp(0x41, 16)}), u"A line of somebody else" + kFullLine);
}

TEST(HybridLine, ClearedWhileShownInPart_TakesNoOtherLineAway) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x61, 3)});
  transcript.encoder.ClearTranscript(transcript);
  transcript.Append(u"A line of somebody else");

  EXPECT_EQ(transcript.Show({CountUp(0x41, 16)}), u"A line of somebody else" + kFullLine);
}

TEST(HybridLine, CompletedAndFlushed_TakesNoOtherLineAway) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x41, 3)});
  transcript.Show({CountUp(0x44, 13)});
  transcript.Append(u"A line of somebody else");

  EXPECT_EQ(transcript.Show({CountUp(0x41, 16)}), kFullLine + u"A line of somebody else" + kFullLine);
}

TEST(HybridLine, FormatChangedWhileShownInPart_BeginsInTheOtherFormat) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x61, 3)});

  transcript.encoder.SetDisplayFormat(transcript, DisplayFormat::Hexadecimal);

  EXPECT_EQ(transcript.Show({CountUp(0x41, 16)}), u"41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 \r\n");
}

TEST(HybridLine, FormatChangedAwayAndBackMidLine_BeginsALine) {
  RecordingTranscript transcript(DisplayFormat::Hybrid);
  transcript.Show({CountUp(0x61, 3)});
  transcript.encoder.SetDisplayFormat(transcript, DisplayFormat::Hexadecimal);
  transcript.Show({CountUp(0x61, 5)});

  transcript.encoder.SetDisplayFormat(transcript, DisplayFormat::Hybrid);

  EXPECT_EQ(transcript.Show({CountUp(0x41, 3)}), Line(u"41 42 43", u"ABC"));
}

} // namespace krgui
