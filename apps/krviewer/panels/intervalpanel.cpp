#include "panels/intervalpanel.h"

#include "filedialogs.h"
#include "krbase/krsteadytime.h"
#include "panels/graphcolours.h"
#include "panels/intervalplot.h"
#include "panels/intervaltable.h"
#include "panels/numbertable.h"
#include "panels/panelarea.h"
#include "panels/wraplayout.h"
#include "plaintext.h"

#include <QComboBox>
#include <QEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <chrono>
#include <cstdio>
#include <memory>
#include <utility>

namespace krviewer {

namespace {

constexpr int kLookIntervalMs = 100;
/// For a table that is still written at the end.
constexpr std::chrono::seconds kSavingPatience{2};
constexpr double kMillisecondNs = 1e6;
constexpr int kMillisecondDigits = 3;

void TellFailure(QWidget* aParent, const KrResult& aResult) {
  auto* const box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Export"),
                                    QString::fromUtf8(aResult.GetDescription().CStr()), QMessageBox::Ok, aParent);
  box->setTextFormat(Qt::PlainText);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

} // namespace

IntervalPanel::IntervalPanel(FrameSinks& aFrames) : IntervalPanel(aFrames, KrGetSteadyNs) {}

IntervalPanel::IntervalPanel(FrameSinks& aFrames, Clock aClock)
    : mFrames(aFrames), mClock(std::move(aClock)), mState(new QLabel), mPlot(new IntervalPlot),
      mNumbers(new NumberTable(
          {QStringLiteral("Least"), QStringLiteral("Mean"), QStringLiteral("Greatest"), QStringLiteral("Jitter")})),
      mLosses(new QLabel) {
  setObjectName(QStringLiteral("intervalPanel"));
  mState->setObjectName(QStringLiteral("intervalState"));
  mLosses->setObjectName(QStringLiteral("intervalLosses"));
  mState->setTextFormat(Qt::PlainText);
  mLosses->setTextFormat(Qt::PlainText);
  for (QLabel* const label : {mState, mLosses})
    label->setWordWrap(true);
  mPlot->setAccessibleName(QStringLiteral("Frame intervals over time"));
  mNumbers->setObjectName(QStringLiteral("intervalNumbers"));
  mNumbers->setAccessibleName(QStringLiteral("Frame intervals in milliseconds"));
  mNumbers->setToolTip(QStringLiteral("From one frame to the next, by the time of its arrival here and by the camera's "
                                      "own clock. Jitter is the standard deviation."));
  mNumbers->SetRows(2);
  auto* const area = new PanelArea(*this, MakeControls(), mPlot);
  area->AddNumbers(mState);
  area->AddNumbers(mLosses);
  area->AddNumbers(mNumbers);
  connect(&mTimer, &QTimer::timeout, this, &IntervalPanel::Look);
  connect(&mSavingTimer, &QTimer::timeout, this, [this] { mSaving.Follow(); });
  // It fails for a sink that is registered already, which this one is not.
  [[maybe_unused]] const KrResult registered = mFrames.Register(&mIntervals);
  Look();
}

IntervalPanel::~IntervalPanel() {
  [[maybe_unused]] const KrResult unregistered = mFrames.Unregister(&mIntervals); // It was registered.
  if (mSaving.AwaitFor(kSavingPatience))
    return;
  mSaving.Leave();
  std::fprintf(stderr, "The frame intervals were not saved: their disk does not answer.\n");
}

QWidget* IntervalPanel::MakeControls() {
  auto* const controls = new QWidget;
  auto* const layout = new WrapLayout(controls);
  mSpan = new QComboBox;
  mSpan->addItems({QStringLiteral("10 seconds"), QStringLiteral("1 minute"), QStringLiteral("10 minutes")});
  mSpan->setAccessibleName(QStringLiteral("Time shown"));
  mSpan->setToolTip(QStringLiteral("How much of the past is shown"));
  connect(mSpan, &QComboBox::currentIndexChanged, this, &IntervalPanel::Look);
  auto* const reset = new QPushButton(QStringLiteral("Re&set"));
  reset->setToolTip(QStringLiteral("Forgets the past"));
  connect(reset, &QPushButton::clicked, this, &IntervalPanel::Reset);
  auto* const save = new QPushButton(QStringLiteral("&Export…"));
  save->setToolTip(QStringLiteral("Saves what is shown as a table of comma-separated values"));
  connect(save, &QPushButton::clicked, this, &IntervalPanel::Export);
  for (QWidget* const control : std::initializer_list<QWidget*>{mSpan, reset, save})
    layout->addWidget(control);
  return controls;
}

void IntervalPanel::TakeIn(const KrStreamStatistics& aStatistics) {
  mIntervals.AddDiscarded(aStatistics, mClock());
}

void IntervalPanel::showEvent(QShowEvent* aEvent) {
  QWidget::showEvent(aEvent);
  Look();
  mTimer.start(kLookIntervalMs);
}

void IntervalPanel::hideEvent(QHideEvent* aEvent) {
  QWidget::hideEvent(aEvent);
  mTimer.stop();
}

void IntervalPanel::changeEvent(QEvent* aEvent) {
  QWidget::changeEvent(aEvent);
  if (aEvent->type() == QEvent::PaletteChange && mSpan)
    Look();
}

IntervalView IntervalPanel::GetView() const {
  return mIntervals.GetView(static_cast<IntervalSpan>(mSpan->currentIndex()), mClock());
}

void IntervalPanel::Look() {
  if (window()->isMinimized())
    return;
  IntervalView view = GetView();
  ShowState(view);
  ShowNumbers(view);
  mPlot->Show(std::move(view));
}

void IntervalPanel::ShowState(const IntervalView& aView) {
  QString text;
  if (!aView.hasStarted)
    text = QStringLiteral("No frame has come yet.");
  else if (aView.isRunning && mIsLost)
    text = QStringLiteral("The camera is lost.");
  else if (aView.isRunning)
    text = QStringLiteral("Acquisition is running.");
  else
    text = QStringLiteral("Acquisition is stopped. ") + QString::fromUtf8(aView.reason.GetDescription().CStr());
  mState->setText(text.trimmed());
}

void IntervalPanel::ShowNumbers(const IntervalView& aView) {
  ShowRow(0, QStringLiteral("Arrival, ms"), IntervalPlot::GetArrivalColour(palette()), aView.arrivals);
  ShowRow(1, QStringLiteral("Camera, ms"), IntervalPlot::GetCameraColour(palette()), aView.camera);
  QString text = QStringLiteral("%1 frames").arg(aView.losses.frames);
  for (const LossMark& mark : kLossMarks)
    text += QStringLiteral("   %1\u00A0%2\u00A0%3") // Wrapped between the losses alone.
                .arg(QString::fromUtf8(mark.sign), QString::fromLatin1(mark.name).toLower())
                .arg(aView.losses.*mark.count);
  mLosses->setText(text);
  QPalette colours = palette();
  if (aView.losses.HasLosses())
    colours.setColor(QPalette::WindowText, GetWarningColour(palette()));
  mLosses->setPalette(colours);
}

void IntervalPanel::ShowRow(int aRow, const QString& aName, const QColor& aColour, const IntervalSummary& aSummary) {
  mNumbers->SetRowName(aRow, aName, aColour);
  const double values[] = {aSummary.leastNs, aSummary.meanNs, aSummary.greatestNs, aSummary.GetJitterNs()};
  for (int column = 0; column < mNumbers->columnCount(); ++column) {
    const std::string text = krapps::FormatFixed(values[column] / kMillisecondNs, kMillisecondDigits);
    mNumbers->SetNumber(aRow, column, aSummary.count > 0 ? QString::fromStdString(text) : QStringLiteral("–"),
                        NumberTable::Emphasis::None);
  }
}

void IntervalPanel::Reset() {
  mIntervals.Reset();
  Look();
}

void IntervalPanel::Export() {
  const FileQuestion question = {.title = QStringLiteral("Export Frame Intervals"),
                                 .filter = QStringLiteral("Comma-separated values (*.csv)"),
                                 .suffix = QStringLiteral("csv"),
                                 .name = QStringLiteral("frame-intervals.csv")};
  // What was seen when the button was pressed, however long it takes to find a name.
  connect(&OpenSaveDialog(*this, question), &QFileDialog::fileSelected, this,
          [this, view = GetView()](const QString& aFile) {
            Save(aFile, view);
          });
}

// A disk that takes its time, or never answers, holds up no window.
void IntervalPanel::Save(const QString& aFile, const IntervalView& aView) {
  if (mSaving.IsRunning())
    return TellFailure(this, {KrResult::Code::Busy, "The frame intervals were not saved as " + aFile.toStdString() +
                                                        ": the table before is still being written."});
  const auto result = std::make_shared<KrResult>();
  mSaving.Start([result, file = aFile.toStdString(),
                 aView](const std::stop_token&) { *result = SaveIntervalTable(file, aView); },
                [] {},
                [this, result] {
                  mSavingTimer.stop();
                  if (!result->IsOK())
                    TellFailure(this, *result);
                });
  mSavingTimer.start(kLookIntervalMs);
}

} // namespace krviewer
