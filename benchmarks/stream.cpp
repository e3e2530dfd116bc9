// What does KrStream cost on top of the receiver that it stands on? The same camera, an independent program on
// loopback, is streamed through KrStream and through bare Aravis, which take turns. The camera bursts each frame as
// fast as it is told to, and sends so many frames a second and no more: that all of them come, and whole, is the most
// that can be, so what tells is the CPU time of a frame, at two sizes. The least that it can be is a memcpy of one
// frame. Printed are the medians of the turns. Run it in a network namespace (scripts/bench.sh does).

#include "aravispointer.h"
#include "checked.h"
#include "fakecamera.h"
#include "figure.h"
#include "growth.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "statistics.h"
#include "timing.h"

#include <arv.h>

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using benchmarks::Check;
using benchmarks::Fail;
using benchmarks::Limit;
using benchmarks::Peer;
using benchmarks::PrintFigure;

constexpr int kFrames = 300;
constexpr int kTurns = 3;
constexpr double kFrameRate = 150.0;
constexpr std::size_t kBuffers = 16;
constexpr gint kPacketBytes = 16384; // What KrStream finds on loopback.
constexpr const char* kPeer = "bare_aravis";

struct Size {
  std::uint32_t width;
  std::uint32_t height;
  std::size_t GetBytes() const { return std::size_t{width} * height; }
};

constexpr Size kSmall = {640, 480};
constexpr Size kLarge = {1920, 1080};

struct Measured {
  double wholePerSecond = 0;
  double cpuMsPerFrame = 0;
  double incomplete = 0;
};

// Frames and CPU time from the first frame to the last.
template <typename NextFrame>
Measured MeasureFrames(const NextFrame& aNextFrame) {
  Measured measured;
  aNextFrame();
  const double cpuBegin = benchmarks::GetProcessMs();
  const double ms = benchmarks::MeasureMs(benchmarks::Timing::Wall, [&] {
    for (int frame = 0; frame < kFrames; ++frame)
      measured.incomplete += aNextFrame() ? 0 : 1;
  });
  measured.wholePerSecond = (kFrames - measured.incomplete) / ms * 1e3;
  measured.cpuMsPerFrame = (benchmarks::GetProcessMs() - cpuBegin) / kFrames;
  return measured;
}

void Require(const char* aWhat, const AravisError& aError) {
  if (aError.IsSet())
    Fail(std::string(aWhat) + ": " + aError.GetText());
}

AravisPointer<ArvCamera> SetUpCamera(const Size& aSize) {
  AravisError error;
  AravisPointer<ArvCamera> camera(arv_camera_new("127.0.0.1", error.Take()));
  Require("open the camera", error);
  arv_camera_set_region(camera.get(), 0, 0, static_cast<gint>(aSize.width), static_cast<gint>(aSize.height),
                        error.Take());
  Require("set its region", error);
  arv_camera_set_frame_rate(camera.get(), kFrameRate, error.Take());
  Require("set its rate", error);
  arv_camera_gv_set_packet_size(camera.get(), kPacketBytes, error.Take());
  Require("set its packets' size", error);
  return camera;
}

Measured MeasureAravis(const Size& aSize) {
  const FakeCamera process;
  const AravisPointer<ArvCamera> camera = SetUpCamera(aSize);
  AravisError error;
  const AravisPointer<ArvStream> stream(arv_camera_create_stream(camera.get(), nullptr, nullptr, error.Take()));
  Require("create the bare stream", error);
  g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size", 8 << 20,
               nullptr);
  for (std::size_t i = 0; i < kBuffers; ++i)
    arv_stream_push_buffer(stream.get(), arv_buffer_new(aSize.GetBytes(), nullptr));
  arv_camera_start_acquisition(camera.get(), error.Take());
  Require("start the camera", error);
  const Measured measured = MeasureFrames([&] {
    ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream.get(), 5'000'000);
    if (!buffer)
      Fail("no frame came within 5 s.");
    const bool isComplete = arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS;
    arv_stream_push_buffer(stream.get(), buffer);
    return isComplete;
  });
  arv_camera_stop_acquisition(camera.get(), error.Take());
  Require("stop the camera", error);
  return measured;
}

Measured MeasureKrStream(const Size& aSize) {
  const FakeCamera process;
  SetUpCamera(aSize); // The settings stay in the camera; control is given back.
  KrSystem system;
  const KrDeviceInfo* info = nullptr;
  Check(system.FindDevice("127.0.0.1", &info));
  std::unique_ptr<KrDevice> device;
  Check(KrDevice::Open(*info, KrDeviceAccess::Control, device));
  KrStream stream(*device, kBuffers);
  Check(stream.Start());
  return MeasureFrames([&] {
    KrBuffer* buffer = nullptr;
    Check(stream.Retrieve(buffer, 5000));
    const bool isComplete = buffer->GetStatus() == KrBufferStatus::Complete;
    Check(stream.Release(buffer));
    return isComplete;
  });
}

double MeasureCopyMs(const Size& aSize) {
  const std::vector<std::uint8_t> source(aSize.GetBytes(), 1);
  std::vector<std::uint8_t> destination(source.size());
  return benchmarks::MeasureBestMs(benchmarks::Timing::Thread, 50,
                                   [&] { std::memcpy(destination.data(), source.data(), source.size()); });
}

// Prints the figures of a size; returns what a frame of it costs.
benchmarks::SizedCost Measure(const Size& aSize) {
  std::vector<Measured> ours;
  std::vector<Measured> bare;
  for (int turn = 0; turn < kTurns; ++turn) {
    ours.push_back(MeasureKrStream(aSize));
    bare.push_back(MeasureAravis(aSize));
  }
  const std::string name = "stream_" + std::to_string(aSize.width) + "x" + std::to_string(aSize.height);
  const auto print = [&](const char* aWhat, double Measured::*aMember, const char* aUnit,
                         const std::optional<Limit>& aLimit) {
    PrintFigure({name + aWhat, benchmarks::GetMedian(ours, aMember), aUnit,
                 Peer{kPeer, benchmarks::GetMedian(bare, aMember)}, aLimit});
  };
  print("_whole_frames_per_second", &Measured::wholePerSecond, "1/s", Limit{"rate_of_the_camera", kFrameRate});
  print("_incomplete", &Measured::incomplete, "frames", {});
  print("_cpu_per_frame", &Measured::cpuMsPerFrame, "ms", {});
  const double cpuMs = benchmarks::GetMedian(ours, &Measured::cpuMsPerFrame);
  PrintFigure({name + "_cpu_per_frame", cpuMs, "ms", Peer{"memcpy_of_frame", MeasureCopyMs(aSize)}});
  return {static_cast<double>(aSize.GetBytes()), cpuMs, benchmarks::GetMedian(bare, &Measured::cpuMsPerFrame)};
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleTest(&aArgumentCount, aArguments); // The camera process reports its failures by it.
  Check(KrInstallTransports({.gigEVision = true, .simulation = false}));
  const benchmarks::SizedCost small = Measure(kSmall);
  const benchmarks::SizedCost large = Measure(kLarge);
  benchmarks::PrintGrowth("stream_cpu_per_byte", small, large, kPeer);
  return 0;
}
