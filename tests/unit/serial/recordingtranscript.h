#pragma once
// A transcript as a reader would see it, told apart from what shows it: it follows the changes that a RollingText
// reports, so that what is reported must add up to the text.

#include "logic/serial/rollingtext.h"
#include "logic/serial/transcriptencoder.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace krgui {

/// Builds a text of its own from the changes it hears of.
class RecordingView : public IRollingView {
public:
  void OnTextChanged(std::u16string_view aText, std::size_t aErased, std::u16string_view aAppended) override {
    ASSERT_LE(aErased, shown.size());
    shown.erase(0, aErased);
    shown += aAppended;
    EXPECT_EQ(shown, aText);
    ++changes;
    lastErased = aErased;
  }
  void OnTextCut(std::u16string_view aText) override {
    ASSERT_LE(aText.size(), shown.size());
    shown.resize(aText.size());
    EXPECT_EQ(shown, aText);
  }

  std::u16string shown;
  int changes = 0;
  std::size_t lastErased = 0;
};

/// A whole transcript: an encoder, the rolling text behind it, and a view.
class RecordingTranscript : public ITranscript {
public:
  static constexpr std::size_t kLimit = 32'768;

  explicit RecordingTranscript(DisplayFormat aFormat = DisplayFormat::ASCII, std::size_t aLimit = kLimit) {
    mText.SetLimit(aLimit);
    encoder.SetDisplayFormat(*this, aFormat);
  }

  void RemoveLastLine() override { mText.RemoveLastLine(); }
  void Append(std::u16string_view aText) override {
    appended.emplace_back(aText);
    mText.Append(aText);
  }
  void SetEmpty() override { mText.SetEmpty(); }

  void Render(const std::vector<std::uint8_t>& aBytes) {
    encoder.RenderBytes(aBytes.data(), static_cast<std::uint32_t>(aBytes.size()));
  }
  void Flush() { encoder.FlushPending(*this); }
  /// What is shown once all is flushed.
  std::u16string Show(std::initializer_list<std::vector<std::uint8_t>> aReads) {
    for (const std::vector<std::uint8_t>& read : aReads)
      Render(read);
    Flush();
    return GetShown();
  }
  std::u16string GetShown() const { return mView.shown; }

  TranscriptEncoder encoder;
  std::vector<std::u16string> appended;

private:
  RecordingView mView;
  RollingText mText{mView};
};

/// aCount bytes that count up from aFirst.
inline std::vector<std::uint8_t> CountUp(std::uint8_t aFirst, std::size_t aCount) {
  std::vector<std::uint8_t> bytes(aCount);
  for (std::size_t i = 0; i < aCount; ++i)
    bytes[i] = static_cast<std::uint8_t>(aFirst + i);
  return bytes;
}

} // namespace krgui
