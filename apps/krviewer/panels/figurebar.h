#pragma once
// The figures of a camera's page in the status bar: they stand still while numbers change, but for the first loss of a
// kind, which stands out; where there is no room the least important ones are left out. What they say is up to FigureTexts.

#include "panels/figuretexts.h"

#include <QWidget>

#include <array>
#include <optional>

class QLabel;

namespace krviewer {

/// Thread: user interface.
class FigureBar : public QWidget {
  Q_OBJECT

public:
  explicit FigureBar(QWidget* aParent = nullptr);

  /// Shows these figures until others come.
  void Show(const ShownFigures& aFigures);
  /// Shows none, as there is no camera.
  void Clear();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void resizeEvent(QResizeEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;

private:
  QLabel& GetLabel(FigureKind aKind) { return *mLabels[static_cast<std::size_t>(aKind)]; }
  void ShowFigure(FigureKind aKind, const FigureText& aText);
  void KeepRoom();
  int GetGap() const;
  void Place();

  std::array<QLabel*, kFigures> mLabels = {};
  std::optional<ShownFigures> mShown;
  std::array<FigurePlace, kFigures> mPlaces; ///< Each grows with its texts and never shrinks while the font stays.
};

} // namespace krviewer
