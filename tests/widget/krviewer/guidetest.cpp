// The guide that is installed with the viewer: its window, its links, and what is said where it is missing.

#include "darkpalette.h"
#include "help/guidebrowser.h"
#include "viewerfixture.h"

#include <QDialog>
#include <QFile>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>

using krviewer::GuideBrowser;
using krviewer::MakeHeadingName;

namespace {

class GuideTest : public ViewerTest {
protected:
  void Write(const char* aName, const QByteArray& aText) {
    QFile file(QString::fromStdString(mFolder.GetFile(aName)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(aText), aText.size());
  }
  /// Opens it by its entry; null where it did not come.
  GuideBrowser* OpenGuide() {
    if (!Choose("guide"))
      return nullptr;
    auto* const window = GetWindow().findChild<QDialog*>("guideWindow");
    return window && window->isVisible() ? window->findChild<GuideBrowser*>() : nullptr;
  }
  static QString GetHeading(const GuideBrowser& aBrowser) { return aBrowser.toPlainText().section('\n', 0, 0); }
  QString GetState() {
    for (const auto* const label : GetWindow().findChild<QDialog*>("guideWindow")->findChildren<QLabel*>())
      if (label->isVisible())
        return label->text();
    return {};
  }
};

} // namespace

TEST_F(GuideTest, Entry_ShowsTheInstalledGuideOnce) {
  Write("guide.md", "# From a camera\n\nText.\n");
  Begin();

  GuideBrowser* const browser = OpenGuide();

  ASSERT_NE(browser, nullptr);
  EXPECT_EQ(GetHeading(*browser), "From a camera");
  EXPECT_EQ(OpenGuide(), browser);
  EXPECT_TRUE(Await([=] { return browser->hasFocus(); }));
}

TEST_F(GuideTest, GuideThatIsMissing_IsToldWithItsPlace) {
  Begin();

  EXPECT_EQ(OpenGuide(), nullptr);

  EXPECT_TRUE(GetMessage(GetWindow()).contains(mGuideFile)) << GetMessage(GetWindow()).toStdString();
}

TEST_F(GuideTest, LinkToAnotherDocument_IsFollowedThereAndBack) {
  Write("guide.md", "# First\n\n[second](second.md)\n");
  Write("second.md", "# Second\n");
  Begin();
  GuideBrowser* const browser = OpenGuide();
  ASSERT_NE(browser, nullptr);

  browser->Follow(QUrl("second.md"));
  EXPECT_EQ(GetHeading(*browser), "Second");
  ASSERT_TRUE(Click(*browser->window(), "Back"));

  EXPECT_EQ(GetHeading(*browser), "First");
}

TEST_F(GuideTest, LinkToAHeading_ScrollsThere) {
  QByteArray lines;
  for (int line = 0; line < 200; ++line)
    lines += "Line " + QByteArray::number(line) + ".\n\n";
  Write("guide.md", "# First\n");
  Write("second.md", "# Second\n\n" + lines + "## 6 Frames are *incomplete*?\n\n" + lines);
  Begin();
  GuideBrowser* const browser = OpenGuide();
  ASSERT_NE(browser, nullptr);

  browser->Follow(QUrl("second.md#6-frames-are-incomplete"));

  EXPECT_EQ(browser->cursorForPosition(QPoint(5, 5)).block().text(), "6 Frames are incomplete?");
}

TEST_F(GuideTest, LinkToWhatIsNotInstalled_IsSaidAndTheDocumentStays) {
  Write("guide.md", "# First\n\n[source](../examples/main.cpp)\n");
  Begin();
  GuideBrowser* const browser = OpenGuide();
  ASSERT_NE(browser, nullptr);

  browser->Follow(QUrl("../examples/main.cpp"));

  EXPECT_EQ(GetHeading(*browser), "First");
  EXPECT_EQ(GetState(), "main.cpp comes with the sources alone: it is not installed.");
}

TEST_F(GuideTest, Links_CanBeReadOnADarkScreenAndHaveTheirColourOnALightOne) {
  Write("guide.md", "# First\n\nText, [link](second.md), text.\n");
  Begin();
  GuideBrowser* const browser = OpenGuide();
  ASSERT_NE(browser, nullptr);
  const QPalette light = browser->palette();
  const auto getLinkColour = [=] {
    QTextCursor cursor = browser->document()->find("link");
    return cursor.charFormat().foreground().color();
  };

  EXPECT_EQ(getLinkColour(), light.color(QPalette::Link));
  browser->setPalette(krgui::MakeDarkPalette());
  EXPECT_EQ(getLinkColour(), krgui::MakeDarkPalette().color(QPalette::Text));
  browser->setPalette(light);
  EXPECT_EQ(getLinkColour(), light.color(QPalette::Link));
}

TEST_F(GuideTest, PictureThatIsWiderThanTheWindow_IsFittedToIt) {
  QImage picture(4000, 100, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(QString::fromStdString(mFolder.GetFile("wide.png"))));
  Write("guide.md", "# First\n\n![wide](wide.png)\n");
  Begin();
  GuideBrowser* const browser = OpenGuide();
  ASSERT_NE(browser, nullptr);

  EXPECT_EQ(browser->horizontalScrollBar()->maximum(), 0);
  const QImage shown = browser->grab().toImage();
  int red = 0;
  for (int x = 0; x < shown.width(); ++x)
    for (int y = 0; y < shown.height(); ++y)
      if (shown.pixelColor(x, y) == Qt::red && ++red)
        break;
  EXPECT_GT(red, browser->viewport()->width() * 9 / 10);
  EXPECT_LE(red, browser->viewport()->width());
}

TEST(GuideHeadings, NamesAreThoseOfTheirLinks) {
  EXPECT_EQ(MakeHeadingName("4 A firewall drops the camera's packets"), "4-a-firewall-drops-the-cameras-packets");
  EXPECT_EQ(MakeHeadingName("In krviewer"), "in-krviewer");
  EXPECT_EQ(MakeHeadingName(" USB3 Vision: `udev` "), "usb3-vision-udev");
}
