#include "finder/devicefinderwnd.h"

#include "finder/devicelist.h"
#include "finder/diagnosisdialog.h"
#include "finder/finderdiscovery.h"
#include "finder/findertree.h"
#include "finder/forceipdlg.h"
#include "finder/selectfromipdlg.h"
#include "frame/contextmenu.h"
#include "krbase/krlogger.h"
#include "krdevice/krdevicegev.h"
#include "krsystem/ipv4address.h"
#include "krsystem/transportregistry.h"
#include "logic/finder/finderhint.h"
#include "platform/applicationend.h"
#include "platform/buttonids.h"
#include "platform/messagebox.h"
#include "platform/toqstring.h"
#include "platform/waitcursor.h"
#include "res/menus.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace krgui {

namespace {

constexpr std::uint32_t kDetectionTimeoutMs = 1000;
constexpr int kOKResult = 1;

constexpr int kSetIPAddressID = 1002;
constexpr int kSelectFromIPID = 1011;
constexpr int kInterfaceListID = 1030;
constexpr int kDeviceListID = 1033;
constexpr int kBoldLabelIDs[] = {1034, 1035, 1036};
constexpr int kShowUnreachableID = 1040;
constexpr int kTreeID = 1049;
constexpr int kDiagnoseID = 1139;

constexpr const char* kSilentAddressProperty = "krguiSilentAddress";

constexpr QLatin1String kErrorCaption("Error");
constexpr QLatin1String kForeignSubnetText(
    "The device is on a subnet that is not compatible with your computer's network interface card (NIC). Configure the "
    "device to use dynamic addressing (LLA or DHCP) or a static IP address.");
constexpr QLatin1String kSlowPortText(" This device must be connected to a USB 3.0 (SuperSpeed) port.");

bool IsOnNetwork(KrDeviceInfoType aType) {
  return aType == KrDeviceInfoType::GEV || aType == KrDeviceInfoType::TolvanProtocol;
}

/// Whoever cannot be asked answers nothing.
std::optional<std::int32_t> AskAccessType(const KrString& aAddress) {
  KrAccessType type = KrAccessType::Unknown;
  const KrResult asked = KrDeviceGEV::GetAccessType(aAddress, type);
  return asked.IsOK() ? std::optional(static_cast<std::int32_t>(type)) : std::nullopt;
}

// Where nobody answered the last time, 0 for none. The application keeps it, as each search may have its own finder.
std::uint32_t GetSilentAddress() {
  return qApp->property(kSilentAddressProperty).toUInt();
}

void SetSilentAddress(std::uint32_t aAddress) {
  qApp->setProperty(kSilentAddressProperty, aAddress);
}

void LogAccepted(const char* aWhat) {
  KrLogger("KrGUILib")
      .Log(KrLogLevel::Error, {"DeviceFinderWnd::Accept", "devicefinderwnd"},
           KrString(std::string("OnAccepted threw an exception: ") + aWhat));
}

} // namespace

DeviceFinderWnd::DeviceFinderWnd(std::function<bool(const KrDeviceInfo*)> aFilter, std::function<void()> aAccepted)
    : TabledWnd(kDeviceFinderTraits), mFilter(std::move(aFilter)), mAccepted(std::move(aAccepted)),
      mAccess(AskAccessType, [] { return AccessMemory::Clock::now(); }) {}

DeviceFinderWnd::~DeviceFinderWnd() {
  Dispose();
}

bool DeviceFinderWnd::OnInitDialog() {
  Wnd::OnInitDialog();
  mSelected = nullptr;
  mView.reset();
  // Not before there is a window, as the program may install its transports until then; and never another one, to which
  // a device accepted before would not belong.
  if (!mSystem)
    mSystem = std::make_unique<KrSystem>();
  mDiscovery = std::make_shared<FinderDiscovery>(*mSystem, mKinds, mFilter, GetQueue());
  mDiscovery->SetShowUnreachable(mShowsUnreachable);
  MakeControls();
  WireControls();
  StartDiscovery();
  EnableActions();
  ShowNetworkControls();
  UpdateHint();
  // A child takes the focus when it is clicked, not from what surrounds it.
  if (GetShowMode() != Mode::Child)
    GetControl(kTreeID)->setFocus();
  return false;
}

void DeviceFinderWnd::MakeControls() {
  for (const int id : kBoldLabelIDs) {
    QFont font = GetControl(id)->font();
    font.setWeight(QFont::Bold);
    GetControl(id)->setFont(font);
  }
  auto& tree = *qobject_cast<QTreeWidget*>(GetControl(kTreeID));
  mTree = std::make_unique<FinderTree>(tree, FinderTree::Callbacks{[this](TreeItemInfo& aInfo) { ShowNode(aInfo); },
                                                                   [this](const QPoint& aPoint) { ShowMenu(aPoint); }});
  auto& interfaceList = *qobject_cast<QTreeWidget*>(GetControl(kInterfaceListID));
  auto& deviceList = *qobject_cast<QTreeWidget*>(GetControl(kDeviceListID));
  const int width = interfaceList.contentsRect().width();
  mInterfaceList = std::make_unique<DeviceList>(interfaceList, width);
  mDeviceList = std::make_unique<DeviceList>(deviceList, width);
  qobject_cast<QCheckBox*>(GetControl(kShowUnreachableID))->setChecked(mShowsUnreachable);
}

void DeviceFinderWnd::WireControls() {
  mConnections = std::make_unique<QObject>();
  const auto* tree = qobject_cast<QTreeWidget*>(GetControl(kTreeID));
  QObject::connect(tree, &QTreeWidget::itemSelectionChanged, mConnections.get(), [this] { OnSelectionChanged(); });
  QObject::connect(tree, &QTreeWidget::itemDoubleClicked, mConnections.get(),
                   [this] { CallHandler([this] { OnDoubleClick(); }); });
  const auto onClick = [this](int aID, void (DeviceFinderWnd::*aAction)()) {
    QObject::connect(qobject_cast<QPushButton*>(GetControl(aID)), &QPushButton::clicked, mConnections.get(),
                     [this, aAction] { CallHandler([this, aAction] { (this->*aAction)(); }); });
  };
  onClick(kSetIPAddressID, &DeviceFinderWnd::SetIPAddress);
  onClick(kSelectFromIPID, &DeviceFinderWnd::SelectFromIP);
  onClick(kDiagnoseID, &DeviceFinderWnd::Diagnose);
  QObject::connect(qobject_cast<QCheckBox*>(GetControl(kShowUnreachableID)), &QCheckBox::toggled, mConnections.get(),
                   [this](bool aIsChecked) { ShowUnreachable(aIsChecked); });
}

void DeviceFinderWnd::StartDiscovery() {
  // Only one that is registered twice is refused, and every opening takes its own out.
  (void)mSystem->RegisterEventSink(this);
  mSystem->SetDetectionTimeout(kDetectionTimeoutMs);
  mDiscovery->GetModel().BuildInterfaces(*mTree);
  mDiscovery->Start();
}

void DeviceFinderWnd::ShowNetworkControls() {
  const bool isListed = mKinds.IsNetworkListed();
  GetControl(kSetIPAddressID)->setVisible(isListed);
  GetControl(kShowUnreachableID)->setVisible(isListed);
}

void DeviceFinderWnd::OnDeviceFound(const KrInterface* aInterface, const KrDeviceInfo* aDevice, bool&) {
  mDiscovery->Report(aInterface, aDevice);
}

bool DeviceFinderWnd::OnMessage(const Message& aMessage) {
  switch (aMessage.number) {
  case FinderDiscovery::kRefreshMessage:
    Refresh();
    return true;
  case FinderDiscovery::kRebuildMessage:
    Rebuild();
    return true;
  default:
    return Wnd::OnMessage(aMessage);
  }
}

void DeviceFinderWnd::Refresh() {
  mDiscovery->GetModel().Refresh(*mTree, mShowsUnreachable);
  RestoreView();
  UpdateHint();
}

/// The replay asks the application about every device: it may close or delete this window.
void DeviceFinderWnd::Rebuild() {
  const std::shared_ptr<FinderDiscovery> discovery = mDiscovery;
  const FinderDiscovery::DataHold hold(discovery);
  View view = TakeView();
  discovery->GetModel().Clear(*mTree);
  discovery->GetModel().BuildInterfaces(*mTree);
  discovery->Replay();
  if (discovery->IsOver())
    return;
  mView = std::move(view);
  UpdateHint();
}

/// Before the refresh that would give it back another rebuild finds nothing selected: the view is still the former.
DeviceFinderWnd::View DeviceFinderWnd::TakeView() {
  const TreeItemInfo* selected = mTree->GetSelected();
  if (!selected && mView)
    return *mView;
  return {mDiscovery->GetModel().FindKey(selected), mTree->GetScroll()};
}

/// Adapters come and go while the user reads or decides. What he has selected meanwhile stays.
void DeviceFinderWnd::RestoreView() {
  const std::optional<View> view = std::exchange(mView, std::nullopt);
  if (!view)
    return;
  const std::lock_guard lock(mDiscovery->GetModel().GetDataLock());
  const TreeItemInfo* node = view->selected ? mDiscovery->GetModel().FindNode(*view->selected) : nullptr;
  if (node && node->GetTreeItem() && !mTree->GetSelected())
    mTree->Select(node->GetTreeItem());
  mTree->SetScroll(view->scroll);
}

void DeviceFinderWnd::UpdateHint() {
  const bool showsDevices = mTree->HasDevices();
  const KrString hint = FindFinderHint(
      {.hasTransports = !krsystem::GetTransports().empty(),
       .failure = mDiscovery->GetFailure(),
       .showsDevices = showsDevices,
       .roundCount = mDiscovery->GetRoundCount(),
       .unreachableCount = showsDevices || mShowsUnreachable ? 0 : mDiscovery->GetModel().CountHidden()});
  mTree->ShowHint(QString::fromUtf8(hint.CStr()));
}

void DeviceFinderWnd::OnSelectionChanged() {
  const std::lock_guard lock(mDiscovery->GetModel().GetDataLock());
  mAccess.Forget();
  if (TreeItemInfo* selected = mTree->GetSelected()) {
    ShowNode(*selected);
  } else {
    mInterfaceList->Clear();
    mDeviceList->Clear();
  }
  EnableActions();
}

/// Under the data lock.
void DeviceFinderWnd::ShowNode(TreeItemInfo& aInfo) {
  if (!aInfo.IsDevice()) {
    mDeviceList->Clear();
    mInterfaceList->Show(aInfo.GetRows());
    return;
  }
  auto& device = static_cast<TreeItemInfoDevice&>(aInfo);
  device.RefreshInfo([this](const KrString& aAddress) { return mAccess.Query(aAddress); });
  mDeviceList->Show(device.GetRows());
  const TreeItemInfoInterface* interface = mDiscovery->GetModel().FindInterfaceOf(device);
  mInterfaceList->Show(interface ? interface->GetRows() : std::vector<InfoRow>());
}

void DeviceFinderWnd::EnableActions() {
  const FinderActions actions = FindActions();
  GetControl(kOKID)->setEnabled(actions.accept);
  GetControl(kSetIPAddressID)->setEnabled(actions.setIPAddress);
}

FinderActions DeviceFinderWnd::FindActions() const {
  const std::lock_guard lock(mDiscovery->GetModel().GetDataLock());
  const TreeItemInfo* selected = mTree->GetSelected();
  return selected && selected->IsDevice()
             ? GetFinderActions(mKinds, static_cast<const TreeItemInfoDevice*>(selected)->GetType())
             : FinderActions();
}

FinderSelection DeviceFinderWnd::FindSelected() const {
  const TreeItemInfo* selected = mTree->GetSelected();
  return selected ? FindSelection(*mSystem, mDiscovery->GetModel(), *selected) : FinderSelection();
}

void DeviceFinderWnd::OnDoubleClick() {
  if (FindActions().accept)
    OnOK();
}

void DeviceFinderWnd::ShowMenu(const QPoint& aScreenPoint) {
  const MenuTemplate* menuTemplate = FindMenu(kDeviceFinderMenuID);
  if (!menuTemplate || !FindActions().showMenu)
    return;
  mMenu = MakeContextMenu(*menuTemplate, GetWidget(), *mConnections,
                          [this](int) { CallHandler([this] { SetIPAddress(); }); });
  mMenu->popup(aScreenPoint);
}

void DeviceFinderWnd::OnOK() {
  const FinderDiscovery::FindHold hold(mDiscovery);
  const KrDeviceInfo* device = FindSelected().device;
  if (!device)
    return;
  if (device->IsConfigurationValid())
    return Accept(*device);
  (void)ShowMessage(GetWidget(), IsOnNetwork(device->GetType()) ? kForeignSubnetText : kSlowPortText, kErrorCaption,
                    MessageIcon::Exclamation);
}

/// Embedded, the window goes on: there is nobody who waits for its end.
void DeviceFinderWnd::Accept(const KrDeviceInfo& aDevice) {
  const std::shared_ptr<FinderDiscovery> discovery = mDiscovery;
  mSelected = &aDevice;
  TellAccepted();
  // The application may have closed or deleted the window.
  if (discovery->IsOver() || GetShowMode() == Mode::Child)
    return;
  discovery->Stop();
  EndDialog(kOKResult);
}

void DeviceFinderWnd::TellAccepted() const {
  const std::function<void()> accepted = mAccepted;
  if (!accepted)
    return;
  try {
    accepted();
  } catch (const std::exception& error) {
    LogAccepted(error.what());
  } catch (...) {
    LogAccepted("an exception of an unknown kind");
  }
}

void DeviceFinderWnd::SetIPAddress() {
  const FinderDiscovery::FindHold hold(mDiscovery);
  const FinderSelection selection = FindSelected();
  if (!selection.interface) {
    (void)ShowMessage(GetWidget(), QStringLiteral("The selected device is no longer available"), kErrorCaption,
                      MessageIcon::Exclamation);
    return;
  }
  const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(selection.interface);
  if (adapter && selection.device && IsOnNetwork(selection.device->GetType()))
    (void)ForceIPDlg(*mSystem, *adapter, *selection.device, GetWidget()).Run();
}

void DeviceFinderWnd::SelectFromIP() {
  const std::shared_ptr<FinderDiscovery> discovery = mDiscovery;
  const FinderDiscovery::FindHold hold(discovery);
  SelectFromIPDlg dialog(GetWidget(), GetSilentAddress());
  if (dialog.Run() != ModalResult::OK || discovery->IsOver())
    return;
  const KrDeviceInfo* device = nullptr;
  KrResult found;
  {
    const WaitCursor cursor;
    found = mSystem->FindDevice(dialog.GetAddress(), &device);
  }
  const bool answers = found.IsOK() && device;
  // Most often one figure of it is wrong.
  SetSilentAddress(answers ? 0 : krsystem::ParseIPv4(dialog.GetAddress()).value_or(0));
  if (answers)
    return Accept(*device);
  const QString cause = found == KrResult::Code::NotFound
                            ? QStringLiteral("Nothing answers at %1.").arg(ToQString(dialog.GetAddress()))
                            : ToQString(found.GetDescription());
  (void)ShowMessage(GetWidget(), QStringLiteral("Could not contact device. "), kErrorCaption, MessageIcon::Exclamation,
                    MessageButtons::OK, cause);
}

void DeviceFinderWnd::ShowUnreachable(bool aShow) {
  mShowsUnreachable = aShow;
  mDiscovery->SetShowUnreachable(aShow);
  GetQueue()->PostOnce({FinderDiscovery::kRefreshMessage, 0, 0});
}

void DeviceFinderWnd::Diagnose() {
  (void)DiagnosisDialog(GetWidget()).Run();
}

void DeviceFinderWnd::OnDestroy() {
  mConnections.reset();
  if (mMenu && !ApplicationEnd::IsProcessEnding())
    mMenu->close();
  if (mDiscovery) {
    mDiscovery->End();
    // Only one that is not registered is refused.
    (void)mSystem->UnregisterEventSink(this);
    if (!ApplicationEnd::IsProcessEnding())
      mDiscovery->GetModel().Clear(*mTree);
  }
  mTree.reset();
  mInterfaceList.reset();
  mDeviceList.reset();
  mDiscovery.reset();
  Wnd::OnDestroy();
}

} // namespace krgui
