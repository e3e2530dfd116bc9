#pragma once
// Recordings made and read back in tests: frames that can be told apart, and the index as a reader of plain text has
// it.

#include "await.h"
#include "recording/recorder.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace krviewer {

inline constexpr std::uint32_t kFrameWidth = 16;
inline constexpr std::uint32_t kFrameHeight = 8;
inline constexpr std::size_t kFrameBytes = 128;

/// A whole Mono8 frame whose pixels all hold its number.
inline KrBuffer MakeNumberedFrame(std::uint64_t aFrameID, std::uint32_t aWidth = kFrameWidth,
                                  KrPixelType aType = KrPixel::Mono8) {
  KrBuffer frame;
  EXPECT_TRUE(frame.GetImage()->Alloc(aWidth, kFrameHeight, aType).IsOK());
  std::memset(frame.GetDataPointer(), static_cast<int>(aFrameID & 0xFFU), frame.GetSize());
  frame.SetAcquiredSize(frame.GetSize());
  frame.SetStatus(KrBufferStatus::Complete);
  frame.SetFrameID(aFrameID);
  frame.SetTimestampNs(aFrameID * 1000);
  frame.SetHostTimestampNs(aFrameID * 2000);
  return frame;
}

/// The lines of an index by the names of their columns.
using IndexLines = std::vector<std::map<std::string, std::string>>;

inline std::vector<std::string> SplitLine(const std::string& aLine) {
  std::vector<std::string> cells;
  std::stringstream stream(aLine);
  for (std::string cell; std::getline(stream, cell, ',');)
    cells.push_back(cell);
  return cells;
}

inline IndexLines ReadIndex(const std::string& aFolder) {
  std::stringstream stream(TemporaryFolder::ReadFile(aFolder + "/index.csv"));
  std::string line;
  std::getline(stream, line);
  const std::vector<std::string> columns = SplitLine(line);
  IndexLines lines;
  while (std::getline(stream, line)) {
    const std::vector<std::string> cells = SplitLine(line);
    EXPECT_EQ(cells.size(), columns.size()) << line;
    std::map<std::string, std::string>& entry = lines.emplace_back();
    for (std::size_t index = 0; index < cells.size() && index < columns.size(); ++index)
      entry[columns[index]] = cells[index];
  }
  return lines;
}

/// One column of an index.
inline std::vector<std::string> ReadColumn(const std::string& aFolder, const std::string& aColumn) {
  std::vector<std::string> cells;
  for (auto& line : ReadIndex(aFolder))
    cells.push_back(line[aColumn]);
  return cells;
}

/// The value of a key in a recording's text; empty without one.
inline std::string ReadText(const std::string& aFolder, const std::string& aKey) {
  std::stringstream stream(TemporaryFolder::ReadFile(aFolder + "/recording.txt"));
  for (std::string line; std::getline(stream, line);)
    if (line.starts_with(aKey + "="))
      return line.substr(aKey.size() + 1);
  return {};
}

class RecorderTest : public testing::Test {
protected:
  RecordingOptions MakeOptions() const {
    RecordingOptions options;
    options.folder = mPlace.GetFile("recording");
    options.freeDiskBytes = 0;
    options.deviceID = "camera 7";
    return options;
  }
  void Give(std::uint64_t aFirst, std::uint64_t aLast) {
    for (std::uint64_t frameID = aFirst; frameID <= aLast; ++frameID)
      mRecorder.OnFrame(MakeNumberedFrame(frameID), frameID * 10);
  }
  RecordingProgress AwaitEnd() {
    EXPECT_TRUE(krtest::Await([this] { return mRecorder.GetProgress().state == RecordingState::Ended; }));
    const RecordingProgress progress = mRecorder.GetProgress();
    const RecordingCounts& counts = progress.counts;
    EXPECT_EQ(counts.received, counts.written + counts.passedOver + counts.incomplete + counts.queueFull +
                                   counts.failed + counts.abandoned);
    EXPECT_EQ(progress.queuedFrames, 0U);
    return progress;
  }
  RecordingProgress StopAndAwaitEnd() {
    mRecorder.Stop();
    return AwaitEnd();
  }

  TemporaryFolder mPlace;
  Recorder mRecorder;
};

} // namespace krviewer
