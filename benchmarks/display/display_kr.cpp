// The library's own display: a camera's thread gives the frames, the user-interface thread runs its loop. With "held"
// as last argument the window is given shared frames, which it does not copy.

#include "checked.h"
#include "displaymeasurement.h"
#include "krgui/krdisplaywnd.h"

#include <QApplication>

#include <string_view>
#include <thread>

namespace {

class KrShower : public benchmarks::FrameShower {
public:
  KrShower(const benchmarks::FrameRing& aRing, KrDisplayWnd& aWindow, bool aIsHeld)
      : mRing(aRing), mWindow(aWindow), mIsHeld(aIsHeld) {}

  void Show(std::size_t aFrame) override {
    benchmarks::Check(mIsHeld ? mWindow.DisplayHeld(mRing.Share(aFrame), false)
                              : mWindow.Display(mRing.Get(aFrame), false));
  }
  std::uint64_t GetShown() const override { return mWindow.GetStatistics().shown; }

private:
  const benchmarks::FrameRing& mRing;
  KrDisplayWnd& mWindow;
  bool mIsHeld;
};

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const bool isHeld = aArgumentCount == 5 && aArguments[4] == std::string_view("held");
  const benchmarks::DisplayCase displayCase = benchmarks::TakeCase(isHeld ? 4 : aArgumentCount, aArguments);
  const benchmarks::FrameRing ring(displayCase);
  const QApplication application(aArgumentCount, aArguments);
  KrDisplayWnd window;
  window.SetPosition(100, 100, static_cast<int>(displayCase.window.width), static_cast<int>(displayCase.window.height));
  benchmarks::Check(window.ShowModeless(0));

  KrShower shower(ring, window, isHeld);
  std::thread camera([&] {
    benchmarks::MeasureAndPrint(shower);
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
  });
  const int status = QApplication::exec();
  camera.join();
  return status;
}
