#include "parameterpanel.h"

#include <QVBoxLayout>

#include <cstdio>

namespace krviewer {

ParameterPanel::ParameterPanel() {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
}

bool ParameterPanel::Open() {
  if (GetWindow().GetWidget())
    return true;
  if (mHasFailed)
    return false;
  const KrResult opened = GetWindow().CreateIn(this);
  mHasFailed = !opened.IsOK();
  if (mHasFailed)
    std::fprintf(stderr, "The feature browser cannot be opened: %s\n", opened.GetDescription().CStr());
  else
    layout()->addWidget(GetWindow().GetWidget());
  return !mHasFailed;
}

void ParameterPanel::Follow(Loan<KrGenParameterArray>& aParameters, bool aIsWanted) {
  if (aIsWanted && Open())
    mBrowser.Follow(aParameters);
  else
    mBrowser.GiveBack(aParameters);
}

} // namespace krviewer
