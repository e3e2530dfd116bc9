// The peer that applications write themselves: QWidget::update, and QPainter::drawImage in the paint event. All but
// BGRa8 is converted by the library's converter first, which is quicker than having Qt draw its own grey format.
// Everything is done by one thread, so that no frame waits for another one.

#include "displaymeasurement.h"
#include "krbuffer/krbufferconverter.h"

#include <QApplication>
#include <QPainter>
#include <QWidget>

namespace {

QRect ToRect(const benchmarks::FrameSize& aInside, const benchmarks::FrameSize& aOutside) {
  return {static_cast<int>(aOutside.width - aInside.width) / 2, static_cast<int>(aOutside.height - aInside.height) / 2,
          static_cast<int>(aInside.width), static_cast<int>(aInside.height)};
}

class ImageWidget : public QWidget {
public:
  explicit ImageWidget(const benchmarks::DisplayCase& aCase) : mRect(ToRect(aCase.GetShownSize(), aCase.window)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFixedSize(static_cast<int>(aCase.window.width), static_cast<int>(aCase.window.height));
    move(100, 100);
    show();
  }

  void Show(const QImage& aImage) {
    mImage = aImage;
    update(mRect);
  }
  std::uint64_t GetPainted() const { return mPainted; }

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter(this).drawImage(mRect, mImage);
    ++mPainted;
  }

private:
  QRect mRect;
  QImage mImage;
  std::uint64_t mPainted = 0;
};

class DrawImageShower : public benchmarks::FrameShower {
public:
  DrawImageShower(const benchmarks::DisplayCase& aCase, const benchmarks::FrameRing& aRing)
      : mRing(aRing), mWidget(aCase) {}

  void Show(std::size_t aFrame) override {
    const std::uint64_t before = mWidget.GetPainted();
    mWidget.Show(MakeImage(mRing.Get(aFrame)));
    while (mWidget.GetPainted() == before)
      QCoreApplication::processEvents();
  }
  std::uint64_t GetShown() const override { return mWidget.GetPainted(); }

private:
  QImage MakeImage(const KrBuffer& aFrame) {
    const IKrImage& image = *aFrame.GetImage();
    if (image.GetPixelType() == KrPixel::BGRa8)
      return Wrap(aFrame, QImage::Format_RGB32);
    if (!mConverter.Convert(&image, &mConverted, true, false).IsOK())
      std::exit(1);
    return Wrap(mConverted, QImage::Format_RGB32);
  }
  static QImage Wrap(const KrBuffer& aBuffer, QImage::Format aFormat) {
    const IKrImage& image = *aBuffer.GetImage();
    return {image.GetDataPointer(), static_cast<int>(image.GetWidth()), static_cast<int>(image.GetHeight()),
            static_cast<qsizetype>(image.GetImageSize() / image.GetHeight()), aFormat};
  }

  const benchmarks::FrameRing& mRing;
  const KrBufferConverter mConverter{-1};
  KrBuffer mConverted;
  ImageWidget mWidget;
};

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const benchmarks::DisplayCase displayCase = benchmarks::TakeCase(aArgumentCount, aArguments);
  const benchmarks::FrameRing ring(displayCase);
  const QApplication application(aArgumentCount, aArguments);
  DrawImageShower shower(displayCase, ring);
  benchmarks::MeasureAndPrint(shower);
  return 0;
}
