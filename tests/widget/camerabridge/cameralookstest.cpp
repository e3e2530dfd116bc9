// The camera bridge manager's looks: limits, places, and nothing cut off.

#include "camerafixture.h"

#include <QAbstractItemView>
#include <QFontMetrics>

#include <atomic>

namespace krgui {

namespace {

constexpr int kLabels[] = {id::kTemplateLabel, id::kProbeStatus, id::kCLProtocolXMLLabel, id::kCLProtocolStatus,
                           id::kGenCPXMLLabel, id::kGenCPStatus, id::kPathLabel,          id::kCameraFileStatus,
                           id::kSourceLabel,   id::kBytesSent,   id::kBytesReceived,      id::kNone,
                           id::kCLProtocol,    id::kGenCP,       id::kCameraFile,         id::kSynchronization,
                           id::kPoCL};
constexpr int kButtons[] = {id::kProbe, id::kCLProtocolConnect, id::kGenCPConnect, id::kBrowse, id::kLoad, id::kReset};

/// Thread: that of the camera's notifications.
class CountingListener final : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter*) override { ++count; }
  std::atomic<int> count = 0;
};

class Looks : public CameraTest {
protected:
  void Resize(int aWidth, int aHeight) {
    mWindow->SetPosition(0, 0, aWidth, aHeight);
    ASSERT_TRUE(WaitFor([&] { return mWindow->GetWidget()->size() == QSize(aWidth, aHeight); }));
  }
  QWidget& GetBrowser() const {
    for (QWidget* const child : mWindow->GetWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (child->findChild<QAbstractItemView*>() && !child->inherits("QComboBox") && !child->isWindow())
        return *child;
    }
    throw std::runtime_error("no browser");
  }
};

} // namespace

TEST_F(Looks, Size_HasItsLimits) {
  Open();

  EXPECT_EQ(mWindow->GetWidget()->minimumSize(), QSize(775, 582));
  EXPECT_EQ(mWindow->GetWidget()->maximumSize(), QSize(1600, 2500));
}

TEST_F(Looks, Browser_LiesInItsFrame) {
  Open();
  for (const QSize& size : {QSize(775, 582), QSize(1200, 900), QSize(800, 600)}) {
    Resize(size.width(), size.height());

    const QRect frame = Get(id::kBrowserFrame).geometry();
    EXPECT_EQ(GetBrowser().geometry(), frame.adjusted(2, 2, -2, -2).translated(1, 1));
    EXPECT_TRUE(GetBrowser().isVisible());
  }
}

TEST_F(Looks, Browser_PollsWhatItShows) {
  Open();
  ConnectGenCP();
  auto& temperature = *GetBridge(0).GetParameters()->Get("DeviceTemperature");
  CountingListener listener;
  ASSERT_TRUE(temperature.RegisterEventSink(&listener).IsOK());

  // The camera's temperature changes by itself; nobody else asks for it.
  EXPECT_TRUE(WaitFor([&] { return listener.count > 3; }));

  EXPECT_TRUE(temperature.UnregisterEventSink(&listener).IsOK());
}

TEST_F(Looks, SmallestWindowAtAnyFont_CutsNothing) {
  const QFont before = QApplication::font();
  for (const int points : {9, 12}) {
    QFont font = before;
    font.setPointSize(points);
    QApplication::setFont(font);
    mWindow = std::make_unique<KrCameraBridgeManagerWnd>();
    Open();
    Resize(775, 582);

    for (const int label : kLabels)
      EXPECT_GE(Get(label).width(), Get(label).sizeHint().width()) << label << " at " << points;
    for (const int control : kButtons) {
      const auto& button = Get<QPushButton>(control);
      EXPECT_GE(button.width(), button.fontMetrics().size(Qt::TextShowMnemonic, button.text()).width() + 6)
          << control << " at " << points;
      EXPECT_GE(button.height(), button.fontMetrics().height() + 4) << control << " at " << points;
    }
    const QRect window = mWindow->GetWidget()->rect();
    for (const int control : {id::kPoCL, id::kReset, id::kSynchronization})
      EXPECT_TRUE(window.contains(Get(control).geometry())) << control << " at " << points;
    const auto* const visibility = GetBrowser().findChild<QComboBox*>();
    EXPECT_GE(visibility->width(), visibility->sizeHint().width()) << points;
  }
  QApplication::setFont(before);
}

TEST_F(Looks, StatusOfAConnectedCamera_CanBeReadWhole) {
  Open();
  Resize(775, 582);

  ConnectGenCP();

  const QWidget& status = Get(id::kGenCPStatus);
  EXPECT_GE(status.width(), status.sizeHint().width());
}

TEST_F(Looks, LongIdentifier_IsToldByTheTooltipAndHasRoomInTheDropDownList) {
  Open();

  Click(id::kGenCP);

  const auto& list = Get<QComboBox>(id::kGenCPXML);
  EXPECT_TRUE(list.toolTip().contains(list.currentText().toHtmlEscaped()));
  EXPECT_GE(list.view()->minimumWidth(), list.fontMetrics().horizontalAdvance(list.currentText()));
}

TEST_F(Looks, HiddenCameraFile_LeavesNoHole) {
  Open();
  const int before = Get(id::kSource).y();

  mWindow->HidePCF();
  EXPECT_LT(Get(id::kSource).y(), before);

  mWindow->ShowPCF();
  EXPECT_EQ(Get(id::kSource).y(), before);
}

TEST_F(Looks, Controls_HaveNamesForAssistiveTechnology) {
  Open();

  for (const int control : {id::kDevicePort, id::kTemplate, id::kCLProtocolXML, id::kGenCPXML, id::kPath, id::kSource,
                            id::kCLProtocolConnect, id::kGenCPConnect, id::kBrowse})
    EXPECT_FALSE(Get(control).accessibleName().isEmpty()) << control;
}

} // namespace krgui
