#include "krgui/krgenbrowserwnd.h"

#include "browser/genbrowserwnd.h"

KrGenBrowserWnd::KrGenBrowserWnd() {
  mWnd = std::make_unique<krgui::GenBrowserWnd>(
      [this](KrGenParameter* aParameter) { return IsParameterDisplayed(aParameter); });
}

KrGenBrowserWnd::~KrGenBrowserWnd() {
  DeleteWnd();
}

krgui::GenBrowserWnd& KrGenBrowserWnd::GetWnd() const {
  return static_cast<krgui::GenBrowserWnd&>(*mWnd);
}

void KrGenBrowserWnd::SetGenParameterArray(KrGenParameterArray* aArray) {
  GetWnd().SetGenParameterArray(aArray);
}

KrGenVisibility KrGenBrowserWnd::GetVisibility() const {
  return GetWnd().GetVisibility();
}

KrResult KrGenBrowserWnd::SetVisibility(KrGenVisibility aVisibility) {
  GetWnd().SetVisibility(aVisibility);
  return {};
}

KrGenRefresh KrGenBrowserWnd::GetRefreshMode() const {
  return GetWnd().GetRefreshMode();
}

KrResult KrGenBrowserWnd::SetRefreshMode(KrGenRefresh aMode) {
  GetWnd().SetRefreshMode(aMode);
  return {};
}

bool KrGenBrowserWnd::HasChanged() const {
  return GetWnd().HasChanged();
}

void KrGenBrowserWnd::ResetChanged() {
  GetWnd().ResetChanged();
}

void KrGenBrowserWnd::Refresh() {
  GetWnd().Refresh();
}

bool KrGenBrowserWnd::IsParameterDisplayed(KrGenParameter*) {
  return true;
}

KrResult KrGenBrowserWnd::Load(KrPropertyList& aList) {
  GetWnd().LoadOptions(aList);
  return {};
}

KrResult KrGenBrowserWnd::Save(KrPropertyList& aList) {
  GetWnd().SaveOptions(aList);
  return {};
}
