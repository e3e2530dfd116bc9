#pragma once
// The pane under the grid: title and description of the selected feature. What the description says is left to
// logic/browser/descriptiontext.h.

#include "krbase/krstring.h"

#include <QTextEdit>

namespace krgui {

/// Read-only text that is appended to; nothing in it is markup but what AddMarkup knows.
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
};

} // namespace krgui
