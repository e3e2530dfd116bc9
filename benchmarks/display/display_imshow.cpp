// The peer OpenCV: imshow in a window of the image's shape, painted by pollKey, which says nothing of what it paints:
// the frames are counted by what is seen of them, for which the screen is asked for one pixel a frame. Bayer images are
// made colour by cvtColor; packed ones, which OpenCV does not know, by the library's converter.

#include "displaymeasurement.h"
#include "displayscreen.h"
#include "failing.h"
#include "krbuffer/krbufferconverter.h"

#include <opencv2/highgui.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdlib>
#include <optional>
#include <string>

namespace {

constexpr char kWindow[] = "imshow";

class ImshowShower : public benchmarks::FrameShower {
public:
  ImshowShower(const benchmarks::DisplayCase& aCase, const benchmarks::FrameRing& aRing) : mRing(aRing) {
    const benchmarks::FrameSize size = aCase.GetShownSize();
    cv::namedWindow(kWindow, cv::WINDOW_NORMAL | cv::WINDOW_FREERATIO | cv::WINDOW_GUI_NORMAL);
    cv::resizeWindow(kWindow, static_cast<int>(size.width), static_cast<int>(size.height));
    cv::imshow(kWindow, MakeImage(aRing.Get(0)));
    cv::waitKey(500);
    const cv::Rect rect = cv::getWindowImageRect(kWindow);
    if (rect.width != static_cast<int>(size.width) || rect.height != static_cast<int>(size.height))
      benchmarks::Fail("the window measures " + std::to_string(rect.width) + "x" + std::to_string(rect.height) + ".");
    const std::optional<benchmarks::ScreenPoint> middle = mScreen.FindMiddle();
    if (!middle)
      benchmarks::Fail("there is no window on the screen.");
    mMiddle = *middle;
    mSeen = mScreen.ReadPixel(mMiddle);
  }

  void Show(std::size_t aFrame) override {
    cv::imshow(kWindow, MakeImage(mRing.Get(aFrame)));
    cv::pollKey();
    Look();
  }
  std::uint64_t GetShown() const override {
    Look();
    return mShown;
  }

private:
  // Frames that follow each other have other colours there.
  void Look() const {
    const std::uint32_t seen = mScreen.ReadPixel(mMiddle);
    mShown += seen != mSeen ? 1 : 0;
    mSeen = seen;
  }
  cv::Mat MakeImage(const KrBuffer& aFrame) {
    const IKrImage& image = *aFrame.GetImage();
    switch (image.GetPixelType()) {
    case KrPixel::BGRa8:
      return Wrap(aFrame, CV_8UC4);
    case KrPixel::Mono8:
      return Wrap(aFrame, CV_8UC1);
    case KrPixel::BayerRG8:
      // OpenCV names the pattern after its second row.
      cv::cvtColor(Wrap(aFrame, CV_8UC1), mColour, cv::COLOR_BayerBG2BGR);
      return mColour;
    default:
      if (!mConverter.Convert(&image, &mConverted, true, false).IsOK())
        std::exit(1);
      return Wrap(mConverted, CV_8UC4);
    }
  }
  static cv::Mat Wrap(const KrBuffer& aBuffer, int aType) {
    const IKrImage& image = *aBuffer.GetImage();
    return {static_cast<int>(image.GetHeight()), static_cast<int>(image.GetWidth()), aType,
            const_cast<std::uint8_t*>(image.GetDataPointer())};
  }

  const benchmarks::FrameRing& mRing;
  const KrBufferConverter mConverter{-1};
  KrBuffer mConverted;
  cv::Mat mColour;
  const benchmarks::DisplayScreen mScreen;
  benchmarks::ScreenPoint mMiddle;
  mutable std::uint32_t mSeen = 0;
  mutable std::uint64_t mShown = 0;
};

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const benchmarks::DisplayCase displayCase = benchmarks::TakeCase(aArgumentCount, aArguments);
  const benchmarks::FrameRing ring(displayCase);
  ImshowShower shower(displayCase, ring);
  benchmarks::MeasureAndPrint(shower);
  return 0;
}
