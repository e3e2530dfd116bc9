#include "finder/finderpictures.h"

#include "logic/finder/findericon.h"

#include <QIcon>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

namespace {

constexpr int kSide = 16;

QImage Render(const QIcon& aIcon, int aSide = kSide, QIcon::Mode aMode = QIcon::Normal) {
  return aIcon.pixmap(QSize(aSide, aSide), aMode).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How many pixels differ visibly in brightness from a background of one colour.
int CountVisible(const QImage& aPicture, const QColor& aBackground) {
  QImage page(aPicture.size(), QImage::Format_RGB32);
  page.fill(aBackground);
  QPainter(&page).drawImage(0, 0, aPicture);
  int visible = 0;
  for (int y = 0; y < page.height(); ++y) {
    for (int x = 0; x < page.width(); ++x)
      visible += std::abs(qGray(page.pixel(x, y)) - qGray(aBackground.rgb())) > 40 ? 1 : 0;
  }
  return visible;
}

/// The mean distance of the opaque pixels' channels from grey.
double GetColourfulness(const QImage& aPicture) {
  double sum = 0;
  int count = 0;
  for (int y = 0; y < aPicture.height(); ++y) {
    for (int x = 0; x < aPicture.width(); ++x) {
      const QColor colour = aPicture.pixelColor(x, y);
      if (colour.alpha() == 0)
        continue;
      sum += std::max({colour.red(), colour.green(), colour.blue()}) -
             std::min({colour.red(), colour.green(), colour.blue()});
      ++count;
    }
  }
  return count > 0 ? sum / count : 0;
}

int ToIndex(krgui::FinderIcon aIcon) {
  return static_cast<int>(aIcon);
}

} // namespace

TEST(FinderPictures, EveryPlaceOfTheStrip_HasAPictureOfItsOwn) {
  std::set<std::string> pictures;
  for (int i = 0; i < krgui::kFinderIconCount; ++i) {
    const QImage picture = Render(krgui::GetFinderPicture(i));
    ASSERT_EQ(picture.size(), QSize(kSide, kSide)) << i;
    pictures.emplace(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes());
  }

  EXPECT_EQ(pictures.size(), static_cast<std::size_t>(krgui::kFinderIconCount));
}

TEST(FinderPictures, PlaceOutsideTheStrip_IsEmpty) {
  EXPECT_TRUE(krgui::GetFinderPicture(-1).isNull());
  EXPECT_TRUE(krgui::GetFinderPicture(krgui::kFinderIconCount).isNull());
}

TEST(FinderPictures, LightAndDarkBackground_ShowEveryPicture) {
  for (int i = 0; i < krgui::kFinderIconCount; ++i) {
    const QImage picture = Render(krgui::GetFinderPicture(i));
    EXPECT_GT(CountVisible(picture, Qt::white), 20) << i;
    EXPECT_GT(CountVisible(picture, QColor(0x20, 0x22, 0x26)), 20) << i;
  }
}

TEST(FinderPictures, SelectedItem_ShowsThePictureInTheColourOfItsText) {
  const QIcon icon = krgui::GetFinderPicture(ToIndex(krgui::FinderIcon::USB));

  EXPECT_NE(Render(icon, kSide, QIcon::Selected), Render(icon));
}

TEST(FinderPictures, KindThatCannotBeChosen_IsGrey) {
  using krgui::FinderIcon;
  const std::pair<FinderIcon, FinderIcon> pairs[] = {
      {FinderIcon::GEV, FinderIcon::GEVDisabled},
      {FinderIcon::TolvanProtocol, FinderIcon::TolvanProtocolDisabled},
      {FinderIcon::U3V, FinderIcon::U3VDisabled},
      {FinderIcon::USB, FinderIcon::USBDisabled},
  };
  for (const auto& [enabled, disabled] : pairs) {
    EXPECT_LT(GetColourfulness(Render(krgui::GetFinderPicture(ToIndex(disabled)))),
              GetColourfulness(Render(krgui::GetFinderPicture(ToIndex(enabled)))) / 2)
        << ToIndex(disabled);
  }
}

TEST(FinderPictures, TwiceTheSize_IsDrawnAnewInsteadOfEnlarged) {
  for (int i = 0; i < krgui::kFinderIconCount; ++i) {
    const QIcon icon = krgui::GetFinderPicture(i);
    const QImage enlarged = Render(icon).scaled(2 * kSide, 2 * kSide);
    EXPECT_NE(Render(icon, 2 * kSide), enlarged) << i;
  }
}

TEST(FinderPictures, PaintingOnAScreenOfTwiceTheScale_UsesItsPixels) {
  QImage screen(2 * kSide, 2 * kSide, QImage::Format_ARGB32_Premultiplied);
  screen.setDevicePixelRatio(2.0);
  screen.fill(Qt::transparent);

  QPainter painter(&screen);
  krgui::GetFinderPicture(1).paint(&painter, QRect(0, 0, kSide, kSide));
  painter.end();

  screen.setDevicePixelRatio(1.0);
  EXPECT_EQ(screen.convertToFormat(QImage::Format_ARGB32), Render(krgui::GetFinderPicture(1), 2 * kSide));
}

TEST(FinderPictures, ErrorMark_IsSeenOnAnyBackground) {
  const QImage mark = Render(krgui::GetErrorPicture());

  EXPECT_GT(CountVisible(mark, Qt::white), 100);
  EXPECT_GT(CountVisible(mark, Qt::black), 100);
}
