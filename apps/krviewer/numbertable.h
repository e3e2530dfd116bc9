#pragma once
// A small table of numbers below a graph: as high as its rows where there is room, scrolled where there is none.

#include <QTableWidget>

namespace krviewer {

/// Thread: user interface.
class NumberTable : public QTableWidget {
  Q_OBJECT

public:
  enum class Emphasis { None, Warning };

  explicit NumberTable(const QStringList& aColumnNames);

  /// Gives the table so many rows.
  void SetRows(int aCount);
  void SetRowName(int aRow, const QString& aName);
  void SetNumber(int aRow, int aColumn, const QString& aText, Emphasis aEmphasis);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  void FitHeight();
};

} // namespace krviewer
