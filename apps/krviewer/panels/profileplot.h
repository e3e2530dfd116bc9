#pragma once
// The picture of a line profile: a curve for each colour. Which line it is of is left to the panel.

#include "panels/lineprofile.h"
#include "panels/plot.h"

#include <QString>

namespace krviewer {

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
class ProfilePlot : public Plot {
  Q_OBJECT

public:
  explicit ProfilePlot(QWidget* aParent = nullptr);

  /// Shows a profile in place of the one before.
  void Show(ProfilePicture aPicture);
  /// Shows a sentence instead.
  void ShowText(const QString& aText);

private:
  bool HasCurves() const override { return !mPicture.channels.empty(); }
  QString GetText() const override { return mText; }
  PlotFrame MakeFrame() const override;
  void PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const override;
  QString Describe(double aAcross) const override;
  void PaintChannel(QPainter& aPainter, const PlotFrame& aFrame, const ProfileChannel& aChannel) const;

  ProfilePicture mPicture;
  QString mText;
};

} // namespace krviewer
