// The page without a camera: cameras with long names.

#include "window/firstpage.h"

#include "windowwait.h"

#include <gtest/gtest.h>

#include <QAbstractButton>

using namespace krviewer;

TEST(FirstPage, LongNameOfACamera_EndsInAnEllipsisAndIsWholeInTheTooltip) {
  const QString name = QStringLiteral("Camera above the second conveyor belt, behind the pillar");
  RecentCameras cameras;
  cameras.Add({"1", name});
  FirstPage page;
  page.SetRecentCameras(cameras);
  page.resize(300, 400);

  page.show();
  ASSERT_TRUE(krtest::AwaitExposed(&page));

  const auto& link = *page.findChild<QAbstractButton*>("recentCamera");
  EXPECT_TRUE(krtest::AwaitCondition([&] { return link.text().endsWith(QChar(0x2026)); }));
  EXPECT_TRUE(link.toolTip().contains("pillar"));
}

TEST(FirstPage, NameOfACameraThatHasRoom_IsWhole) {
  RecentCameras cameras;
  cameras.Add({"1", "sim-mono"});
  FirstPage page;
  page.SetRecentCameras(cameras);
  page.resize(600, 400);

  page.show();
  ASSERT_TRUE(krtest::AwaitExposed(&page));

  EXPECT_EQ(page.findChild<QAbstractButton*>("recentCamera")->text(), "sim-mono");
}
