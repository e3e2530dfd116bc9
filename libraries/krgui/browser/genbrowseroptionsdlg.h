#pragma once
// The feature browser's options dialog: which names it shows, in which view, and how values are kept fresh. What the
// browser does about it is left to its window.

#include "frame/modaldialog.h"
#include "logic/browser/browseroptions.h"

namespace krgui {

/// The dialog "Browser Options".
class GenBrowserOptionsDlg final : public ModalDialog {
public:
  GenBrowserOptionsDlg(const BrowserOptions& aOptions, QWidget* aOwner);
  ~GenBrowserOptionsDlg() override;

  /// The options as they were given, but for what was chosen once the dialog ended with OK.
  const BrowserOptions& GetOptions() const { return mOptions; }

private:
  bool OnInitDialog() override;
  void OnOK() override;
  void EnableView();

  BrowserOptions mOptions;
};

} // namespace krgui
