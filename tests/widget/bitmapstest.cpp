#include "res/bitmaps.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>
#include <string>

namespace {

using krgui::BitmapGround;

struct Picture {
  const char* name;
  int id;
  QSize size;
};

constexpr QSize kTool(16, 16);

const Picture kPictures[] = {
    {"options", krgui::kOptionsBitmapID, kTool},
    {"expand", krgui::kExpandBitmapID, kTool},
    {"collapse", krgui::kCollapseBitmapID, kTool},
    {"refresh", krgui::kRefreshBitmapID, kTool},
    {"disabled options", krgui::kDisabledOptionsBitmapID, kTool},
    {"disabled expand", krgui::kDisabledExpandBitmapID, kTool},
    {"disabled collapse", krgui::kDisabledCollapseBitmapID, kTool},
    {"disabled refresh", krgui::kDisabledRefreshBitmapID, kTool},
    {"glyphs", krgui::kGlyphsBitmapID, QSize(18, 9)},
    {"error", krgui::kErrorBitmapID, kTool},
    {"tools", krgui::kToolsBitmapID, QSize(64, 16)},
    {"no error", krgui::kNoErrorBitmapID, kTool},
};

/// How many pixels differ visibly in brightness from a background of one colour.
int CountVisible(const QImage& aPicture, const QColor& aBackground) {
  QImage page(aPicture.size(), QImage::Format_RGB32);
  page.fill(aBackground);
  QImage picture = aPicture;
  picture.setDevicePixelRatio(1.0);
  QPainter(&page).drawImage(0, 0, picture);
  int visible = 0;
  for (int y = 0; y < page.height(); ++y) {
    for (int x = 0; x < page.width(); ++x)
      visible += std::abs(qGray(page.pixel(x, y)) - qGray(aBackground.rgb())) > 30 ? 1 : 0;
  }
  return visible;
}

/// Whether all that is drawn has nearly equal channels.
bool IsGrey(const QImage& aPicture) {
  for (int y = 0; y < aPicture.height(); ++y) {
    for (int x = 0; x < aPicture.width(); ++x) {
      const QColor colour = aPicture.pixelColor(x, y);
      if (colour.alpha() > 64 && std::abs(colour.red() - colour.blue()) > 24)
        return false;
    }
  }
  return true;
}

std::string ToBytes(const QImage& aPicture) {
  return {reinterpret_cast<const char*>(aPicture.constBits()), static_cast<std::size_t>(aPicture.sizeInBytes())};
}

} // namespace

TEST(Bitmaps, EveryNumber_HasAPictureOfItsSizeAtEveryRatio) {
  for (const Picture& picture : kPictures) {
    for (const double ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
      const QImage bitmap = krgui::LoadBitmap(picture.id, ratio);

      EXPECT_EQ(bitmap.width(), std::ceil(picture.size.width() * ratio)) << picture.name << " at " << ratio;
      EXPECT_EQ(bitmap.height(), std::ceil(picture.size.height() * ratio)) << picture.name << " at " << ratio;
      EXPECT_DOUBLE_EQ(bitmap.devicePixelRatio(), ratio) << picture.name;
    }
  }
}

TEST(Bitmaps, NumberThatIsNotThere_IsNull) {
  for (const int id : {0, -1, krgui::kOptionsBitmapID - 1, krgui::kNoErrorBitmapID + 1})
    EXPECT_TRUE(krgui::LoadBitmap(id).isNull()) << id;
}

TEST(Bitmaps, RatioThatNoScreenHas_IsBroughtIntoRange) {
  for (const double ratio : {0.0, -2.0, 0.5, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(krgui::LoadBitmap(krgui::kErrorBitmapID, ratio).size(), kTool) << ratio;
  EXPECT_EQ(krgui::LoadBitmap(krgui::kErrorBitmapID, std::numeric_limits<double>::infinity()).size(), kTool * 16);
}

TEST(Bitmaps, Pictures_DifferFromEachOther) {
  std::set<std::string> contents;
  for (const Picture& picture : kPictures)
    contents.insert(ToBytes(krgui::LoadBitmap(picture.id)));

  EXPECT_EQ(contents.size(), std::size(kPictures));
}

TEST(Bitmaps, LightAndDarkGround_ShowEveryPictureAtEveryScale) {
  for (const Picture& picture : kPictures) {
    for (const double ratio : {1.0, 2.0}) {
      EXPECT_GT(CountVisible(krgui::LoadBitmap(picture.id, ratio), QColor(0xEF, 0xEF, 0xEF)), 10 * ratio)
          << picture.name;
      EXPECT_GT(CountVisible(krgui::LoadBitmap(picture.id, ratio, BitmapGround::Dark), QColor(0x2B, 0x2E, 0x33)),
                10 * ratio)
          << picture.name;
    }
  }
}

TEST(Bitmaps, TwiceTheRatio_IsDrawnAnewInsteadOfEnlarged) {
  for (const Picture& picture : kPictures) {
    const QImage enlarged = krgui::LoadBitmap(picture.id).scaled(picture.size * 2);
    EXPECT_NE(ToBytes(krgui::LoadBitmap(picture.id, 2.0)), ToBytes(enlarged)) << picture.name;
  }
}

TEST(Bitmaps, DisabledPicture_IsItsPictureInGrey) {
  constexpr int kStep = krgui::kDisabledOptionsBitmapID - krgui::kOptionsBitmapID;
  for (int id = krgui::kOptionsBitmapID; id <= krgui::kRefreshBitmapID; ++id) {
    for (const BitmapGround ground : {BitmapGround::Light, BitmapGround::Dark}) {
      const QImage normal = krgui::LoadBitmap(id, 1.0, ground);
      const QImage disabled = krgui::LoadBitmap(id + kStep, 1.0, ground);

      EXPECT_FALSE(IsGrey(normal)) << id;
      EXPECT_TRUE(IsGrey(disabled)) << id;
      EXPECT_EQ(normal.convertToFormat(QImage::Format_Alpha8), disabled.convertToFormat(QImage::Format_Alpha8)) << id;
    }
  }
}

TEST(Bitmaps, ToolStrip_HoldsTheFourToolPicturesInOrder) {
  for (const double ratio : {1.0, 2.0}) {
    const QImage strip = krgui::LoadBitmap(krgui::kToolsBitmapID, ratio);
    for (int index = 0; index < 4; ++index) {
      EXPECT_EQ(krgui::CutBitmap(strip, {QPoint(16 * index, 0), kTool}),
                krgui::LoadBitmap(krgui::kOptionsBitmapID + index, ratio))
          << index << " at " << ratio;
    }
  }
}

TEST(Bitmaps, ErrorPicture_HasAWhiteMarkOnRedAndTransparentCorners) {
  const QImage error = krgui::LoadBitmap(krgui::kErrorBitmapID);

  EXPECT_EQ(error.pixelColor(7, 6), QColor(Qt::white));
  EXPECT_GT(error.pixelColor(3, 8).red(), 2 * error.pixelColor(3, 8).blue());
  EXPECT_EQ(error.pixelColor(0, 0).alpha(), 0);
}

TEST(Bitmaps, ColourMadeTransparent_TakesItsPixelsAlone) {
  QImage bitmap(2, 2, QImage::Format_RGB32);
  bitmap.fill(Qt::white);
  bitmap.setPixelColor(1, 0, QColor(254, 255, 255));
  bitmap.setDevicePixelRatio(2.0);

  const QImage masked = krgui::MakeTransparent(bitmap, Qt::white);

  EXPECT_EQ(masked.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(masked.pixelColor(1, 0), QColor(254, 255, 255));
  EXPECT_DOUBLE_EQ(masked.devicePixelRatio(), 2.0);
}
