#include "browser/errorbutton.h"

#include "platform/focusframe.h"
#include "platform/plainline.h"
#include "platform/systemcolours.h"
#include "platform/toqstring.h"
#include "res/bitmaps.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace krgui {

namespace {

constexpr int kPictureSide = 16;
constexpr int kMargin = 4;

/// Lines are cut where a tooltip would outgrow the screen.
QString CutLines(QString aErrors) {
  constexpr qsizetype kLongestLine = 300;
  QStringList lines = aErrors.replace(QLatin1String("\r\n"), QLatin1String("\n")).split(QLatin1Char('\n'));
  for (QString& line : lines) {
    if (line.size() > kLongestLine)
      line = line.left(kLongestLine) + QChar(0x2026);
  }
  return lines.join(QLatin1Char('\n'));
}

} // namespace

ErrorButton::ErrorButton(QWidget* aParent) : QAbstractButton(aParent) {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(QStringLiteral("Errors"));
  connect(this, &QAbstractButton::clicked, this, [this] { ShowToolTip(mapToGlobal(rect().bottomLeft())); });
}

void ErrorButton::SetSource(std::optional<ErrorSource> aSource) {
  mSource = std::move(aSource);
  LookAgain();
}

void ErrorButton::LookAgain() {
  const KrString errors = GetErrors();
  const bool showsErrors = !errors.IsEmpty();
  setAccessibleDescription(ToQString(errors));
  if (showsErrors == mShowsErrors)
    return;
  mShowsErrors = showsErrors;
  update();
}

KrString ErrorButton::GetErrors() const {
  return mSource ? FormatErrors(*mSource) : KrString();
}

QSize ErrorButton::sizeHint() const {
  return {kPictureSide + 2 * kMargin, kPictureSide + 2 * kMargin};
}

bool ErrorButton::event(QEvent* aEvent) {
  if (aEvent->type() == QEvent::ToolTip) {
    ShowToolTip(static_cast<const QHelpEvent*>(aEvent)->globalPos());
    return true;
  }
  return QAbstractButton::event(aEvent);
}

void ErrorButton::ShowToolTip(const QPoint& aGlobal) {
  const QString errors = ToQString(GetErrors());
  if (errors.isEmpty())
    QToolTip::hideText();
  else
    QToolTip::showText(aGlobal, ToPlainToolTip(CutLines(errors)), this, rect());
}

void ErrorButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QImage bitmap = LoadBitmap(mShowsErrors ? kErrorBitmapID : kNoErrorBitmapID, devicePixelRatioF(),
                                   IsDarkPalette(palette()) ? BitmapGround::Dark : BitmapGround::Light);
  painter.drawImage(QPoint(width() / 2 - kPictureSide / 2, height() / 2 - kPictureSide / 2), bitmap);
  if (hasFocus())
    DrawFocusFrame(painter, rect(), palette());
}

} // namespace krgui
