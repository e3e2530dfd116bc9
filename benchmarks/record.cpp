// How fast a recording takes frames of 1920 x 1080 Mono8 to the disk as raw files, beside a plain program that writes
// the same bytes to as many files: into the system's memory, and until they are on the disk. And what a frame costs the
// thread that takes it from the camera. All is written into the folder that TMPDIR names.

#include "checked.h"
#include "figure.h"
#include "krbuffer/krbuffer.h"
#include "recording/recorder.h"
#include "timing.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kWidth = 1920;
constexpr std::uint32_t kHeight = 1080;
constexpr int kFrames = 300; // 622 MB: three seconds at 100 frames a second.
constexpr int kRounds = 3;

KrBuffer MakeFrame() {
  KrBuffer frame;
  benchmarks::Check(frame.GetImage()->Alloc(kWidth, kHeight, KrPixel::Mono8));
  for (std::size_t index = 0; index < frame.GetSize(); ++index)
    frame.GetDataPointer()[index] = static_cast<std::uint8_t>(index * 31);
  frame.SetAcquiredSize(frame.GetSize());
  frame.SetStatus(KrBufferStatus::Complete);
  return frame;
}

double GetSeconds(std::chrono::steady_clock::time_point aBegin) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - aBegin).count();
}

void WritePlainly(const KrBuffer& aFrame, const fs::path& aFolder) {
  fs::create_directory(aFolder);
  for (int number = 0; number < kFrames; ++number) {
    const std::string path = (aFolder / std::to_string(number)).string();
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
    const bool isWritten =
        ::write(file, aFrame.GetDataPointer(), aFrame.GetSize()) == static_cast<ssize_t>(aFrame.GetSize());
    if (::close(file) != 0 || !isWritten)
      benchmarks::Fail("a plain file cannot be written.");
  }
}

// As fast as the recorder takes them: a frame that finds its memory full is given once more.
void Record(const KrBuffer& aFrame, const fs::path& aFolder) {
  krviewer::RecordingOptions options;
  options.folder = aFolder.string();
  options.mostFrames = kFrames;
  options.freeDiskBytes = 0;
  options.mostQueuedBytes = std::uint64_t{64} << 20U;
  krviewer::Recorder recorder;
  benchmarks::Check(recorder.Start(options));
  while (recorder.GetProgress().state == krviewer::RecordingState::Recording) {
    recorder.OnFrame(aFrame, 0);
    if (recorder.GetProgress().queuedBytes + aFrame.GetSize() > options.mostQueuedBytes)
      std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  while (recorder.IsBusy())
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  if (recorder.GetProgress().counts.written != kFrames)
    benchmarks::Fail("not all frames were recorded.");
}

/// Seconds until the system has taken the bytes, and until the disk has.
struct Times {
  double taken = 1e9;
  double onDisk = 1e9;

  template <typename Work>
  void Measure(const fs::path& aFolder, const Work& aWork) {
    ::sync(); // What others have left to be written.
    const auto begin = std::chrono::steady_clock::now();
    aWork(aFolder);
    taken = std::min(taken, GetSeconds(begin));
    ::sync();
    onDisk = std::min(onDisk, GetSeconds(begin));
    fs::remove_all(aFolder);
  }
};

// The best of some batches, each of which the memory takes as a whole.
double MeasureTakingMs(const KrBuffer& aFrame, const fs::path& aFolder) {
  constexpr int kTaken = 30; // Within the memory, so that none is refused.
  constexpr int kBatches = 6;
  krviewer::RecordingOptions options;
  options.folder = aFolder.string();
  options.freeDiskBytes = 0;
  krviewer::Recorder recorder;
  benchmarks::Check(recorder.Start(options));
  const auto take = [&](int aCount) {
    for (int index = 0; index < aCount; ++index)
      recorder.OnFrame(aFrame, 0);
  };
  double bestMs = std::numeric_limits<double>::max();
  for (int batch = 0; batch < kBatches; ++batch) {
    const double ms = benchmarks::MeasureMs(benchmarks::Timing::Thread, [&] { take(kTaken); });
    if (batch > 0) // The first one has the memory from the system.
      bestMs = std::min(bestMs, ms);
    while (recorder.GetProgress().queuedFrames > 0)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return bestMs / kTaken;
}

double MeasureCopyMs(const KrBuffer& aFrame) {
  std::vector<std::uint8_t> destination(aFrame.GetSize());
  return benchmarks::MeasureBestMs(benchmarks::Timing::Thread, 50,
                                   [&] { std::memcpy(destination.data(), aFrame.GetDataPointer(), aFrame.GetSize()); });
}

} // namespace

int main() {
  const char* const place = std::getenv("TMPDIR");
  std::string name = std::string(place ? place : "/tmp") + "/krbench-XXXXXX";
  if (!::mkdtemp(name.data()))
    benchmarks::Fail("no folder can be made as " + name + ".");
  const fs::path folder = name;
  const KrBuffer frame = MakeFrame();
  Times plain;
  Times recorded;
  for (int round = 0; round < kRounds; ++round) {
    plain.Measure(folder / "plain", [&](const fs::path& aFolder) { WritePlainly(frame, aFolder); });
    recorded.Measure(folder / "recording", [&](const fs::path& aFolder) { Record(frame, aFolder); });
  }
  const double taking = MeasureTakingMs(frame, folder / "recording");
  fs::remove_all(folder);
  using benchmarks::Peer;
  benchmarks::PrintFigure({"record_raw_into_memory_1920x1080", kFrames / recorded.taken, "frames/s",
                           Peer{"plain_write", kFrames / plain.taken}});
  benchmarks::PrintFigure({"record_raw_onto_disk_1920x1080", kFrames / recorded.onDisk, "frames/s",
                           Peer{"plain_write", kFrames / plain.onDisk}});
  benchmarks::PrintFigure({"record_taking_1920x1080_mono8", taking, "ms/frame", Peer{"memcpy", MeasureCopyMs(frame)},
                           benchmarks::Limit{"period_at_100_frames_a_second", 10}});
  return 0;
}
