// How open editors look on light and dark desktops, and where they stand at every scale.

#include "browser/gridcolours.h"
#include "darkpalette.h"
#include "editorsfixture.h"

#include <algorithm>
#include <map>

namespace krgui {

namespace {

constexpr double kLeastContrast = 4.5;

constexpr const char* kFeatures[] = {"OffsetX",     "LineMask", "ExposureTime", "DeviceUserID", "GevCurrentIPAddress",
                                     "PixelFormat", "ReverseX", "DeviceReset"};

class EditorsLooksTest : public EditorsTest {
protected:
  ~EditorsLooksTest() override { QApplication::setPalette(mPalette); }

  /// The widgets that are shown on the rows.
  std::vector<QWidget*> ListShown() {
    std::vector<QWidget*> shown;
    for (QWidget* widget : grid->viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (widget->isVisible()) {
        shown.push_back(widget);
      }
    }
    return shown;
  }

private:
  const QPalette mPalette = QApplication::palette();
};

/// The colour that most of a widget has.
QColor FindGround(const QImage& aPicture) {
  std::map<QRgb, int> counts;
  for (int y = 0; y < aPicture.height(); ++y) {
    for (int x = 0; x < aPicture.width(); ++x) {
      ++counts[aPicture.pixel(x, y)];
    }
  }
  return QColor(std::max_element(counts.begin(), counts.end(), [](const auto& aLeft, const auto& aRight) {
                  return aLeft.second < aRight.second;
                })->first);
}

/// How well what is written on the ground, or drawn there, stands out.
double FindContrast(const QImage& aPicture, const QColor& aGround) {
  double contrast = 1;
  for (int y = 0; y < aPicture.height(); ++y) {
    for (int x = 0; x < aPicture.width(); ++x) {
      contrast = std::max(contrast, GetContrast(aPicture.pixelColor(x, y), aGround));
    }
  }
  return contrast;
}

TEST_F(EditorsLooksTest, TextsOfEditors_AreReadableOnLightAndDarkDesktops) {
  for (const bool isDark : {false, true}) {
    QApplication::setPalette(isDark ? MakeDarkPalette() : QPalette(QColor(0xEF, 0xEF, 0xEF), QColor(0xEF, 0xEF, 0xEF)));
    SetRegister(0x140, {'a', 'b'});
    for (const char* name : kFeatures) {
      SCOPED_TRACE(std::string(name) + (isDark ? " on dark" : " on light"));
      Select(name);

      const std::vector<QWidget*> shown = ListShown();

      ASSERT_FALSE(shown.empty());
      for (QWidget* widget : shown) {
        if (auto* const editBox = qobject_cast<QLineEdit*>(widget)) {
          editBox->deselect();
        }
        const QImage picture = widget->grab().toImage();
        const QColor ground = FindGround(picture);
        EXPECT_EQ(ground.lightness() < 128, isDark) << ground.name().toStdString();
        EXPECT_GE(FindContrast(picture, ground), kLeastContrast);
      }
    }
  }
}

TEST_F(EditorsLooksTest, Editors_FillTheirCellAndNothingElse) {
  for (const char* name : kFeatures) {
    SCOPED_TRACE(name);
    Select(name);
    const QRect row = grid->FindRow(Item(name));
    const QRect cell(QPoint(kInitialNameColumnWidth, row.top() - 1), QPoint(row.right(), row.bottom() + 1));

    QRegion covered;
    for (const QWidget* widget : ListShown()) {
      EXPECT_FALSE(covered.intersects(widget->geometry()));
      covered += widget->geometry();
    }

    EXPECT_EQ(covered, QRegion(cell));
  }
}

} // namespace

} // namespace krgui
