#pragma once
// The picture of a line profile: a curve for each colour. Which line it is of is left to the panel.

#include "panels/lineprofile.h"

#include <QString>
#include <QWidget>

namespace krviewer {

class PlotFrame;

/// How far the values of a plot reach.
enum class ProfileRange {
  Occurring, ///< From the least to the greatest value that occurs.
  Format,    ///< All values that the format has.
};

/// What the plot shows, as a whole.
struct ProfilePicture {
  std::vector<ProfileChannel> channels;
  std::uint32_t length = 0;
  ValueRange values;
};

/// Thread: user interface.
class ProfilePlot : public QWidget {
  Q_OBJECT

public:
  explicit ProfilePlot(QWidget* aParent = nullptr);

  /// Shows a profile in place of the one before.
  void Show(ProfilePicture aPicture);
  /// Shows a sentence instead.
  void ShowText(const QString& aText);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void paintEvent(QPaintEvent* aEvent) override;
  bool event(QEvent* aEvent) override;

private:
  PlotFrame MakeFrame() const;
  void PaintChannel(QPainter& aPainter, const PlotFrame& aFrame, const ProfileChannel& aChannel) const;
  QString DescribePosition(double aPosition) const;

  ProfilePicture mPicture;
  QString mText;
};

} // namespace krviewer
