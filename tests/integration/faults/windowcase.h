#pragma once
// A user in a window of the library on a simulated device: does one thing after the other until all is done, the window
// is closed, or it tells of a failure.

#include "faultlab.h"
#include "testclocks.h"
#include "windowcalls.h"
#include "windowwait.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace krtest {

/// What happens to a window, or its device, at a step.
struct WindowFaultRow {
  const char* name;
  bool closesWindow;
  DeviceFault fault; ///< Where the window is not closed.
};

inline constexpr WindowFaultRow kWindowFaults[] = {
    {"WindowClosed", true, DeviceFault::Vanishes},          {"DeviceVanishes", false, DeviceFault::Vanishes},
    {"DeviceLosesPower", false, DeviceFault::LosesPower},   {"AccessTimesOut", false, DeviceFault::TimesOut},
    {"DeviceStaysSilent", false, DeviceFault::StaysSilent}, {"DeviceRefuses", false, DeviceFault::Refuses},
};

/// The window is one object for all uses, as an application has it.
template <typename Window>
class WindowCase : public FaultLab, public testing::WithParamInterface<WindowFaultRow> {
protected:
  explicit WindowCase(const krtransport::Lab& aLab = krtransport::GetBuiltInLab())
      : FaultLab(std::make_shared<JumpingClock>(), aLab) {
    QObject::connect(&mHand, &QTimer::timeout, &mHand, [this] { AnswerBox(); });
    mHand.start(1);
    if (GetParam().closesWindow)
      mNames.clear(); // What ends the use is no failure of the device.
    else
      mAdvice = kDeviceAdvice;
  }
  ~WindowCase() override {
    mWindow.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  /// Uses the window on an open device, with the row's fault at each step of that.
  void TryWindowAtEachStep(const std::function<KrResult(KrDevice&)>& aUse) {
    constexpr std::uint64_t kClosings = 10;
    constexpr std::uint64_t kFailures =
        5; // What the device's failures come to without a window is tried at more steps.
    const bool isClosing = GetParam().closesWindow;
    const StepFault fault = isClosing ? StepFault{.cause = [this] { CloseSoon(); }} : MakeFault(GetParam().fault);
    TryAtEachStep(
        fault, [&] { return UseWindow(aUse); }, isClosing ? kClosings : kFailures);
  }

  /// Opens the window, does something in it, which is done when aIsDone says so or a failure was told, and closes it.
  KrResult UseOpened(const std::function<void()>& aUse, const bool& aIsDone) {
    KrResult result = mWindow->ShowModeless(0);
    if (result.IsOK()) {
      aUse();
      result = GetOutcome();
      EXPECT_TRUE(aIsDone || !result.IsOK()) << "nothing was said; " << mSteps.Describe();
    }
    if (IsOpen()) {
      EXPECT_TRUE(mWindow->Close().IsOK());
    }
    return result;
  }
  bool IsOpen() const { return mWindow->GetWidget() != nullptr; }
  /// What the window tells of a failure at the moment; empty where all is well.
  virtual std::string FindTrouble() const { return {}; }
  /// Handles events until a condition holds; false when the window was closed or told of a failure before.
  bool Await(const std::function<bool()>& aCondition) {
    bool isTrue = false;
    const bool isOver = AwaitCondition([&] {
      if (mSaid.empty())
        mSaid = FindTrouble();
      isTrue = CanGoOn() && aCondition();
      return isTrue || !CanGoOn();
    });
    EXPECT_TRUE(isOver) << "neither did it go on nor say why; " << mSteps.Describe();
    return isTrue;
  }
  /// Whether the device went for good, which its window has to tell of.
  bool IsDeviceGone() const { return !GetParam().closesWindow && IsForGood(GetParam().fault) && mSteps.HasFailed(); }
  /// Waits until the window tells that its device is gone, where that is so.
  void AwaitLossTold() {
    if (IsDeviceGone())
      Await([] { return false; });
  }
  bool CanGoOn() const { return IsOpen() && mSaid.empty(); }
  /// What the window told of a failure, or that it was closed.
  KrResult GetOutcome() const {
    if (!mSaid.empty())
      return KrResult(KrResult::Code::Failed, mSaid);
    return IsOpen() ? KrResult() : KrResult(KrResult::Code::Cancelled, "The window was closed.");
  }
  /// Null when the window is closed.
  template <typename Control>
  Control* Find(int aID) const {
    return IsOpen() ? mWindow->GetWidget()->template findChild<Control*>("control" + QString::number(aID)) : nullptr;
  }
  std::string GetLabel(int aID) const {
    const auto* const label = Find<QLabel>(aID);
    return label ? label->text().toStdString() : std::string();
  }
  /// Presses a button that can be pressed.
  bool Click(int aID) {
    const bool isReady = Await([=, this] {
      const auto* const button = Find<QAbstractButton>(aID);
      return button && button->isEnabled();
    });
    if (isReady)
      Find<QAbstractButton>(aID)->click();
    return isReady && CanGoOn();
  }
  /// Picks the first entry that begins so, as the user does, once it is there.
  bool Pick(int aID, const QString& aEntry) {
    int index = -1;
    const bool isThere = Await([&] {
      const auto* const list = Find<QComboBox>(aID);
      index = list ? list->findText(aEntry, Qt::MatchStartsWith) : -1;
      return index >= 0;
    });
    if (isThere) {
      auto* const list = Find<QComboBox>(aID);
      list->setCurrentIndex(index);
      Q_EMIT list->activated(index);
    }
    return isThere && CanGoOn();
  }

  std::unique_ptr<Window> mWindow = std::make_unique<Window>();

private:
  KrResult UseWindow(const std::function<KrResult(KrDevice&)>& aUse) {
    mSaid.clear();
    mSteps.SetCounting(false);
    std::unique_ptr<KrDevice> device;
    KrResult result = Open(device);
    KrGenParameterArray* parameters = nullptr;
    if (result.IsOK())
      result = device->GetParameters(parameters);
    mSteps.SetCounting(true);
    if (result.IsOK())
      result = aUse(*device);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << mSteps.Describe();
    mSteps.SetCounting(false);
    QCoreApplication::sendPostedEvents(&mCalls); // Closing that came too late is not the next use's.
    return result;
  }
  // The step may be on any thread; the window is closed as its application would, from its loop.
  void CloseSoon() {
    mCalls.Post([this] { (void)mWindow->Close(); }); // It may be closed already.
  }
  void AnswerBox() {
    QWidget* const box = QApplication::activeModalWidget();
    const auto* const text = box && box->isVisible() ? box->findChild<QLabel*>(QStringLiteral("text")) : nullptr;
    if (!text)
      return;
    mSaid = (box->windowTitle() + ": " + box->accessibleDescription()).toStdString(); // Text and detail.
    QTest::keyClick(box, Qt::Key_Escape);
  }

  QTimer mHand;
  WindowCalls mCalls;
  std::string mSaid;
};

} // namespace krtest
