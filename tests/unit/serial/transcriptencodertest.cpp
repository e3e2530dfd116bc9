#include "logic/serial/transcriptencoder.h"

#include "recordingtranscript.h"

#include <gtest/gtest.h>

#include <thread>

namespace krgui {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct RenderRow {
  const char* name;
  DisplayFormat format;
  std::vector<Bytes> reads;
  std::u16string expected;
};

const RenderRow kRenderRows[] = {
    {"CR LF is one line break", DisplayFormat::ASCII, {{0x41, 0x0D, 0x0A, 0x42}}, u"A\r\nB"},
    {"LF is a line break", DisplayFormat::ASCII, {{0x41, 0x0A, 0x42}}, u"A\r\nB"},
    {"CR is a line break", DisplayFormat::ASCII, {{0x41, 0x0D, 0x42}}, u"A\r\nB"},
    {"CR CR is two line breaks", DisplayFormat::ASCII, {{0x41, 0x0D, 0x0D, 0x42}}, u"A\r\n\r\nB"},
    {"LF LF is two line breaks", DisplayFormat::ASCII, {{0x41, 0x0A, 0x0A, 0x42}}, u"A\r\n\r\nB"},
    {"LF CR is two line breaks", DisplayFormat::ASCII, {{0x41, 0x0A, 0x0D, 0x42}}, u"A\r\n\r\nB"},
    {"CR LF LF is two line breaks", DisplayFormat::ASCII, {{0x0D, 0x0A, 0x0A}}, u"\r\n\r\n"},
    {"CR NULL LF is two line breaks", DisplayFormat::ASCII, {{0x0D, 0x00, 0x0A}}, u"\r\n \r\n"},
    {"CR and LF of two reads are one line break", DisplayFormat::ASCII, {{0x41, 0x0D}, {0x0A, 0x42}}, u"A\r\nB"},
    {"an empty read between CR and LF changes nothing", DisplayFormat::ASCII, {{0x0D}, {}, {0x0A}}, u"\r\n"},
    {"NULL is a blank", DisplayFormat::ASCII, {{0x41, 0x00, 0x42}}, u"A B"},
    {"every other byte is its character",
     DisplayFormat::ASCII,
     {{0x01, 0x09, 0x1B, 0x20, 0x7F, 0x80, 0xE9, 0xFF}},
     u"\u0001\t\u001B \u007F\u0080\u00E9\u00FF"},
    {"bytes as pairs", DisplayFormat::Hexadecimal, {{0x00, 0x0A, 0xFF}}, u"00 0A FF "},
    {"16 bytes are a line",
     DisplayFormat::Hexadecimal,
     {CountUp(0x41, 16)},
     u"41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 \r\n"},
    {"the 17th byte begins a line",
     DisplayFormat::Hexadecimal,
     {CountUp(0xF0, 10), CountUp(0xFA, 7)},
     u"F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF \r\n00 "},
    {"CR and LF end no line of pairs", DisplayFormat::Hexadecimal, {{0x0D, 0x0A, 0x0D}}, u"0D 0A 0D "},
    {"no byte", DisplayFormat::ASCII, {{}}, u""},
};

} // namespace

TEST(TranscriptEncoder, EveryFormat_ShowsBytesByItsRule) {
  for (const RenderRow& row : kRenderRows) {
    SCOPED_TRACE(row.name);
    RecordingTranscript transcript(row.format);

    for (const Bytes& read : row.reads)
      transcript.Render(read);
    transcript.Flush();

    EXPECT_EQ(transcript.GetShown(), row.expected);
  }
}

TEST(TranscriptEncoder, EveryFormat_ShowsTheSameWhenFlushedAfterEachRead) {
  for (const RenderRow& row : kRenderRows) {
    SCOPED_TRACE(row.name);
    RecordingTranscript transcript(row.format);

    for (const Bytes& read : row.reads) {
      transcript.Render(read);
      transcript.Flush();
    }

    EXPECT_EQ(transcript.GetShown(), row.expected);
  }
}

TEST(TranscriptEncoder, AtFirst_IsASCIIWithNothingToFlush) {
  const TranscriptEncoder encoder;

  EXPECT_EQ(encoder.GetDisplayFormat(), DisplayFormat::ASCII);
  EXPECT_EQ(encoder.GetUnflushedBytes(), 0U);
  EXPECT_EQ(encoder.GetDroppedUnits(), 0U);
}

TEST(TranscriptEncoder, DisplayFormats_HaveTheNumbersOfTheirControls) {
  EXPECT_EQ(static_cast<int>(DisplayFormat::ASCII), 1051);
  EXPECT_EQ(static_cast<int>(DisplayFormat::Hexadecimal), 1053);
  EXPECT_EQ(static_cast<int>(DisplayFormat::Hybrid), 1054);
}

TEST(RenderBytes, BeforeAFlush_ShowsNothing) {
  RecordingTranscript transcript;

  transcript.Render({0x41});

  EXPECT_EQ(transcript.GetShown(), u"");
}

TEST(RenderBytes, EachCall_CountsItsBytesUntilAFlush) {
  RecordingTranscript transcript;

  transcript.Render({0x0D});
  transcript.Render({0x0A, 0x41});
  const std::uint32_t before = transcript.encoder.GetUnflushedBytes();
  transcript.Flush();

  EXPECT_EQ(before, 3U);
  EXPECT_EQ(transcript.encoder.GetUnflushedBytes(), 0U);
}

TEST(FlushPending, WithNothingPending_AppendsNothingAndCountsNoBytes) {
  RecordingTranscript transcript;
  transcript.Show({{0x0D}});

  transcript.Show({{0x0A}});

  EXPECT_EQ(transcript.appended, std::vector<std::u16string>{u"\r\n"});
  EXPECT_EQ(transcript.encoder.GetUnflushedBytes(), 0U);
}

TEST(FlushPending, ManyReads_AreAppendedInOneBatch) {
  RecordingTranscript transcript;

  transcript.Show({{0x41}, {0x42}, {0x43}});

  EXPECT_EQ(transcript.appended, std::vector<std::u16string>{u"ABC"});
}

TEST(ClearTranscript, WithTextShownAndPending_LeavesNeither) {
  RecordingTranscript transcript;
  transcript.Show({{0x41}});
  transcript.Render({0x42});

  transcript.encoder.ClearTranscript(transcript);
  transcript.Flush();

  EXPECT_EQ(transcript.GetShown(), u"");
  EXPECT_EQ(transcript.appended, std::vector<std::u16string>{u"A"});
}

TEST(ClearTranscript, WithUnflushedBytes_LeavesThemCounted) {
  RecordingTranscript transcript;
  transcript.Render({0x41, 0x42});

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.encoder.GetUnflushedBytes(), 2U);
}

TEST(ClearTranscript, BetweenCRAndLF_LetsTheLFBreakTheLine) {
  RecordingTranscript transcript;
  transcript.Show({{0x0D}});

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.Show({{0x0A, 0x41}}), u"\r\nA");
}

TEST(ClearTranscript, InTheMiddleOfALineOfPairs_BeginsALine) {
  RecordingTranscript transcript(DisplayFormat::Hexadecimal);
  transcript.Show({CountUp(0x01, 5)});

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.Show({CountUp(0x11, 17)}), u"11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F 20 \r\n21 ");
}

TEST(ClearTranscript, KeepsTheFormat) {
  RecordingTranscript transcript(DisplayFormat::Hexadecimal);

  transcript.encoder.ClearTranscript(transcript);

  EXPECT_EQ(transcript.encoder.GetDisplayFormat(), DisplayFormat::Hexadecimal);
}

TEST(SetDisplayFormat, FromEachToEach_EmptiesTheTranscriptAndBeginsALine) {
  const struct {
    DisplayFormat format;
    std::u16string_view expected;
  } formats[] = {{DisplayFormat::ASCII, u"AB"},
                 {DisplayFormat::Hexadecimal, u"41 42 "},
                 {DisplayFormat::Hybrid, u"41 42                                              AB              "}};
  for (const auto& from : formats) {
    for (const auto& to : formats) {
      RecordingTranscript transcript(from.format);
      transcript.Show({CountUp(0x61, 5)});
      transcript.Render(CountUp(0x71, 2));

      transcript.encoder.SetDisplayFormat(transcript, to.format);
      const std::u16string emptied = transcript.GetShown();

      EXPECT_EQ(emptied, u"");
      EXPECT_EQ(transcript.encoder.GetDisplayFormat(), to.format);
      EXPECT_EQ(transcript.Show({{0x41, 0x42}}), to.expected);
    }
  }
}

TEST(TranscriptEncoder, RenderedOnTwoThreadsWhileFlushed_ShowsOrCountsEveryUnit) {
  constexpr std::size_t kRounds = 2'000;
  RecordingTranscript transcript;
  const auto render = [&transcript](std::uint8_t aByte) {
    const Bytes bytes(7, aByte);
    for (std::size_t i = 0; i < kRounds; ++i)
      transcript.Render(bytes);
  };

  std::jthread received(render, std::uint8_t{0x41});
  std::jthread echoed(render, std::uint8_t{0x42});
  for (std::size_t i = 0; i < kRounds; ++i)
    transcript.Flush();
  received.join();
  echoed.join();
  transcript.Flush();

  std::size_t appended = 0;
  for (const std::u16string& batch : transcript.appended)
    appended += batch.size();
  EXPECT_EQ(appended + transcript.encoder.GetDroppedUnits(), 2 * 7 * kRounds);
  EXPECT_EQ(transcript.encoder.GetUnflushedBytes(), 0U);
}

} // namespace krgui
