#include "platform/ctcimagelist.h"

#include "res/bitmaps.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

using krgui::MaskColour;
using krgui::PictureSide;

constexpr QSize kTool(16, 16);

/// How many pixels are of a colour and not transparent.
int CountOpaque(const QPixmap& aPicture, const QColor& aColour) {
  const QImage image = aPicture.toImage().convertToFormat(QImage::Format_ARGB32);
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x)
      count += image.pixelColor(x, y) == aColour ? 1 : 0;
  }
  return count;
}

QImage ToImage(const QPixmap& aPicture) {
  return aPicture.toImage().convertToFormat(QImage::Format_ARGB32);
}

} // namespace

TEST(CTCImageList, StripWithoutASize_HoldsSquarePicturesOfItsHeight) {
  krgui::CTCImageList list;

  ASSERT_TRUE(list.Create(krgui::kToolsBitmapID));

  EXPECT_EQ(list.GetCount(), 4);
  EXPECT_EQ(list.GetPictureSize(), kTool);
}

TEST(CTCImageList, EveryWayToCreate_PartsTheStrip) {
  struct Row {
    const char* name;
    bool (*create)(krgui::CTCImageList& aList);
    int count;
    QSize size;
  };
  const Row rows[] = {
      {"number alone", [](krgui::CTCImageList& aList) { return aList.Create(krgui::kGlyphsBitmapID); }, 2, {9, 9}},
      {"one size",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, PictureSide(16)); },
       4,
       {16, 16}},
      {"width and height",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, QSize(32, 16)); },
       2,
       {32, 16}},
      {"one size and mask",
       [](krgui::CTCImageList& aList) {
         return aList.Create(krgui::kToolsBitmapID, PictureSide(16), MaskColour(Qt::red));
       },
       4,
       {16, 16}},
      {"mask",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kGlyphsBitmapID, MaskColour(Qt::red)); },
       2,
       {9, 9}},
      {"one picture",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, QSize(64, 16)); },
       1,
       {64, 16}},
  };
  for (const Row& row : rows) {
    krgui::CTCImageList list;

    EXPECT_TRUE(row.create(list)) << row.name;

    EXPECT_EQ(list.GetCount(), row.count) << row.name;
    EXPECT_EQ(list.GetPictureSize(), row.size) << row.name;
    for (int index = 0; index < row.count; ++index)
      EXPECT_EQ(list.GetPicture(index).deviceIndependentSize(), QSizeF(row.size)) << row.name;
  }
}

TEST(CTCImageList, Pictures_AreThoseOfTheStripInOrder) {
  krgui::CTCImageList list;
  ASSERT_TRUE(list.Create(krgui::kToolsBitmapID));

  for (const double ratio : {1.0, 2.0}) {
    for (int index = 0; index < 4; ++index) {
      const QImage expected = QPixmap::fromImage(krgui::LoadBitmap(krgui::kOptionsBitmapID + index, ratio)).toImage();
      EXPECT_EQ(ToImage(list.GetPicture(index, ratio)), expected.convertToFormat(QImage::Format_ARGB32)) << index;
    }
  }
}

TEST(CTCImageList, White_IsTransparentUnlessAnotherColourIsTheMask) {
  krgui::CTCImageList byDefault;
  krgui::CTCImageList byRed;
  ASSERT_TRUE(byDefault.Create(krgui::kErrorBitmapID));
  ASSERT_TRUE(byRed.Create(krgui::kErrorBitmapID, MaskColour(Qt::red)));

  for (const double ratio : {1.0, 1.5, 2.0}) {
    EXPECT_EQ(CountOpaque(byDefault.GetPicture(0, ratio), Qt::white), 0) << ratio;
    EXPECT_GT(CountOpaque(byRed.GetPicture(0, ratio), Qt::white), 0) << ratio;
  }
}

TEST(CTCImageList, NumberOrNameOfAColour_IsNoSize) {
  constexpr auto isTaken = []<typename... Values>(krgui::CTCImageList& aList, Values... aValues) {
    return requires {
      aList.Create(krgui::kToolsBitmapID, aValues...);
    };
  };
  krgui::CTCImageList list;

  EXPECT_FALSE(isTaken(list, Qt::white));
  EXPECT_FALSE(isTaken(list, 0xFFFFFF));
  EXPECT_FALSE(isTaken(list, 16, Qt::white));
  EXPECT_FALSE(isTaken(list, 16, 0xFFFFFF));
  EXPECT_TRUE(list.Create(krgui::kToolsBitmapID, MaskColour(Qt::white)));
  EXPECT_EQ(list.GetCount(), 4);
  EXPECT_TRUE(list.Create(krgui::kErrorBitmapID, MaskColour::FromRgb(0xFFFFFF)));
  EXPECT_EQ(CountOpaque(list.GetPicture(0, 1.0), Qt::white), 0);
}

TEST(CTCImageList, MaskColour_IsTransparentAtAnyRatio) {
  const QColor red = krgui::LoadBitmap(krgui::kErrorBitmapID).pixelColor(3, 8);
  krgui::CTCImageList list;
  ASSERT_TRUE(list.Create(krgui::kErrorBitmapID, PictureSide(16), MaskColour(red)));

  for (const double ratio : {1.0, 1.5, 2.0}) {
    EXPECT_EQ(CountOpaque(list.GetPicture(0, ratio), red), 0) << ratio;
    EXPECT_GT(CountOpaque(list.GetPicture(0, ratio), Qt::white), 0) << ratio;
  }
}

TEST(CTCImageList, WhatDoesNotFit_IsRefusedAndLeavesNothing) {
  struct Row {
    const char* name;
    bool (*create)(krgui::CTCImageList& aList);
  };
  const Row rows[] = {
      {"unknown bitmap", [](krgui::CTCImageList& aList) { return aList.Create(1); }},
      {"unknown bitmap with a size", [](krgui::CTCImageList& aList) { return aList.Create(1, PictureSide(16)); }},
      {"unknown bitmap with a mask", [](krgui::CTCImageList& aList) { return aList.Create(1, MaskColour(Qt::red)); }},
      {"size 0", [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, PictureSide(0)); }},
      {"negative size",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, PictureSide(-16)); }},
      {"too high", [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, PictureSide(32)); }},
      {"not as high", [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, PictureSide(8)); }},
      {"width that leaves a rest",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, QSize(24, 16)); }},
      {"wider than the strip",
       [](krgui::CTCImageList& aList) { return aList.Create(krgui::kToolsBitmapID, QSize(128, 16)); }},
  };
  for (const Row& row : rows) {
    krgui::CTCImageList list;
    ASSERT_TRUE(list.Create(krgui::kToolsBitmapID));

    EXPECT_FALSE(row.create(list)) << row.name;

    EXPECT_EQ(list.GetCount(), 0) << row.name;
    EXPECT_TRUE(list.GetPicture(0).isNull()) << row.name;
  }
}

TEST(CTCImageList, PictureThatIsNotThere_IsNull) {
  krgui::CTCImageList list;
  EXPECT_TRUE(list.GetPicture(0).isNull());
  ASSERT_TRUE(list.Create(krgui::kToolsBitmapID));

  EXPECT_TRUE(list.GetPicture(-1).isNull());
  EXPECT_TRUE(list.GetPicture(4).isNull());
  EXPECT_FALSE(list.GetPicture(3).isNull());
}
