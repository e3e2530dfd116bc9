// What does KrStream cost on top of the receiver that it stands on? The same camera, an independent program on
// loopback, is streamed through KrStream and through bare Aravis in one run. The camera bursts as fast as it is told
// to, so frames a second show whether we keep up, and CPU time per frame what it costs. The limit is a memcpy of one
// frame. Run it in a network namespace (scripts/bench.sh does).

#include "fakecamera.h"
#include "figure.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <arv.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

constexpr int kFrames = 300;
constexpr std::uint32_t kWidth = 1920;
constexpr std::uint32_t kHeight = 1080;
constexpr double kFrameRate = 150.0;
constexpr std::size_t kBuffers = 16;
constexpr gint kPacketBytes = 16384; // What KrStream finds on loopback.

struct Measured {
  double framesPerSecond = 0;
  double cpuMsPerFrame = 0;
  int incomplete = 0;
};

double GetProcessCpuMs() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

// Frames and CPU time from the first frame to the last.
template <typename NextFrame>
Measured MeasureFrames(const NextFrame& aNextFrame) {
  Measured measured;
  aNextFrame();
  const double cpuBegin = GetProcessCpuMs();
  const auto begin = std::chrono::steady_clock::now();
  for (int frame = 0; frame < kFrames; ++frame)
    measured.incomplete += aNextFrame() ? 0 : 1;
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
  measured.framesPerSecond = kFrames / time.count();
  measured.cpuMsPerFrame = (GetProcessCpuMs() - cpuBegin) / kFrames;
  return measured;
}

[[noreturn]] void Fail(const char* aWhat, const char* aWhy) {
  std::fprintf(stderr, "%s: %s\n", aWhat, aWhy);
  std::exit(1);
}

void Require(const KrResult& aResult, const char* aWhat) {
  if (!aResult.IsOK())
    Fail(aWhat, aResult.GetDescription().CStr());
}

struct Unreference {
  void operator()(void* aObject) const { g_object_unref(aObject); }
};
template <typename Object>
using ObjectPointer = std::unique_ptr<Object, Unreference>;

ObjectPointer<ArvCamera> SetUpCamera() {
  GError* error = nullptr;
  ObjectPointer<ArvCamera> camera(arv_camera_new("127.0.0.1", &error));
  if (!camera)
    Fail("open the camera", error->message);
  arv_camera_set_region(camera.get(), 0, 0, kWidth, kHeight, &error);
  arv_camera_set_frame_rate(camera.get(), kFrameRate, &error);
  arv_camera_gv_set_packet_size(camera.get(), kPacketBytes, &error);
  if (error)
    Fail("set up the camera", error->message);
  return camera;
}

Measured MeasureAravis() {
  const FakeCamera process;
  ObjectPointer<ArvCamera> camera = SetUpCamera();
  GError* error = nullptr;
  ObjectPointer<ArvStream> stream(arv_camera_create_stream(camera.get(), nullptr, nullptr, &error));
  if (!stream)
    Fail("create the bare stream", error->message);
  g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size", 8 << 20,
               nullptr);
  for (std::size_t i = 0; i < kBuffers; ++i)
    arv_stream_push_buffer(stream.get(), arv_buffer_new(kWidth * kHeight, nullptr));
  arv_camera_start_acquisition(camera.get(), &error);
  const Measured measured = MeasureFrames([&] {
    ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream.get(), 5'000'000);
    if (!buffer)
      Fail("retrieve a frame", "none came within 5 s");
    const bool isComplete = arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS;
    arv_stream_push_buffer(stream.get(), buffer);
    return isComplete;
  });
  arv_camera_stop_acquisition(camera.get(), &error);
  return measured;
}

Measured MeasureKrStream() {
  const FakeCamera process;
  SetUpCamera(); // The settings stay in the camera; control is given back.
  KrSystem system;
  const KrDeviceInfo* info = nullptr;
  Require(system.FindDevice("127.0.0.1", &info), "find the camera");
  std::unique_ptr<KrDevice> device;
  Require(KrDevice::Open(*info, KrDeviceAccess::Control, device), "open the camera");
  KrStream stream(*device, kBuffers);
  Require(stream.Start(), "start the stream");
  return MeasureFrames([&] {
    KrBuffer* buffer = nullptr;
    Require(stream.Retrieve(buffer, 5000), "retrieve a frame");
    const bool isComplete = buffer->GetStatus() == KrBufferStatus::Complete;
    Require(stream.Release(buffer), "release a frame");
    return isComplete;
  });
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleTest(&aArgumentCount, aArguments); // The camera process reports its failures by it.
  Require(KrInstallTransports({.gigEVision = true, .simulation = false}), "install the transports");

  const Measured bare = MeasureAravis();
  const Measured ours = MeasureKrStream();
  std::vector<std::uint8_t> source(kWidth * kHeight, 1);
  std::vector<std::uint8_t> destination(source.size());
  const double copyMs =
      benchmarks::MeasureBestMs(50, [&] { std::memcpy(destination.data(), source.data(), source.size()); });

  benchmarks::PrintFigure("stream_frames_per_second", ours.framesPerSecond, "1/s", "bare_aravis", bare.framesPerSecond);
  benchmarks::PrintFigure("stream_cpu_per_frame", ours.cpuMsPerFrame, "ms", "bare_aravis", bare.cpuMsPerFrame);
  benchmarks::PrintFigure("stream_cpu_per_frame_limit", ours.cpuMsPerFrame, "ms", "memcpy_of_frame", copyMs);
  benchmarks::PrintFigure("stream_incomplete", ours.incomplete, "frames", "bare_aravis", bare.incomplete);
  return 0;
}
