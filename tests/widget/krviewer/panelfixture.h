#pragma once
// What the tests of the panels have in common: frames that a test gives itself, and waits for what is shown of them.

#include "acquisition/framesink.h"
#include "windowwait.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>

class PanelTest : public testing::Test {
protected:
  /// Gives a frame of one colour to whoever hears of frames.
  void GiveFrame(std::uint8_t aValue, KrPixelType aType = KrPixel::Mono8, std::uint32_t aWidth = 64,
                 std::uint32_t aHeight = 48) {
    KrBuffer frame;
    ASSERT_TRUE(frame.GetImage()->Alloc(aWidth, aHeight, aType).IsOK());
    std::fill_n(frame.GetDataPointer(), frame.GetSize(), aValue);
    GiveFrame(frame);
  }
  void GiveFrame(KrBuffer& aFrame, KrBufferStatus aStatus = KrBufferStatus::Complete) {
    aFrame.SetFrameID(++mFrameID);
    aFrame.SetStatus(aStatus);
    aFrame.SetTimestampNs(mFrameID * 10'000'000);
    mFrames.Notify([&](krviewer::FrameSink& aSink) { aSink.OnFrame(aFrame, mNowNs); });
  }
  void Start() {
    mFrames.Notify([](krviewer::FrameSink& aSink) { aSink.OnAcquisitionStarted(); });
  }
  void End(const KrResult& aReason) {
    mFrames.Notify([&](krviewer::FrameSink& aSink) { aSink.OnAcquisitionEnded(aReason); });
  }
  /// Handles events until a condition comes true; false when it does not within a generous limit.
  static bool Await(const std::function<bool()>& aCondition) { return krtest::AwaitCondition(aCondition); }
  template <typename Widget>
  static Widget* Find(const QWidget& aPanel, const char* aName) {
    auto* const found = aPanel.findChild<Widget*>(QString::fromLatin1(aName));
    EXPECT_TRUE(found) << aName;
    return found;
  }
  /// A control by the text on it, mnemonic included.
  template <typename Button>
  static Button* FindButton(const QWidget& aPanel, const QString& aText) {
    for (Button* button : aPanel.findChildren<Button*>())
      if (button->text() == aText)
        return button;
    ADD_FAILURE() << "There is no " << aText.toStdString();
    return nullptr;
  }

  krviewer::FrameSinks mFrames{"a frame sink", "test", {"PanelTest", "panelfixture"}};
  std::uint64_t mFrameID = 0;
  std::uint64_t mNowNs = 1'000'000'000;
};
