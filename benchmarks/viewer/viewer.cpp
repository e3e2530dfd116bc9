// What does it cost to look at a camera, and how soon is its picture there? krviewer and the viewer that comes with
// Aravis show the same camera, an independent program on loopback, in windows of the same size, one after the other in
// turns. The processor time is that of all threads of the viewer, and besides that of the X server, between two moments
// while it shows; pictures are counted by what is seen on the screen. The start is from running the program to the
// first change of the picture, for the peer with the two clicks that it wants, made as soon as they can be. Run it in a
// network namespace and a display of its own (scripts/bench.sh does).

#include "fakecamera.h"
#include "figure.h"
#include "pixelwatch.h"
#include "viewerprogram.h"

#include <arv.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using benchmarks::PixelWatch;
using benchmarks::ViewerProgram;
using benchmarks::WindowPoint;
using Clock = std::chrono::steady_clock;

constexpr int kImageWidth = 1920;
constexpr int kImageHeight = 1080;
constexpr gint kPacketBytes = 16384; // What both find on loopback.
constexpr int kWindowWidth = 1600;
constexpr int kWindowHeight = 1000;
constexpr WindowPoint kPicturePoint{520, 500}; // Within the picture of both.
constexpr std::chrono::seconds kWarmUp{3};
constexpr std::chrono::seconds kSpan{8};
constexpr std::chrono::seconds kLimit{60};
constexpr const char* kAddress = "127.0.0.1";

// Of the peer's window, as it begins: the second row of its list is the camera, as the first one is Aravis' built-in
// one.
constexpr WindowPoint kPeerRow{141, 118};
constexpr WindowPoint kPeerPlay{78, 277}; // Once a row is chosen.

// Without the features beside it our picture is as large as the peer's, which has nothing beside.
constexpr const char* kHideFeatures = "alt+1";
constexpr const char* kFitPicture = "ctrl+0";

[[noreturn]] void Fail(const char* aText) {
  std::fprintf(stderr, "It cannot be measured: %s\n", aText);
  std::exit(1);
}

struct Unreference {
  void operator()(void* aObject) const { g_object_unref(aObject); }
};

/// What is compared, and how often.
struct Case {
  const char* pixelFormat;
  int turns = 3;
  double framesPerSecond = 100;
};

// The settings stay in the camera when control is given back.
void SetUpCamera(const Case& aCase) {
  GError* error = nullptr;
  const std::unique_ptr<ArvCamera, Unreference> camera(arv_camera_new(kAddress, &error));
  if (!camera)
    Fail(error->message);
  arv_camera_set_region(camera.get(), 0, 0, kImageWidth, kImageHeight, &error);
  arv_camera_set_frame_rate(camera.get(), aCase.framesPerSecond, &error);
  arv_camera_set_pixel_format_from_string(camera.get(), aCase.pixelFormat, &error);
  arv_camera_gv_set_packet_size(camera.get(), kPacketBytes, &error);
  if (error)
    Fail(error->message);
}

struct Measured {
  double startMs = 0;
  double picturesPerSecond = 0;
  double cpuMsPerPicture = 0;
  double totalMsPerPicture = 0; ///< With the X server's.
};

// Brings a viewer from its start to a picture.
using Approach = std::function<void(ViewerProgram&)>;

void ApproachOurs(ViewerProgram&) {}

// Its list fills by itself; the row is clicked at until the window has grown by the settings of what was chosen.
void ApproachPeer(ViewerProgram& aViewer) {
  const int height = aViewer.GetWindowHeight();
  const auto limit = Clock::now() + kLimit;
  while (aViewer.GetWindowHeight() == height) {
    if (Clock::now() > limit)
      Fail("the peer's list did not show the camera.");
    aViewer.Click(kPeerRow);
  }
  aViewer.Click(kPeerPlay);
}

void AwaitChange(const PixelWatch& aWatch, std::uint64_t aChanges) {
  const auto limit = Clock::now() + kLimit;
  while (aWatch.CountChanges() < aChanges) {
    if (Clock::now() > limit)
      Fail("no pictures were seen.");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

Measured Measure(const Case& aCase, std::vector<std::string> aCommandLine, const Approach& aApproach,
                 const std::vector<std::string>& aPictureKeys) {
  const FakeCamera camera;
  SetUpCamera(aCase);
  Measured measured;
  const benchmarks::DisplayScreen screen;
  ViewerProgram viewer(std::move(aCommandLine));
  viewer.AwaitWindow();
  aApproach(viewer);
  // Pictures go on changing, other than what is drawn of the window at its beginning.
  constexpr std::uint64_t kSureChanges = 5;
  {
    const WindowPoint early = viewer.ToScreen({viewer.GetWindowHeight() / 2, viewer.GetWindowHeight() / 2});
    const PixelWatch first({static_cast<std::int16_t>(early.x), static_cast<std::int16_t>(early.y)});
    AwaitChange(first, kSureChanges);
    measured.startMs = std::chrono::duration<double, std::milli>(Clock::now() - viewer.GetStart()).count();
  }
  viewer.PlaceWindow(kWindowWidth, kWindowHeight);
  for (const std::string& key : aPictureKeys)
    viewer.PressKey(key);
  const WindowPoint point = viewer.ToScreen(kPicturePoint);
  const PixelWatch watch({static_cast<std::int16_t>(point.x), static_cast<std::int16_t>(point.y)});
  std::this_thread::sleep_for(kWarmUp);

  const double cpuBegin = viewer.GetProcessorMs();
  const double serverBegin = screen.GetServerMs();
  const std::uint64_t changesBegin = watch.CountChanges();
  const auto begin = Clock::now();
  std::this_thread::sleep_for(kSpan);
  const double cpuMs = viewer.GetProcessorMs() - cpuBegin;
  const double serverMs = screen.GetServerMs() - serverBegin;
  const auto pictures = static_cast<double>(watch.CountChanges() - changesBegin);
  if (pictures == 0)
    Fail("the picture stands still.");
  measured.picturesPerSecond = pictures / std::chrono::duration<double>(Clock::now() - begin).count();
  measured.cpuMsPerPicture = cpuMs / pictures;
  measured.totalMsPerPicture = (cpuMs + serverMs) / pictures;
  return measured;
}

// The best of several turns: what the machine can do when nothing else disturbs it.
void Improve(std::optional<Measured>& aBest, const Measured& aNew) {
  if (!aBest)
    aBest = aNew;
  aBest->startMs = std::min(aBest->startMs, aNew.startMs);
  aBest->picturesPerSecond = std::max(aBest->picturesPerSecond, aNew.picturesPerSecond);
  aBest->cpuMsPerPicture = std::min(aBest->cpuMsPerPicture, aNew.cpuMsPerPicture);
  aBest->totalMsPerPicture = std::min(aBest->totalMsPerPicture, aNew.totalMsPerPicture);
}

void Compare(const Case& aCase) {
  std::optional<Measured> ours;
  std::optional<Measured> peers;
  for (int turn = 0; turn < aCase.turns; ++turn) {
    Improve(ours, Measure(aCase, {KRVIEWER_PATH, kAddress}, ApproachOurs, {kHideFeatures, kFitPicture}));
    Improve(peers, Measure(aCase, {"arv-viewer-0.8"}, ApproachPeer, {}));
  }
  const auto print = [&](const char* aName, double Measured::*aFigure, const char* aUnit) {
    const std::string name = std::string("viewer_") + aName + "_" + aCase.pixelFormat;
    benchmarks::PrintFigure(name.c_str(), (*ours).*aFigure, aUnit, "arv_viewer", (*peers).*aFigure);
  };
  print("cpu_per_picture", &Measured::cpuMsPerPicture, "ms");
  print("cpu_per_picture_with_server", &Measured::totalMsPerPicture, "ms");
  print("pictures_per_second", &Measured::picturesPerSecond, "1/s");
  print("start_to_picture", &Measured::startMs, "ms");
}

} // namespace

// bench_viewer [FORMAT [TURNS [RATE]]]: one format alone, in how many turns, and how many frames a second are sent.
int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleTest(&aArgumentCount, aArguments); // The camera process reports its failures by it.
  std::vector<Case> cases = {{"Mono8"}, {"BayerRG8"}};
  if (aArgumentCount > 1)
    cases = {{aArguments[1]}};
  if (aArgumentCount > 2)
    cases.front().turns = std::atoi(aArguments[2]);
  if (aArgumentCount > 3)
    cases.front().framesPerSecond = std::atof(aArguments[3]);
  if (cases.front().turns < 1 || cases.front().framesPerSecond <= 0)
    Fail("at least one turn and more than no frames are needed.");
  for (const Case& one : cases)
    Compare(one);
  return 0;
}
