#pragma once
// A small table of numbers below a graph: as high as its rows where there is room, scrolled where there is none.

#include <QColor>
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
  /// The name of a row, with the colour that it has in the graph.
  void SetRowName(int aRow, const QString& aName, const QColor& aColour);
  void SetNumber(int aRow, int aColumn, const QString& aText, Emphasis aEmphasis);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void resizeEvent(QResizeEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;
  bool event(QEvent* aEvent) override;

private:
  void FitHeight();
  /// Columns grow with their numbers and do not shrink, so that nothing moves to and fro.
  void KeepRoom(int aColumn);
};

} // namespace krviewer
