// What does it cost to look at a camera, and how soon is its picture there? krviewer and the viewer that comes with
// Aravis show the same camera, an independent program on loopback, in windows of the same size, one after the other in
// turns, each started as if for the first time. Where the picture is on the screen is looked for, and a turn in which
// it is elsewhere ends the benchmark. The processor time is that of all threads of the viewer, and besides that of the
// X server, between two moments while it shows; pictures are counted by what is seen on the screen, beside the frames
// that reached the machine meanwhile. The start is from running the program to its window, and to the fifth change of a
// pixel of the picture: what was drawn before there were pictures changes, too. The peer wants two clicks first: the
// time from its window to the last of them, which is its user's and our tools', is taken off. What is printed is the
// median of the turns.
// Run it in a network namespace and a display of its own (scripts/bench.sh does).

#include "aravispointer.h"
#include "arrivals.h"
#include "failing.h"
#include "fakecamera.h"
#include "figure.h"
#include "picturearea.h"
#include "pixelwatch.h"
#include "statistics.h"
#include "viewerprogram.h"

#include <arv.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using benchmarks::DisplayScreen;
using benchmarks::Fail;
using benchmarks::PixelWatch;
using benchmarks::ScreenArea;
using benchmarks::ViewerProgram;
using benchmarks::WindowPoint;
using benchmarks::WireFrames;
using Clock = std::chrono::steady_clock;

constexpr int kImageWidth = 1920;
constexpr int kImageHeight = 1080;
constexpr gint kPacketBytes = 16384; // What both find on loopback.
constexpr int kWindowWidth = 1600;
constexpr int kWindowHeight = 1000;
constexpr double kLeastAlike = 0.9; // The one picture's area, by the other one's.
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

/// What is compared, and how often.
struct Case {
  const char* pixelFormat;
  int turns = 3;
  double framesPerSecond = 100;
};

// The settings stay in the camera when control is given back.
void SetUpCamera(const Case& aCase) {
  AravisError error;
  const auto require = [&error] {
    if (error.IsSet())
      Fail("the camera: " + error.GetText());
  };
  const AravisPointer<ArvCamera> camera(arv_camera_new(kAddress, error.Take()));
  require();
  arv_camera_set_region(camera.get(), 0, 0, kImageWidth, kImageHeight, error.Take());
  require();
  arv_camera_set_frame_rate(camera.get(), aCase.framesPerSecond, error.Take());
  require();
  arv_camera_set_pixel_format_from_string(camera.get(), aCase.pixelFormat, error.Take());
  require();
  arv_camera_gv_set_packet_size(camera.get(), kPacketBytes, error.Take());
  require();
}

struct Measured {
  double windowMs = 0; ///< From its start to its window.
  double startMs = 0;  ///< From its start to the picture, without the time that choosing a camera took.
  double picturesPerSecond = 0;
  double framesPerSecond = 0; ///< That reached the machine.
  double shownOfReceived = 0;
  double cpuMsPerPicture = 0;
  double totalMsPerPicture = 0; ///< With the X server's.
  double pictureWidth = 0;      ///< On the screen.
  double pictureHeight = 0;
};

/// One viewer in all its turns.
using Turns = std::vector<Measured>;

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

double GetMs(Clock::duration aTime) {
  return std::chrono::duration<double, std::milli>(aTime).count();
}

void AwaitPicture(const ViewerProgram& aViewer) {
  // Pictures go on changing, other than what is drawn of the window at its beginning.
  constexpr std::uint64_t kSureChanges = 5;
  const WindowPoint early = aViewer.ToScreen({aViewer.GetWindowHeight() / 2, aViewer.GetWindowHeight() / 2});
  const PixelWatch first({static_cast<std::int16_t>(early.x), static_cast<std::int16_t>(early.y)});
  AwaitChange(first, kSureChanges);
}

// A viewer may stand still for a moment when its window has become larger.
ScreenArea AwaitLivePicture(const DisplayScreen& aScreen, const ViewerProgram& aViewer) {
  const auto limit = Clock::now() + kLimit;
  while (Clock::now() < limit) {
    if (const std::optional<ScreenArea> picture = benchmarks::FindPicture(aScreen, aViewer.GetWindowArea()))
      return *picture;
  }
  Fail("there is no live picture in the window.");
}

// All between two moments while it shows.
void MeasureSpan(const ViewerProgram& aViewer, const DisplayScreen& aScreen, const PixelWatch& aWatch,
                 const WireFrames& aFrames, Measured& aMeasured) {
  const double cpuBegin = aViewer.GetProcessorMs();
  const double serverBegin = aScreen.GetServerMs();
  const std::uint64_t changesBegin = aWatch.CountChanges();
  const double arrivalsBegin = benchmarks::CountArrivals(aFrames);
  const auto begin = Clock::now();
  std::this_thread::sleep_for(kSpan);
  const double cpuMs = aViewer.GetProcessorMs() - cpuBegin;
  const double serverMs = aScreen.GetServerMs() - serverBegin;
  const auto pictures = static_cast<double>(aWatch.CountChanges() - changesBegin);
  const double arrivals = benchmarks::CountArrivals(aFrames) - arrivalsBegin;
  if (pictures == 0 || arrivals <= 0)
    Fail("the picture stands still.");
  const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  aMeasured.picturesPerSecond = pictures / seconds;
  aMeasured.framesPerSecond = arrivals / seconds;
  aMeasured.shownOfReceived = 100 * pictures / arrivals;
  aMeasured.cpuMsPerPicture = cpuMs / pictures;
  aMeasured.totalMsPerPicture = (cpuMs + serverMs) / pictures;
}

Measured Measure(const Case& aCase, std::vector<std::string> aCommandLine, const Approach& aApproach,
                 const std::vector<std::string>& aPictureKeys) {
  const FakeCamera camera;
  SetUpCamera(aCase);
  Measured measured;
  const DisplayScreen screen;
  ViewerProgram viewer(std::move(aCommandLine));
  viewer.AwaitWindow();
  const auto window = Clock::now();
  aApproach(viewer);
  const auto lastInput = Clock::now();
  AwaitPicture(viewer);
  measured.windowMs = GetMs(window - viewer.GetStart());
  measured.startMs = measured.windowMs + GetMs(Clock::now() - lastInput);
  viewer.PlaceWindow(kWindowWidth, kWindowHeight);
  for (const std::string& key : aPictureKeys)
    viewer.PressKey(key);
  std::this_thread::sleep_for(kWarmUp);
  const ScreenArea picture = AwaitLivePicture(screen, viewer);
  measured.pictureWidth = picture.width;
  measured.pictureHeight = picture.height;
  const PixelWatch watch({static_cast<std::int16_t>(picture.x + picture.width / 3),
                          static_cast<std::int16_t>(picture.y + picture.height / 2)});
  MeasureSpan(viewer, screen, watch, {.imageBytes = kImageWidth * kImageHeight, .packetBytes = kPacketBytes}, measured);
  return measured;
}

// A turn counts only beside others that showed as much.
void AddTurn(Turns& aTurns, const char* aName, const Measured& aTurn) {
  std::printf("# %s: %.1f pictures/s of %.1f frames/s, %.0fx%.0f, %.2f ms, %.2f ms with the server, start %.0f ms\n",
              aName, aTurn.picturesPerSecond, aTurn.framesPerSecond, aTurn.pictureWidth, aTurn.pictureHeight,
              aTurn.cpuMsPerPicture, aTurn.totalMsPerPicture, aTurn.startMs);
  std::fflush(stdout);
  aTurns.push_back(aTurn);
  const Measured& first = aTurns.front();
  if (aTurn.pictureWidth != first.pictureWidth || aTurn.pictureHeight != first.pictureHeight)
    Fail("the picture is larger in one turn than in another.");
}

// What both draw, within what their layouts differ by.
void RequireAlikePictures(const Turns& aOurs, const Turns& aPeers) {
  const Measured& ours = aOurs.front();
  const Measured& peers = aPeers.front();
  const double ratio = ours.pictureWidth * ours.pictureHeight / (peers.pictureWidth * peers.pictureHeight);
  if (ratio < kLeastAlike || ratio > 1 / kLeastAlike)
    Fail("one viewer's picture is larger than the other's.");
}

void Compare(const Case& aCase) {
  Turns ours;
  Turns peers;
  for (int turn = 0; turn < aCase.turns; ++turn) {
    AddTurn(ours, "krviewer", Measure(aCase, {KRVIEWER_PATH, kAddress}, ApproachOurs, {kHideFeatures, kFitPicture}));
    AddTurn(peers, "arv-viewer", Measure(aCase, {"arv-viewer-0.8"}, ApproachPeer, {}));
    RequireAlikePictures(ours, peers);
  }
  const auto print = [&](const char* aName, double Measured::*aFigure, const char* aUnit,
                         const char* aPeer = "arv_viewer") {
    benchmarks::PrintFigure({std::string("viewer_") + aName + "_" + aCase.pixelFormat,
                             benchmarks::GetMedian(ours, aFigure), aUnit,
                             benchmarks::Peer{aPeer, benchmarks::GetMedian(peers, aFigure)}});
  };
  print("cpu_per_picture", &Measured::cpuMsPerPicture, "ms");
  print("cpu_per_picture_with_server", &Measured::totalMsPerPicture, "ms");
  print("frames_received_per_second", &Measured::framesPerSecond, "1/s");
  print("pictures_per_second", &Measured::picturesPerSecond, "1/s");
  print("shown_of_received", &Measured::shownOfReceived, "%");
  print("start_to_window", &Measured::windowMs, "ms");
  print("start_to_picture", &Measured::startMs, "ms", "arv_viewer_without_choosing");
  print("picture_width", &Measured::pictureWidth, "pixels");
  print("picture_height", &Measured::pictureHeight, "pixels");
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
