#pragma once
// A plot of a panel: its sizes, its ground and numbers, its tooltip, and a sentence while there is nothing to be
// plotted. What is plotted, and what the axes are, is left to who derives from it.

#include <QString>
#include <QWidget>

namespace krviewer {

class PlotFrame;

/// Thread: user interface.
class Plot : public QWidget {
  Q_OBJECT

public:
  explicit Plot(QWidget* aParent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void paintEvent(QPaintEvent* aEvent) override;
  bool event(QEvent* aEvent) override;

private:
  virtual bool HasCurves() const = 0;
  /// What is shown without curves.
  virtual QString GetText() const = 0;
  /// What the plot's axes are. Asked for, as the next two, while there are curves.
  virtual PlotFrame MakeFrame() const = 0;
  virtual void PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const = 0;
  /// What is said of a place across; empty for nothing.
  virtual QString Describe([[maybe_unused]] double aAcross) const { return {}; }
};

} // namespace krviewer
