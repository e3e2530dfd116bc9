#include "finder/forceipdlg.h"

#include "res/templates.h"

namespace krgui {

ForceIPDlg::ForceIPDlg(KrSystem& aSystem, const KrNetworkAdapter& aAdapter, const KrDeviceInfo& aDevice,
                       QWidget* aOwner)
    : ModalDialog(kForceIPTemplateID, aOwner), mSystem(aSystem), mAdapter(aAdapter), mDevice(aDevice) {}

ForceIPDlg::~ForceIPDlg() = default;

} // namespace krgui
