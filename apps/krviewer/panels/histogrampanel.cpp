#include "panels/histogrampanel.h"

#include "panels/graphcolours.h"
#include "panels/histogramplot.h"
#include "panels/numbertable.h"
#include "panels/panelarea.h"
#include "panels/valuetext.h"
#include "panels/wraplayout.h"
#include "plaintext.h"

#include <QAction>
#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

#include <algorithm>
#include <iterator>

namespace krviewer {

namespace {

enum Column { kMean, kDeviation, kLowest, kHighest, kClippedLow, kClippedHigh };

struct ComponentName {
  char component;
  const char* name;
};
constexpr ComponentName kNames[] = {{'Y', "Grey"}, {'R', "Red"}, {'G', "Green"}, {'B', "Blue"}};

QString GetName(char aComponent) {
  const auto* const found = std::ranges::find(kNames, aComponent, &ComponentName::component);
  return found != std::end(kNames) ? QString::fromLatin1(found->name) : QString(QLatin1Char(aComponent));
}

QString FormatNumber(double aValue) {
  return QString::fromStdString(krapps::FormatFixed(aValue, 1));
}

} // namespace

HistogramPanel::HistogramPanel(FrameSinks& aFrames)
    : SnapshotPanel(aFrames), mPlot(new HistogramPlot),
      mTable(new NumberTable({QStringLiteral("Mean"), QStringLiteral("Deviation"), QStringLiteral("Least"),
                              QStringLiteral("Greatest"), QStringLiteral("At 0"), QStringLiteral("At 255")})),
      mFrame(new QLabel) {
  setObjectName(QStringLiteral("histogramPanel"));
  mTable->setObjectName(QStringLiteral("histogramNumbers"));
  mTable->setAccessibleName(QStringLiteral("Numbers of the histogram"));
  mTable->setToolTip(QStringLiteral("Pixels at the least or the greatest value of the format may be clipped."));
  mTable->setVisible(false);
  mFrame->setTextFormat(Qt::PlainText);
  mFrame->setObjectName(QStringLiteral("histogramFrame"));
  mFrame->setWordWrap(true);
  auto* const area = new PanelArea(*this, MakeControls(), mPlot);
  area->AddNumbers(mTable);
  area->AddNumbers(mFrame);
  mPlot->setAccessibleName(QStringLiteral("Histogram"));
  mPlot->setAccessibleDescription(QStringLiteral("Its numbers are in the table below."));
  mPlot->ShowText(QStringLiteral("No frame yet"));
}

QWidget* HistogramPanel::MakeControls() {
  auto* const controls = new QWidget;
  auto* const layout = new WrapLayout(controls);
  auto* const logarithmic = new QCheckBox(QStringLiteral("Logarith&mic"));
  logarithmic->setToolTip(QStringLiteral("Lets values that few pixels have be seen, too"));
  connect(logarithmic, &QCheckBox::toggled, mPlot,
          [this](bool aIsOn) { mPlot->SetScale(aIsOn ? HistogramScale::Logarithmic : HistogramScale::Linear); });
  auto* const frozen = new QCheckBox(QStringLiteral("Free&ze"));
  frozen->setToolTip(QStringLiteral("Keeps what is shown while the picture goes on"));
  connect(frozen, &QCheckBox::toggled, this, &HistogramPanel::SetFrozen);
  mColours = new QToolButton;
  mColours->setText(QStringLiteral("Co&lours"));
  mColours->setToolTip(QStringLiteral("Which colours are drawn"));
  mColours->setPopupMode(QToolButton::InstantPopup);
  mColours->setFocusPolicy(Qt::StrongFocus);
  mColours->setEnabled(false);
  mColourMenu = new QMenu(mColours);
  mColours->setMenu(mColourMenu);
  layout->addWidget(logarithmic);
  layout->addWidget(frozen);
  layout->addWidget(mColours);
  return controls;
}

void HistogramPanel::ShowSnapshot(const Snapshot& aSnapshot) {
  KrResult counted = aSnapshot.result;
  if (counted.IsOK())
    counted = mHistogram.Count(*aSnapshot.pixels.GetImage());
  ShowFrame(aSnapshot);
  if (counted.IsOK()) {
    ShowHistogram();
    return;
  }
  mTable->setVisible(false);
  mColours->setEnabled(false);
  mPlot->ShowText(QString::fromUtf8(counted.GetDescription().CStr()));
}

void HistogramPanel::ShowFrame(const Snapshot& aSnapshot) {
  const std::uint64_t counted = std::uint64_t{aSnapshot.cutout.columns} * aSnapshot.cutout.lines;
  const std::uint64_t pixels = std::uint64_t{aSnapshot.width} * aSnapshot.height;
  QString text = QStringLiteral("Frame %1").arg(aSnapshot.frameID);
  if (!aSnapshot.isWhole)
    text += QStringLiteral(", incomplete");
  if (counted < pixels)
    text += QStringLiteral(", %1 of %2 pixels").arg(counted).arg(pixels);
  mFrame->setText(text);
  mFrame->setToolTip(counted < pixels ? QStringLiteral("Of large frames lines from all over the frame are counted.")
                                      : QString());
}

void HistogramPanel::ShowHistogram() {
  const std::vector<HistogramChannel>& channels = mHistogram.GetChannels();
  ShowColours();
  HistogramPicture picture{
      .channels = {}, .lowestValue = mHistogram.GetLowestValue(), .highestValue = mHistogram.GetHighestValue()};
  std::ranges::copy_if(channels, std::back_inserter(picture.channels),
                       [this](const HistogramChannel& aChannel) { return !mHidden.contains(aChannel.component); });
  if (picture.channels.empty())
    mPlot->ShowText(QStringLiteral("No colour is chosen"));
  else
    mPlot->Show(std::move(picture));
  mTable->horizontalHeaderItem(kClippedLow)->setText(QStringLiteral("At %1").arg(mHistogram.GetLowestValue()));
  mTable->horizontalHeaderItem(kClippedHigh)->setText(QStringLiteral("At %1").arg(mHistogram.GetHighestValue()));
  mTable->SetRows(static_cast<int>(channels.size()));
  for (std::size_t i = 0; i < channels.size(); ++i)
    ShowRow(static_cast<int>(i), channels[i]);
  mTable->setVisible(true);
}

void HistogramPanel::ShowColours() {
  QString components;
  for (const HistogramChannel& channel : mHistogram.GetChannels())
    components += QLatin1Char(channel.component);
  mColours->setEnabled(components.size() > 1);
  if (mColourMenu->objectName() == components)
    return;
  mColourMenu->setObjectName(components);
  mColourMenu->clear();
  mHidden.clear();
  for (const HistogramChannel& channel : mHistogram.GetChannels()) {
    const char component = channel.component;
    QAction* const action = mColourMenu->addAction(QLatin1Char('&') + GetName(component));
    action->setCheckable(true);
    action->setChecked(true);
    connect(action, &QAction::toggled, this, [this, component](bool aIsShown) {
      if (aIsShown)
        mHidden.erase(component);
      else
        mHidden.insert(component);
      ShowHistogram();
    });
  }
}

void HistogramPanel::ShowRow(int aRow, const HistogramChannel& aChannel) {
  mTable->SetRowName(aRow, GetName(aChannel.component), GetComponentColour(palette(), aChannel.component));
  const auto format = [&aChannel](std::uint64_t aPixels) {
    return QString::fromStdString(FormatPercent(aChannel.GetPercent(aPixels)));
  };
  const auto emphasise = [](std::uint64_t aPixels) {
    return aPixels > 0 ? NumberTable::Emphasis::Warning : NumberTable::Emphasis::None;
  };
  mTable->SetNumber(aRow, kMean, FormatNumber(aChannel.mean), NumberTable::Emphasis::None);
  mTable->SetNumber(aRow, kDeviation, FormatNumber(aChannel.deviation), NumberTable::Emphasis::None);
  mTable->SetNumber(aRow, kLowest, QString::number(aChannel.lowest), NumberTable::Emphasis::None);
  mTable->SetNumber(aRow, kHighest, QString::number(aChannel.highest), NumberTable::Emphasis::None);
  mTable->SetNumber(aRow, kClippedLow, format(aChannel.clippedLow), emphasise(aChannel.clippedLow));
  mTable->SetNumber(aRow, kClippedHigh, format(aChannel.clippedHigh), emphasise(aChannel.clippedHigh));
}

void HistogramPanel::changeEvent(QEvent* aEvent) {
  SnapshotPanel::changeEvent(aEvent);
  if (aEvent->type() == QEvent::PaletteChange && !mHistogram.GetChannels().empty())
    ShowHistogram();
}

} // namespace krviewer
