#pragma once
// The pane under the grid: title and description of the selected feature. What the description says is left to
// logic/browser/descriptiontext.h.

#include "krbase/krstring.h"

#include <QTextEdit>

class QTextCharFormat;

namespace krgui {

/// Read-only text that is appended to; nothing in it is markup but what AddMarkup knows. It can be selected and
/// copied, by keyboard too; Tab goes on to the next control.
///
/// Thread: user interface. Ownership: a widget, which belongs to its parent.
class DescriptionCtrl : public QTextEdit {
public:
  explicit DescriptionCtrl(QWidget* aParent);

  void Clear();
  /// In bold, 1.3 times as high.
  void AddTitle(const KrString& aText);
  void AddBold(const KrString& aText);
  void AddText(const KrString& aText);
  /// Text with <b>…</b>.
  void AddMarkup(const KrString& aText);

protected:
  void changeEvent(QEvent* aEvent) override;

private:
  /// Puts the text at the end and gives what lies behind the insertion position the format.
  void Append(const QString& aText, const QTextCharFormat& aFormat);
  /// Gives titles the height that goes with the font.
  void ScaleTitles();

  int mPosition = 0; ///< Characters that were appended since the last Clear.
};

} // namespace krgui
