#pragma once
// The feature browser: every parameter of a device in a window, to be found, understood and set.

#include "krgenicam/krgenparameterarray.h"
#include "krgui/krgenrefresh.h"
#include "krgui/krwnd.h"
#include "krpersistence/krpropertylist.h"

namespace krgui {
class GenBrowserWnd;
}

/// The feature browser.
///
/// Thread: the user-interface thread alone. Values are read on a thread of the window's own.
/// Ownership: the application owns the object; the array is borrowed and must be taken out (SetGenParameterArray with
/// null), or the window closed, before it ends.
///
///     KrGenBrowserWnd browser;
///     browser.SetGenParameterArray(device->GetParameters());
///     KrResult result = browser.ShowModeless(0);
class KR_EXPORT KrGenBrowserWnd : public KrWnd {
public:
  KrGenBrowserWnd();
  /// A derived class calls DeleteWnd() in its own destructor: until then its overrides may be called.
  ~KrGenBrowserWnd() override;

  /// Shows the parameters of an array, or none for null. The same array as before changes nothing.
  void SetGenParameterArray(KrGenParameterArray* aArray);
  /// Up to which visibility features are shown.
  KrGenVisibility GetVisibility() const;
  /// Sets the visibility. An open window shows it in its list and follows with the next filling; Invisible, which the
  /// list does not have, is Beginner then. Always OK.
  KrResult SetVisibility(KrGenVisibility aVisibility);
  /// The mode in use.
  KrGenRefresh GetRefreshMode() const;
  /// How values are kept fresh; an open window is filled anew. Always OK.
  KrResult SetRefreshMode(KrGenRefresh aMode);
  /// Whether the user has written a value since the array was set or ResetChanged was called. Executing a command is no
  /// write.
  bool HasChanged() const;
  /// Has HasChanged begin anew.
  void ResetChanged();
  /// Forgets what the array remembers, then reads every feature of an open window anew; waits for the device. Nothing
  /// without an array.
  void Refresh();

  /// Asked about each feature when the window is filled; false leaves it out. Called on the user-interface thread; an
  /// exception counts as true and is logged.
  virtual bool IsParameterDisplayed(KrGenParameter* aParameter);

  /// Takes the options that a property list has (Save). Always OK; what is missing stays as it is.
  KrResult Load(KrPropertyList& aList);
  /// Empties the list and writes the options into it: "Visibilty", "Names", "View", "Refresh". Always OK.
  KrResult Save(KrPropertyList& aList);

private:
  krgui::GenBrowserWnd& GetWnd() const;
};
