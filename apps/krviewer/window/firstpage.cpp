#include "window/firstpage.h"

#include "window/showntext.h"

#include <QCommandLinkButton>
#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

namespace krviewer {

namespace {

/// How wide the page's middle is, in letters, and how much of a name a button shows.
constexpr int kWidthInLetters = 64;
constexpr int kMostLetters = 60;
constexpr double kTitleScale = 1.8;

/// Some styles draw no focus on links, which one would then choose blindly.
class FocusedLink : public QCommandLinkButton {
public:
  using QCommandLinkButton::QCommandLinkButton;

protected:
  void paintEvent(QPaintEvent* aEvent) override {
    QCommandLinkButton::paintEvent(aEvent);
    if (!hasFocus())
      return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), kFocusWidth));
    constexpr qreal kInset = kFocusWidth / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(kInset, kInset, -kInset, -kInset), kFocusRadius, kFocusRadius);
  }

private:
  static constexpr qreal kFocusWidth = 2;
  static constexpr qreal kFocusRadius = 3;
};

/// A camera's name, shortened where there is no room for it.
class CameraLink : public FocusedLink {
public:
  explicit CameraLink(const QString& aName) : mName(aName) { setText(ToEntry(mName)); }

protected:
  void resizeEvent(QResizeEvent* aEvent) override {
    FocusedLink::resizeEvent(aEvent);
    // As the toolkit writes the first line of such buttons.
    QFont font = this->font();
    font.setBold(true);
    font.setPointSizeF(kTitlePoints);
    const int room = width() - iconSize().width() - kSides;
    setText(ToEntry(QFontMetrics(font).elidedText(mName, Qt::ElideRight, room)));
  }

private:
  static constexpr double kTitlePoints = 9;
  static constexpr int kSides = 24; ///< What is around icon and text, in device-independent pixels.

  const QString mName;
};

QLabel* MakeText(const QString& aText) {
  auto* const label = new QLabel(aText);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

QCommandLinkButton* MakeButton(const QString& aName, const QString& aText, const QString& aDescription) {
  auto* const button = new FocusedLink(aText, aDescription);
  button->setObjectName(aName);
  button->setAccessibleDescription(aDescription);
  button->setAutoDefault(true);
  return button;
}

} // namespace

FirstPage::FirstPage() : mRecent(new QWidget), mRecentButtons(new QVBoxLayout(mRecent)) {
  auto* const title = MakeText(QStringLiteral("krviewer"));
  QFont large = title->font();
  large.setPointSizeF(large.pointSizeF() * kTitleScale);
  title->setFont(large);
  auto* const find = MakeButton(QStringLiteral("findCamera"), QStringLiteral("Fi&nd a camera"),
                                QStringLiteral("Lists every camera that is connected to this computer."));
  auto* const simulation = MakeButton(QStringLiteral("trySimulation"), QStringLiteral("Try the &simulated one"),
                                      QStringLiteral("Shows a camera that needs no hardware."));
  connect(find, &QAbstractButton::clicked, this, &FirstPage::FindWanted);
  connect(simulation, &QAbstractButton::clicked, this, &FirstPage::SimulationWanted);

  auto* const middle = new QWidget;
  auto* const column = new QVBoxLayout(middle);
  column->addStretch(1);
  column->addWidget(title);
  column->addWidget(MakeText(QStringLiteral("Shows GigE Vision and USB3 Vision cameras live, with all their features "
                                            "beside the picture. Several cameras can be open at once, each in its "
                                            "tab.")));
  column->addSpacing(fontMetrics().height());
  column->addWidget(find);
  column->addWidget(simulation);
  column->addSpacing(fontMetrics().height());
  column->addWidget(mRecent);
  column->addStretch(2);
  middle->setMaximumWidth(fontMetrics().averageCharWidth() * kWidthInLetters);

  auto* const centred = new QWidget;
  auto* const row = new QHBoxLayout(centred);
  row->addStretch(1);
  row->addWidget(middle, 1000);
  row->addStretch(1);
  auto* const scroller = new QScrollArea;
  scroller->setFrameShape(QFrame::NoFrame);
  scroller->setWidgetResizable(true);
  scroller->setFocusPolicy(Qt::NoFocus);
  scroller->setWidget(centred);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scroller);
  mRecentButtons->setContentsMargins(0, 0, 0, 0);
  mRecentButtons->setSpacing(0);
  mRecent->hide();
  setFocusProxy(find);
}

void FirstPage::SetRecentCameras(const RecentCameras& aCameras) {
  while (QLayoutItem* const item = mRecentButtons->takeAt(0)) {
    item->widget()->hide();
    item->widget()->deleteLater();
    delete item;
  }
  if (!aCameras.GetAll().isEmpty())
    mRecentButtons->addWidget(MakeText(QStringLiteral("Shown last:")));
  for (const RecentCamera& camera : aCameras.GetAll()) {
    auto* const button = new CameraLink(ToLine(camera.name, kMostLetters));
    button->setObjectName(QStringLiteral("recentCamera"));
    button->setToolTip(ToToolTip(camera.name + QLatin1Char('\n') + camera.id));
    button->setAutoDefault(true);
    connect(button, &QAbstractButton::clicked, this, [this, id = camera.id] { emit CameraWanted(id); });
    mRecentButtons->addWidget(button);
  }
  mRecent->setVisible(!aCameras.GetAll().isEmpty());
}

} // namespace krviewer
