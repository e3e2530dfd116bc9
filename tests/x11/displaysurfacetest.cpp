// The display whose way to the screen fails or gets lost while its window lives on.

#include "display/displayview.h"
#include "displayscreen.h"
#include "windowwait.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <utility>

namespace {

using krgui::DisplayContent;
using krgui::DrawingSurface;
using krgui::SurfaceKind;

// A real surface, until it is lost.
class LosableSurface : public DrawingSurface {
public:
  LosableSurface(std::unique_ptr<DrawingSurface> aSurface, std::shared_ptr<std::atomic<bool>> aIsLost)
      : mSurface(std::move(aSurface)), mIsLost(std::move(aIsLost)) {}

  SurfaceKind GetKind() const override { return mSurface->GetKind(); }
  std::optional<Target> Begin(std::int32_t aWidth, std::int32_t aHeight, std::chrono::milliseconds aLimit) override {
    return IsLost() ? std::nullopt : mSurface->Begin(aWidth, aHeight, aLimit);
  }
  bool Present(const krgui::PixelRect& aRect, std::uint64_t aTag) override {
    return !IsLost() && mSurface->Present(aRect, aTag);
  }
  bool IsLost() const override { return *mIsLost || mSurface->IsLost(); }
  const QImage* GetPicture() const override { return mSurface->GetPicture(); }

private:
  const std::unique_ptr<DrawingSurface> mSurface;
  const std::shared_ptr<std::atomic<bool>> mIsLost;
};

class DisplaySurfaces : public testing::Test {
protected:
  void Show() {
    mWindow->setGeometry(300, 200, 320, 240);
    mView = std::make_unique<krgui::DisplayView>(
        mContent, mWindow.get(), SurfaceKind::SharedDescriptor,
        [this](QWidget& aWidget, SurfaceKind aBest) { return Make(aWidget, aBest); });
    mView->setGeometry(0, 0, 320, 240);
    mWindow->show();
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.get()));
  }
  ~DisplaySurfaces() override { mView.reset(); }

  std::unique_ptr<DrawingSurface> Make(QWidget& aWidget, SurfaceKind aBest) {
    if (aBest == SurfaceKind::Invalidation)
      return krgui::MakeDrawingSurface(aWidget, aBest);
    ++mAttempts;
    if (mFailures > 0) {
      --mFailures;
      return krgui::MakeDrawingSurface(aWidget, SurfaceKind::Invalidation);
    }
    mIsLost = std::make_shared<std::atomic<bool>>(false);
    return std::make_unique<LosableSurface>(krgui::MakeDrawingSurface(aWidget, aBest), mIsLost);
  }
  // As the window does it.
  void Display(const KrBuffer& aImage) {
    auto paint = DisplayContent::Paint::NotNeeded;
    EXPECT_TRUE(mContent->Display(aImage.GetImage(), paint).IsOK());
    if (paint == DisplayContent::Paint::Needed)
      mView->update();
  }
  QImage Grab() const {
    return GrabScreen({mWindow->mapToGlobal(mView->mapTo(mWindow.get(), QPoint(0, 0))), mView->size()});
  }
  void ExpectShown(const KrBuffer& aImage, const char* aWhere) const {
    const QImage expected = plainpicture::Compute({320, 240}, ToQImage(aImage), QColor(0x80, 0x80, 0x80));
    EXPECT_TRUE(krtest::AwaitCondition([&] { return plainpicture::Compare(Grab(), expected).empty(); }))
        << aWhere << ": " << plainpicture::Compare(Grab(), expected);
  }
  bool IsOnScreen() const { return mView->testAttribute(Qt::WA_PaintOnScreen); }
  // Frames come onto the screen without the user's thread.
  void ExpectDrawnAtOnce(std::uint8_t aGrey) {
    const KrBuffer image = MakeGrey(320, 240, aGrey);
    std::jthread([&] {
      auto paint = DisplayContent::Paint::Needed;
      EXPECT_TRUE(mContent->Display(image.GetImage(), paint).IsOK());
      EXPECT_EQ(paint, DisplayContent::Paint::NotNeeded);
    }).join();
    ExpectShown(image, "drawn at once");
  }

  const std::shared_ptr<DisplayContent> mContent = std::make_shared<DisplayContent>();
  std::unique_ptr<QWidget> mWindow = std::make_unique<QWidget>();
  std::unique_ptr<krgui::DisplayView> mView;
  std::shared_ptr<std::atomic<bool>> mIsLost;
  int mAttempts = 0;
  int mFailures = 0;
};

} // namespace

TEST_F(DisplaySurfaces, Surface_ThatFailsAtFirst_IsMadeLater) {
  mFailures = 2;
  Show();
  const KrBuffer image = MakeNoise(320, 240);

  Display(image);

  ExpectShown(image, "by the toolkit");
  EXPECT_TRUE(krtest::AwaitCondition([&] { return IsOnScreen(); }));
  EXPECT_EQ(mAttempts, 3);
  ExpectShown(image, "back on the screen");
  ExpectDrawnAtOnce(77);
}

TEST_F(DisplaySurfaces, Surface_ThatFailed_IsTriedAgainInAnotherWindow) {
  mFailures = 1;
  Show();
  const KrBuffer image = MakeNoise(320, 240);
  Display(image);
  ExpectShown(image, "by the toolkit");
  auto second = std::make_unique<QWidget>();
  second->setGeometry(700, 300, 320, 240);
  second->show();
  ASSERT_TRUE(krtest::AwaitExposed(second.get()));

  mView->setParent(second.get());
  mView->setGeometry(0, 0, 320, 240);
  mView->show();
  std::swap(mWindow, second);

  EXPECT_TRUE(krtest::AwaitCondition([&] { return IsOnScreen(); }));
  ExpectShown(image, "in the other window");
  ExpectDrawnAtOnce(78);
}

TEST_F(DisplaySurfaces, Surface_ThatIsLost_IsMadeAnewForTheNextFrame) {
  Show();
  const KrBuffer first = MakeNoise(320, 240);
  Display(first);
  ExpectShown(first, "first");
  ASSERT_EQ(mAttempts, 1);

  *mIsLost = true;
  const KrBuffer second = MakeGrey(320, 240, 99);
  Display(second);

  ExpectShown(second, "after the loss");
  EXPECT_EQ(mAttempts, 2);
  EXPECT_TRUE(IsOnScreen());
  ExpectDrawnAtOnce(79);
}

TEST_F(DisplaySurfaces, Surface_ThatIsLostAndFailsToBeMade_ComesBack) {
  Show();
  const KrBuffer first = MakeNoise(320, 240);
  Display(first);
  ExpectShown(first, "first");

  mFailures = 1;
  *mIsLost = true;
  const KrBuffer second = MakeGrey(320, 240, 99);
  Display(second);

  ExpectShown(second, "after the loss");
  EXPECT_TRUE(krtest::AwaitCondition([&] { return IsOnScreen(); }));
  ExpectShown(second, "back on the screen");
  ExpectDrawnAtOnce(80);
}
