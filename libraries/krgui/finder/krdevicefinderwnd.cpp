#include "krgui/krdevicefinderwnd.h"

#include "finder/devicefinderwnd.h"

namespace {

void Set(krgui::KindFlags& aFlags, bool aSelectable, bool aListed) {
  aFlags.selectable = aSelectable;
  aFlags.listed = aListed;
}

void Get(const krgui::KindFlags& aFlags, bool& aSelectable, bool& aListed) {
  aSelectable = aFlags.selectable;
  aListed = aFlags.listed;
}

} // namespace

KrDeviceFinderWnd::KrDeviceFinderWnd() {
  mWnd = std::make_unique<krgui::DeviceFinderWnd>([this](const KrDeviceInfo* aDevice) { return OnFound(aDevice); },
                                                  [this] { OnAccepted(); });
}

KrDeviceFinderWnd::~KrDeviceFinderWnd() {
  DeleteWnd();
}

krgui::DeviceFinderWnd& KrDeviceFinderWnd::GetWnd() const {
  return static_cast<krgui::DeviceFinderWnd&>(*mWnd);
}

const KrDeviceInfo* KrDeviceFinderWnd::GetSelected() const {
  return GetWnd().GetSelected();
}

bool KrDeviceFinderWnd::OnFound(const KrDeviceInfo*) {
  return true;
}

void KrDeviceFinderWnd::OnAccepted() {}

void KrDeviceFinderWnd::SetGEVEnabled(bool aSelectable, bool aListed) {
  Set(GetWnd().GetKinds().gev, aSelectable, aListed);
}

void KrDeviceFinderWnd::GetGEVEnabled(bool& aSelectable, bool& aListed) const {
  Get(GetWnd().GetKinds().gev, aSelectable, aListed);
}

void KrDeviceFinderWnd::SetU3VEnabled(bool aSelectable, bool aListed) {
  Set(GetWnd().GetKinds().u3v, aSelectable, aListed);
}

void KrDeviceFinderWnd::GetU3VEnabled(bool& aSelectable, bool& aListed) const {
  Get(GetWnd().GetKinds().u3v, aSelectable, aListed);
}

void KrDeviceFinderWnd::SetTolvanProtocolEnabled(bool aSelectable, bool aListed) {
  Set(GetWnd().GetKinds().tolvanProtocol, aSelectable, aListed);
}

void KrDeviceFinderWnd::GetTolvanProtocolEnabled(bool& aSelectable, bool& aListed) const {
  Get(GetWnd().GetKinds().tolvanProtocol, aSelectable, aListed);
}

void KrDeviceFinderWnd::SetUnreachableShown(bool aIsShown) {
  GetWnd().SetUnreachableShown(aIsShown);
}

bool KrDeviceFinderWnd::IsUnreachableShown() const {
  return GetWnd().IsUnreachableShown();
}
