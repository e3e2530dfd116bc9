// The peer GStreamer: appsrc, nearest-neighbour scaling and ximagesink in a plain window. Frames wrap the ring's
// memory; packed formats, which GStreamer does not know, are converted by the library's converter.

#include "displaymeasurement.h"
#include "displayscreen.h"
#include "krbuffer/krbufferconverter.h"

#include <gst/app/gstappsrc.h>
#include <gst/gst.h>
#include <gst/video/videooverlay.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Frames may be converted while others are on their way.
constexpr std::size_t kQueued = 2;

/// What makes colour of a format's frames is quickest where there are the fewest pixels: before they are enlarged and
/// after they are reduced. Only a Bayer pattern cannot be scaled.
std::string DescribePipeline(const benchmarks::DisplayCase& aCase) {
  const auto describe = [](const benchmarks::FrameSize& aSize) {
    return ",width=" + std::to_string(aSize.width) + ",height=" + std::to_string(aSize.height);
  };
  const benchmarks::FrameSize shown = aCase.GetShownSize();
  const bool isEnlarged = shown.width > aCase.source.width;
  std::string caps = "video/x-raw,format=BGRx";
  std::string beforeScaling;
  std::string afterScaling;
  if (aCase.format == KrPixel::Mono8) {
    caps = "video/x-raw,format=GRAY8";
    (isEnlarged ? beforeScaling : afterScaling) = " ! videoconvert ! video/x-raw,format=BGRx";
  } else if (aCase.format == KrPixel::BayerRG8) {
    caps = "video/x-bayer,format=rggb";
    beforeScaling = " ! bayer2rgb ! video/x-raw,format=BGRx";
  }
  return "appsrc name=source block=true format=time max-bytes=0 max-buffers=" + std::to_string(kQueued) +
         " caps=" + caps + describe(aCase.source) + ",framerate=0/1" + beforeScaling +
         " ! videoscale method=nearest-neighbour add-borders=false ! video/x-raw" + describe(shown) + afterScaling +
         " ! ximagesink name=sink sync=false qos=false";
}

class GStreamerShower : public benchmarks::FrameShower {
public:
  GStreamerShower(const benchmarks::DisplayCase& aCase, const benchmarks::FrameRing& aRing) : mRing(aRing) {
    GError* error = nullptr;
    mPipeline = gst_parse_launch(DescribePipeline(aCase).c_str(), &error);
    if (mPipeline == nullptr || error != nullptr) {
      std::fprintf(stderr, "%s\n", error != nullptr ? error->message : "There is no pipeline.");
      std::exit(1);
    }
    mSource = gst_bin_get_by_name(GST_BIN(mPipeline), "source");
    mSink = gst_bin_get_by_name(GST_BIN(mPipeline), "sink");
    mWindow = benchmarks::ShowPlainWindow(mScreen, aCase.window.width, aCase.window.height);
    gst_video_overlay_set_window_handle(GST_VIDEO_OVERLAY(mSink), mWindow);
    gst_element_set_state(mPipeline, GST_STATE_PLAYING);
  }
  ~GStreamerShower() override {
    gst_element_set_state(mPipeline, GST_STATE_NULL);
    gst_object_unref(mSource);
    gst_object_unref(mSink);
    gst_object_unref(mPipeline);
  }

  void Show(std::size_t aFrame) override {
    const KrBuffer& frame = MakeImage(mRing.Get(aFrame));
    auto* data = const_cast<std::uint8_t*>(frame.GetDataPointer());
    GstBuffer* buffer = gst_buffer_new_wrapped_full(GST_MEMORY_FLAG_READONLY, data, frame.GetSize(), 0, frame.GetSize(),
                                                    nullptr, nullptr);
    if (gst_app_src_push_buffer(GST_APP_SRC(mSource), buffer) != GST_FLOW_OK) {
      std::fprintf(stderr, "The pipeline takes no frame.\n");
      std::exit(1);
    }
  }
  /// What the sink itself counts as rendered.
  std::uint64_t GetShown() const override {
    GstStructure* statistics = nullptr;
    guint64 rendered = 0;
    g_object_get(mSink, "stats", &statistics, nullptr);
    gst_structure_get_uint64(statistics, "rendered", &rendered);
    gst_structure_free(statistics);
    return rendered;
  }

private:
  const KrBuffer& MakeImage(const KrBuffer& aFrame) {
    if (aFrame.GetImage()->GetPixelType() != KrPixel::Mono12p)
      return aFrame;
    // Queued ones, the one at work, and this one.
    KrBuffer& converted = mConverted[mNext++ % mConverted.size()];
    if (!mConverter.Convert(aFrame.GetImage(), &converted, true, false).IsOK())
      std::exit(1);
    return converted;
  }

  const benchmarks::FrameRing& mRing;
  const KrBufferConverter mConverter{-1};
  std::array<KrBuffer, kQueued + 3> mConverted;
  std::size_t mNext = 0;
  benchmarks::DisplayScreen mScreen;
  xcb_window_t mWindow = 0;
  GstElement* mPipeline = nullptr;
  GstElement* mSource = nullptr;
  GstElement* mSink = nullptr;
};

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const benchmarks::DisplayCase displayCase = benchmarks::TakeCase(aArgumentCount, aArguments);
  const benchmarks::FrameRing ring(displayCase);
  gst_init(nullptr, nullptr);
  GStreamerShower shower(displayCase, ring);
  benchmarks::MeasureAndPrint(shower);
  return 0;
}
