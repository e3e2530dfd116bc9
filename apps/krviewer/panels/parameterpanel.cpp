#include "panels/parameterpanel.h"

#include "panels/optiontexts.h"
#include "plaintext.h"

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
    std::fprintf(stderr, "The feature browser cannot be opened: %s\n",
                 krapps::MakeField(opened.GetDescription()).c_str());
  else
    layout()->addWidget(GetWindow().GetWidget());
  return !mHasFailed;
}

QStringList ParameterPanel::SaveOptions() {
  KrPropertyList list;
  [[maybe_unused]] const KrResult saved = GetWindow().Save(list); // Always OK.
  return ToTexts(list);
}

void ParameterPanel::RestoreOptions(const QStringList& aOptions) {
  KrPropertyList list = ToOptions(aOptions);
  [[maybe_unused]] const KrResult loaded = GetWindow().Load(list); // Always OK.
}

void ParameterPanel::Follow(Loan<KrGenParameterArray>& aParameters, bool aIsWanted) {
  if (aIsWanted && Open())
    mBrowser.Follow(aParameters);
  else
    mBrowser.GiveBack(aParameters);
}

} // namespace krviewer
