#pragma once
// Bytes of the line as the transcript shows them, gathered until the user-interface thread takes them. When it does so,
// and how the transcript keeps its text, is left to others.

#include "logic/serial/displayformat.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace krgui {

/// What shows the text.
///
/// Thread: user interface.
class ITranscript {
public:
  virtual ~ITranscript() = default;
  /// Takes the last line away, which has no end yet.
  virtual void RemoveLastLine() = 0;
  virtual void Append(std::u16string_view aText) = 0;
  /// Empties the shown text.
  virtual void SetEmpty() = 0;
};

/// The encoding of the transcript. How the bytes were cut into calls does not show in what is shown in the end.
///
/// Thread: RenderBytes, GetUnflushedBytes and GetDroppedUnits from any thread; all others on the user-interface thread.
/// The transcript is called with the object's lock held: it must not call back.
class TranscriptEncoder {
public:
  /// The pending text holds this many UTF-16 units; what comes beyond is dropped, unit by unit, until it is taken.
  static constexpr std::size_t kPendingLimit = 16'383;

  TranscriptEncoder();

  DisplayFormat GetDisplayFormat() const;
  /// Renders bytes into the pending text.
  void RenderBytes(const std::uint8_t* aData, std::uint32_t aCount);
  /// Hands the pending text over; a partial hybrid line with its ASCII column, in place of the one shown before.
  void FlushPending(ITranscript& aTranscript);
  /// Empties the transcript and begins a line; what is unflushed stays counted.
  void ClearTranscript(ITranscript& aTranscript);
  /// The same, then the other format.
  void SetDisplayFormat(ITranscript& aTranscript, DisplayFormat aFormat);

  /// Bytes rendered since the last flush.
  std::uint32_t GetUnflushedBytes() const { return mUnflushedBytes; }
  /// UTF-16 units that did not fit into the pending text, since the beginning.
  std::uint64_t GetDroppedUnits() const { return mDroppedUnits; }

private:
  void RenderByte(std::uint8_t aByte);
  void RenderASCII(std::uint8_t aByte);
  void RenderHexadecimal(std::uint8_t aByte);
  void RenderHybrid(std::uint8_t aByte);
  void CompleteHybridLine(int aCount);
  void RestartHybridLine();
  void AddHexPair(std::uint8_t aByte);
  void Add(std::u16string_view aText);
  void BeginTranscript(ITranscript& aTranscript);

  mutable std::mutex mMutex; // Guards the members from here on, but for the two atomics, which are read without it.
  DisplayFormat mDisplayFormat = DisplayFormat::ASCII;
  std::u16string mPending; // Reserved once; never grows.
  std::int32_t mColumn = 0;
  std::array<std::uint8_t, 16> mLineBytes{};
  bool mIsLineClosed = true;
  bool mRemovesLastLine = false;
  std::uint8_t mPreviousByte = 0;
  std::atomic<std::uint32_t> mUnflushedBytes = 0;
  std::atomic<std::uint64_t> mDroppedUnits = 0;
};

} // namespace krgui
