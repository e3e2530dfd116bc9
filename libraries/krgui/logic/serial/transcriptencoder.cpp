#include "logic/serial/transcriptencoder.h"

#include <algorithm>

namespace krgui {

namespace {

constexpr int kLineLength = 16;
constexpr std::u16string_view kLineEnd = u"\r\n";
constexpr std::u16string_view kBlankPair = u"   ";
constexpr std::u16string_view kColumnGap = u"   ";
constexpr std::u16string_view kDigits = u"0123456789ABCDEF";

constexpr std::uint8_t kNull = 0x00;
constexpr std::uint8_t kLF = 0x0A;
constexpr std::uint8_t kCR = 0x0D;

// A blank byte is a dot too, so that it differs from a position without a byte.
char16_t GetColumnCharacter(std::uint8_t aByte) {
  return aByte >= 0x21 && aByte <= 0x7E ? static_cast<char16_t>(aByte) : u'.';
}

} // namespace

TranscriptEncoder::TranscriptEncoder() {
  mPending.reserve(kPendingLimit);
}

DisplayFormat TranscriptEncoder::GetDisplayFormat() const {
  const std::lock_guard lock(mMutex);
  return mDisplayFormat;
}

void TranscriptEncoder::RenderBytes(const std::uint8_t* aData, std::uint32_t aCount) {
  const std::lock_guard lock(mMutex);
  std::for_each(aData, aData + aCount, [this](std::uint8_t aByte) { RenderByte(aByte); });
  mUnflushedBytes += aCount;
}

void TranscriptEncoder::FlushPending(ITranscript& aTranscript) {
  const std::lock_guard lock(mMutex);
  if (!mPending.empty()) {
    if (mDisplayFormat == DisplayFormat::Hybrid && mColumn > 0)
      CompleteHybridLine(mColumn);
    if (mRemovesLastLine)
      aTranscript.RemoveLastLine();
    mRemovesLastLine = false;
    aTranscript.Append(mPending);
    mPending.clear();
  }
  mUnflushedBytes = 0;
}

void TranscriptEncoder::ClearTranscript(ITranscript& aTranscript) {
  const std::lock_guard lock(mMutex);
  BeginTranscript(aTranscript);
}

void TranscriptEncoder::SetDisplayFormat(ITranscript& aTranscript, DisplayFormat aFormat) {
  const std::lock_guard lock(mMutex);
  BeginTranscript(aTranscript);
  mDisplayFormat = aFormat;
}

void TranscriptEncoder::RenderByte(std::uint8_t aByte) {
  switch (mDisplayFormat) {
  case DisplayFormat::ASCII:
    return RenderASCII(aByte);
  case DisplayFormat::Hexadecimal:
    return RenderHexadecimal(aByte);
  case DisplayFormat::Hybrid:
    return RenderHybrid(aByte);
  }
}

void TranscriptEncoder::RenderASCII(std::uint8_t aByte) {
  if (aByte == kCR || (aByte == kLF && mPreviousByte != kCR)) {
    Add(kLineEnd);
  } else if (aByte != kLF) {
    const char16_t unit = aByte == kNull ? u' ' : static_cast<char16_t>(aByte);
    Add({&unit, 1});
  }
  mPreviousByte = aByte;
}

void TranscriptEncoder::RenderHexadecimal(std::uint8_t aByte) {
  AddHexPair(aByte);
  mColumn = (mColumn + 1) % kLineLength;
  if (mColumn == 0)
    Add(kLineEnd);
}

void TranscriptEncoder::RenderHybrid(std::uint8_t aByte) {
  mLineBytes[static_cast<std::size_t>(mColumn)] = aByte;
  AddHexPair(aByte);
  mColumn = (mColumn + 1) % kLineLength;
  if (mColumn == 0)
    CompleteHybridLine(kLineLength);
}

void TranscriptEncoder::CompleteHybridLine(int aCount) {
  if (!mIsLineClosed)
    RestartHybridLine();
  for (int missing = aCount; missing < kLineLength; ++missing)
    Add(kBlankPair);
  Add(kColumnGap);
  for (int position = 0; position < kLineLength; ++position) {
    const char16_t unit = position < aCount ? GetColumnCharacter(mLineBytes[static_cast<std::size_t>(position)]) : u' ';
    Add({&unit, 1});
  }
  mIsLineClosed = mColumn == 0;
  if (mIsLineClosed)
    Add(kLineEnd);
}

// A line that is shown in part was flushed in the middle, and its completion closes it before another one begins: what
// is pending is nothing but its hexadecimal digits since that flush, which are rendered again with those before.
void TranscriptEncoder::RestartHybridLine() {
  mPending.clear();
  mRemovesLastLine = true;
  const int count = mColumn > 0 ? mColumn : kLineLength;
  std::for_each(mLineBytes.begin(), mLineBytes.begin() + count, [this](std::uint8_t aByte) { AddHexPair(aByte); });
}

void TranscriptEncoder::AddHexPair(std::uint8_t aByte) {
  const char16_t pair[] = {kDigits[aByte >> 4], kDigits[aByte & 0x0F], u' '};
  Add({pair, std::size(pair)});
}

// Each unit is kept or dropped for itself: a pair or a line end may be cut in the middle.
void TranscriptEncoder::Add(std::u16string_view aText) {
  const std::size_t kept = std::min(aText.size(), kPendingLimit - mPending.size());
  mPending.append(aText.substr(0, kept));
  mDroppedUnits += aText.size() - kept;
}

void TranscriptEncoder::BeginTranscript(ITranscript& aTranscript) {
  mColumn = 0;
  mIsLineClosed = true;
  mPending.clear();
  aTranscript.SetEmpty();
  mRemovesLastLine = false;
  mPreviousByte = kNull;
}

} // namespace krgui
