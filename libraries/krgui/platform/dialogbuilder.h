#pragma once
// Makes a template's controls inside a dialog and lays them out again at every size.
// Which window uses which template, and what its controls do, is left to the windows.

#include "platform/dialogtemplate.h"

#include <QSize>

#include <memory>

class QWidget;

namespace krgui {

/// The controls of one opening.
///
/// Thread: user interface. Ownership: the dialog owns the control widgets; this object must not be used after the
/// dialog's end.
class DialogControls {
public:
  /// Makes the controls as children of aDialog; aTemplate outlives this object. The dialog unit is the smaller of the
  /// font's average over the 52 letters divided by 4 and aMaximum's width divided by the template's (heights likewise,
  /// with 8).
  DialogControls(const DialogTemplate& aTemplate, QWidget& aDialog, const QSize& aMaximum);
  ~DialogControls();
  DialogControls(const DialogControls&) = delete;
  DialogControls& operator=(const DialogControls&) = delete;

  /// The control of an id; null where the template has none or it was deleted.
  QWidget* Get(int aID) const;
  /// The template's size in pixels with the dialog's font.
  QSize GetTemplateSize() const;
  /// The least client width from aLeast to aMost in which no button's text is clipped by its neighbour or the edge;
  /// aLeast where there is none, and where the window lays them out anew.
  int FindLeastWidth(int aLeast, int aMost) const;
  /// Lays the controls out for a client size, always starting from the template's rectangles.
  void Layout(const QSize& aClientSize);

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

} // namespace krgui
