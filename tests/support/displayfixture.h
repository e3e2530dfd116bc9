#pragma once
// What tests of the display window share: a window that is opened at a size and looked at in device pixels.

#include "krgui/krdisplaywnd.h"

#include "displaypictures.h"
#include "plainpicture.h"
#include "windowwait.h"

#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <cstring>

/// An image of one grey.
inline KrBuffer MakeGrey(std::uint32_t aWidth, std::uint32_t aHeight, std::uint8_t aValue) {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(aWidth, aHeight, KrPixel::Mono8).IsOK());
  std::memset(buffer.GetDataPointer(), aValue, buffer.GetSize());
  return buffer;
}

class KrDisplayWndTest : public testing::Test {
protected:
  void Open(int aWidth, int aHeight) {
    mWindow.SetPosition(50, 50, aWidth, aHeight);
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
  }

  /// The client area in device pixels, painted after all that was asked for.
  QImage Grab() {
    EXPECT_TRUE(mWindow.DoEvents().IsOK());
    QImage picture = mWindow.GetWidget()->grab().toImage();
    picture.setDevicePixelRatio(1.0);
    return picture.convertToFormat(QImage::Format_RGB32);
  }

  /// The client area in device pixels, as the display has it.
  QSize GetDeviceSize() const {
    const QSizeF size = QSizeF(GetView().size()) * GetRatio();
    return {static_cast<int>(std::lround(size.width())), static_cast<int>(std::lround(size.height()))};
  }

  double GetRatio() const { return mWindow.GetWidget()->devicePixelRatioF(); }

  QWidget& GetView() const { return *mWindow.GetWidget()->findChild<QWidget*>("display"); }
  QScrollBar& GetHorizontalBar() const { return *mWindow.GetWidget()->findChild<QScrollBar*>("control1044"); }
  QScrollBar& GetVerticalBar() const { return *mWindow.GetWidget()->findChild<QScrollBar*>("control1046"); }

  KrDisplayWnd mWindow;
};
