#include "panels/lineprofilepanel.h"

#include "panels/panelarea.h"
#include "panels/wraplayout.h"
#include "plaintext.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>

namespace krviewer {

namespace {

constexpr double kGreatestIndex = 4294967295.0;
constexpr int kSharpnessDigits = 2;

QString FormatSharpness(double aSharpness) {
  return QString::fromStdString(krapps::FormatFixed(aSharpness, kSharpnessDigits));
}

} // namespace

LineProfilePanel::LineProfilePanel(FrameSinks& aFrames, KrDisplayWnd& aWindow)
    : SnapshotPanel(aFrames), mWindow(aWindow), mPlot(new ProfilePlot), mFrame(new QLabel), mSharpness(new QLabel) {
  setObjectName(QStringLiteral("lineProfilePanel"));
  mFrame->setTextFormat(Qt::PlainText);
  mSharpness->setTextFormat(Qt::PlainText);
  for (QLabel* const label : {mFrame, mSharpness})
    label->setWordWrap(true);
  mFrame->setObjectName(QStringLiteral("profileFrame"));
  mSharpness->setObjectName(QStringLiteral("profileSharpness"));
  mSharpness->setToolTip(QStringLiteral("The mean step between neighbouring pixels of the line. Turn the lens until it "
                                        "is greatest; scene and light stay as they are meanwhile."));
  auto* const forget = new QPushButton(QStringLiteral("Forget &Best"));
  forget->setToolTip(QStringLiteral("Begins anew to look for the greatest sharpness"));
  connect(forget, &QPushButton::clicked, this, &LineProfilePanel::ForgetBest);
  auto* const sharpness = new QWidget;
  auto* const row = new QHBoxLayout(sharpness);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(mSharpness, 1);
  row->addWidget(forget);
  auto* const area = new PanelArea(*this, MakeControls(), mPlot);
  area->AddNumbers(mFrame);
  area->AddNumbers(sharpness);
  mPlot->setAccessibleName(QStringLiteral("Line profile"));
  mPlot->ShowText(QStringLiteral("No frame yet"));
  Choose();
}

QWidget* LineProfilePanel::MakeControls() {
  auto* const controls = new QWidget;
  auto* const layout = new WrapLayout(controls);
  mChoice = new QComboBox;
  mChoice->addItems({QStringLiteral("Row"), QStringLiteral("Column"), QStringLiteral("Row at the mouse"),
                     QStringLiteral("Column at the mouse")});
  mChoice->setAccessibleName(QStringLiteral("Which line"));
  mChoice->setToolTip(QStringLiteral("What the values are taken along"));
  connect(mChoice, &QComboBox::currentIndexChanged, this, &LineProfilePanel::Choose);
  mIndex = new QDoubleSpinBox;
  mIndex->setDecimals(0);
  mIndex->setLocale(QLocale::c());
  mIndex->setRange(0, kGreatestIndex);
  mIndex->setAccessibleName(QStringLiteral("Number of the line"));
  mIndex->setToolTip(QStringLiteral("The row from the top or the column from the left, beginning with 0"));
  connect(mIndex, &QDoubleSpinBox::valueChanged, this, &LineProfilePanel::Choose);
  mFullRange = new QCheckBox(QStringLiteral("Full r&ange"));
  mFullRange->setToolTip(QStringLiteral("Shows all values that the pixel format has rather than those that occur"));
  connect(mFullRange, &QCheckBox::toggled, this, &LineProfilePanel::ShowProfile);
  auto* const frozen = new QCheckBox(QStringLiteral("F&reeze"));
  frozen->setToolTip(QStringLiteral("Keeps what is shown while the picture goes on"));
  connect(frozen, &QCheckBox::toggled, this, &LineProfilePanel::SetFrozen);
  for (QWidget* const control : std::initializer_list<QWidget*>{mChoice, mIndex, mFullRange, frozen})
    layout->addWidget(control);
  return controls;
}

bool LineProfilePanel::IsFollowing() const {
  return mChoice->currentIndex() == kLineAtCursor || mChoice->currentIndex() == kColumnAtCursor;
}

bool LineProfilePanel::IsColumn() const {
  return mChoice->currentIndex() == kColumn || mChoice->currentIndex() == kColumnAtCursor;
}

void LineProfilePanel::Choose() {
  mIndex->setEnabled(!IsFollowing());
  ForgetBest();
  RequestChanged();
}

void LineProfilePanel::FollowCursor() {
  const std::optional<KrDisplayPixel> pixel = IsFollowing() ? mWindow.GetCursorPixel() : std::nullopt;
  // While the mouse is elsewhere the line stays.
  if (!pixel)
    return;
  const double index = IsColumn() ? pixel->x : pixel->y;
  if (index == mIndex->value())
    return;
  const QSignalBlocker blocker(mIndex);
  mIndex->setValue(index);
  ForgetBest();
}

CutoutRequest LineProfilePanel::GetRequest() {
  FollowCursor();
  return {IsColumn() ? CutoutRequest::Kind::Column : CutoutRequest::Kind::Line,
          static_cast<std::uint64_t>(mIndex->value())};
}

void LineProfilePanel::ShowSnapshot(const Snapshot& aSnapshot) {
  const KrResult read = mProfile.Read(aSnapshot);
  if (!read.IsOK()) {
    mPlot->ShowText(QString::fromUtf8(read.GetDescription().CStr()));
    mFrame->clear();
    mSharpness->clear();
    return;
  }
  const bool isColumn = aSnapshot.request.kind == CutoutRequest::Kind::Column;
  mFrame->setText(QStringLiteral("%1 %2 of frame %3%4")
                      .arg(isColumn ? QStringLiteral("Column") : QStringLiteral("Row"))
                      .arg(mProfile.GetIndex())
                      .arg(aSnapshot.frameID)
                      .arg(aSnapshot.isWhole ? QString() : QStringLiteral(", incomplete")));
  mBest = std::max(mBest, mProfile.GetSharpness());
  ShowSharpness();
  ShowProfile();
}

void LineProfilePanel::ShowProfile() {
  if (mProfile.GetChannels().empty())
    return;
  const std::optional<ValueRange> format = mFullRange->isChecked() ? mProfile.GetFormatRange() : std::nullopt;
  const ValueRange values = format ? *format : mProfile.GetValueRange().value_or(ValueRange{0, 1});
  mPlot->Show({mProfile.GetChannels(), mProfile.GetLength(), values});
}

void LineProfilePanel::ShowSharpness() {
  mSharpness->setText(QStringLiteral("Sharpness %1, best %2")
                          .arg(FormatSharpness(mProfile.GetSharpness()))
                          .arg(FormatSharpness(mBest)));
}

void LineProfilePanel::ForgetBest() {
  mBest = 0;
  if (!mProfile.GetChannels().empty())
    ShowSharpness();
}

} // namespace krviewer
