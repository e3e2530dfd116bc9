#include "finder/forceipdlg.h"

#include "finder/errorprovider.h"
#include "krbase/krlogger.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krdevicetolvanprotocol.h"
#include "krsystem/ipv4address.h"
#include "krsystem/krsystem.h"
#include "platform/choicelist.h"
#include "platform/ipaddresscontrol.h"
#include "platform/messagebox.h"
#include "platform/toqstring.h"
#include "res/templates.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <iterator>
#include <memory>

namespace krgui {

namespace {

constexpr int kAdapterMACID = 1037;
constexpr int kAdapterAddressID = 1123;
constexpr int kAdapterMaskID = 1050;
constexpr int kAdapterGatewayID = 1052;
constexpr int kDeviceMACID = 1045;
constexpr int kAddressID = 1038;
constexpr int kAddressErrorID = 1003;
constexpr int kMaskID = 1041;
constexpr int kMaskErrorID = 1008;
constexpr int kGatewayID = 1043;
constexpr int kGatewayErrorID = 1013;
constexpr int kProposeID = 1140;

constexpr int kLastField = 3;

void LogFailure(const KrString& aMAC, const KrResult& aResult) {
  KrLogger("KrGUILib")
      .Log(KrLogLevel::Warning, {"ForceIPDlg::OnOK", "forceipdlg"},
           KrString("The IP configuration could not be given to the device ") + aMAC + ": " + aResult.GetCodeString() +
               ". " + aResult.GetDescription());
}

} // namespace

/// What differs between the kinds of device that have an address.
struct ForceIPDlg::DeviceKind {
  KrDeviceInfoType type;
  KrString (*getMAC)(const KrDeviceInfo& aDevice);
  KrString (*getAddress)(const KrDeviceInfo& aDevice);
  KrResult (*send)(const KrString& aMAC, const KrString& aAddress, const KrString& aMask, const KrString& aGateway);
};

const ForceIPDlg::DeviceKind* ForceIPDlg::FindKind(const KrDeviceInfo& aDevice) {
  static constexpr DeviceKind kKinds[] = {
      {KrDeviceInfoType::GEV,
       [](const KrDeviceInfo& aGEV) { return static_cast<const KrDeviceInfoGEV&>(aGEV).GetMACAddress(); },
       [](const KrDeviceInfo& aGEV) { return static_cast<const KrDeviceInfoGEV&>(aGEV).GetIPAddress(); },
       KrDeviceGEV::SetIPConfiguration},
      {KrDeviceInfoType::TolvanProtocol,
       [](const KrDeviceInfo& aTolvan) {
         return static_cast<const KrDeviceInfoTolvanProtocol&>(aTolvan).GetMACAddress();
       },
       [](const KrDeviceInfo& aTolvan) {
         return static_cast<const KrDeviceInfoTolvanProtocol&>(aTolvan).GetIPAddress();
       },
       KrDeviceTolvanProtocol::SetIPConfiguration},
  };
  const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const DeviceKind& aKind) { return aKind.type == aDevice.GetType(); });
  return found == std::end(kKinds) ? nullptr : found;
}

ForceIPDlg::ForceIPDlg(KrSystem& aSystem, const KrNetworkAdapter& aAdapter, const KrDeviceInfo& aDevice,
                       QWidget* aOwner)
    : ModalDialog(kForceIPTemplateID, aOwner), mSystem(aSystem), mAdapter(aAdapter), mDevice(aDevice),
      mKind(FindKind(aDevice)), mAddressError(new ErrorProvider(*GetControl<QWidget>(kAddressErrorID))),
      mMaskError(new ErrorProvider(*GetControl<QWidget>(kMaskErrorID))),
      mGatewayError(new ErrorProvider(*GetControl<QWidget>(kGatewayErrorID))) {}

ForceIPDlg::~ForceIPDlg() = default;

bool ForceIPDlg::OnInitDialog() {
  if (mKind == nullptr) {
    EndDialog(ModalResult::Cancel);
    return false;
  }
  GetControl<QLineEdit>(kAdapterMACID)->setText(ToQString(mAdapter.GetMACAddress()));
  auto* addresses = GetControl<QComboBox>(kAdapterAddressID);
  new ChoiceList(*addresses); // Another one proposes anew what was typed.
  for (std::size_t index = 0; index < mAdapter.GetIPAddressCount(); ++index) {
    addresses->addItem(ToQString(mAdapter.GetIPAddress(index)));
  }
  GetControl<QLineEdit>(kAdapterGatewayID)->setText(ToQString(mAdapter.GetDefaultGateway()));
  Connect();
  addresses->setCurrentIndex(0);
  ChooseAddress(0);
  return false;
}

void ForceIPDlg::Connect() {
  auto* addresses = GetControl<QComboBox>(kAdapterAddressID);
  QObject::connect(addresses, &QComboBox::activated, addresses, [this](int aIndex) {
    if (static_cast<std::size_t>(aIndex) != mChosen) {
      ChooseAddress(static_cast<std::size_t>(aIndex));
    }
  });
  for (const int id : {kAddressID, kMaskID, kGatewayID}) {
    auto* control = GetControl<IPAddressControl>(id);
    QObject::connect(control, &IPAddressControl::Changed, control, [this] { (void)Check(); });
  }
  auto* propose = GetControl<QPushButton>(kProposeID);
  QObject::connect(propose, &QPushButton::clicked, propose, [this] { Propose(); });
}

void ForceIPDlg::ChooseAddress(std::size_t aIndex) {
  EndProposing();
  mChosen = aIndex;
  const KrString mask = mAdapter.GetSubnetMask(aIndex);
  const IPProposal proposal = ProposeIPAddress(mAdapter.GetIPAddress(aIndex), mask);
  GetControl<QLineEdit>(kAdapterMaskID)->setText(ToQString(mask));
  GetControl<QLineEdit>(kDeviceMACID)->setText(ToQString(mKind->getMAC(mDevice)));
  auto* address = GetControl<IPAddressControl>(kAddressID);
  auto* deviceMask = GetControl<IPAddressControl>(kMaskID);
  auto* gateway = GetControl<IPAddressControl>(kGatewayID);
  // Values that are set by halves are not worth a check.
  const QSignalBlocker blocked[] = {QSignalBlocker(address), QSignalBlocker(deviceMask), QSignalBlocker(gateway)};
  address->SetAddress(proposal.network);
  deviceMask->SetAddress(ParseDotted(mask).value_or(0));
  gateway->SetAddress(ParseDotted(mAdapter.GetDefaultGateway()).value_or(0));
  address->FocusField(0);
  for (int field = kLastField; field > kLastField - proposal.emptyFields; --field) {
    address->FocusField(field);
    address->ClearField(field);
  }
  (void)Check();
}

IPValues ForceIPDlg::ReadValues() const {
  return {GetControl<IPAddressControl>(kAddressID)->GetAddress(),
          GetControl<IPAddressControl>(kMaskID)->GetAddress(),
          GetControl<IPAddressControl>(kGatewayID)->GetAddress(),
          ToKrString(GetControl<QComboBox>(kAdapterAddressID)->currentText()),
          ToKrString(GetControl<QLineEdit>(kAdapterMaskID)->text()),
          ListTakenAddresses()};
}

std::vector<std::uint32_t> ForceIPDlg::ListTakenAddresses() const {
  std::vector<std::uint32_t> taken;
  const KrString mac = mKind->getMAC(mDevice);
  for (std::size_t index = 0; index < mSystem.GetDeviceCount(); ++index) {
    const KrDeviceInfo* device = mSystem.GetDeviceInfo(index);
    const DeviceKind* kind = device == nullptr ? nullptr : FindKind(*device);
    // The same device stands there once for each adapter that hears it.
    if (kind == nullptr || kind->getMAC(*device) == mac) {
      continue;
    }
    // Many devices may have none at the same time.
    if (const std::uint32_t address = krsystem::ParseIPv4(kind->getAddress(*device)).value_or(0); address != 0) {
      taken.push_back(address);
    }
  }
  return taken;
}

bool ForceIPDlg::Check() {
  const IPIndicators indicators = CheckIPValues(ReadValues());
  ShowError(kAddressID, *mAddressError, indicators.address);
  ShowError(kMaskID, *mMaskError, indicators.mask);
  ShowError(kGatewayID, *mGatewayError, indicators.gateway);
  return indicators.IsAnySet();
}

/// Beside the control for the eye, with the control for screen readers.
void ForceIPDlg::ShowError(int aControlID, ErrorProvider& aIndicator, const KrString& aError) {
  const QString text = ToQString(aError);
  aIndicator.SetText(text);
  GetControl<IPAddressControl>(aControlID)->SetError(text);
}

void ForceIPDlg::OnOK() {
  if (mSending.IsRunning()) {
    return;
  }
  EndProposing();
  const bool isDoubtful = Check();
  const IPValues values = ReadValues();
  if (const KrString error = FindHardIPError(values); !error.IsEmpty()) {
    (void)ShowMessage(GetDialog(), ToQString(error), QStringLiteral("Error"), MessageIcon::Stop);
    return;
  }
  if (isDoubtful) {
    const ModalResult answer = ShowMessage(
        GetDialog(),
        QStringLiteral("This IP Configuration may be incompatible with your Interface settings or simply invalid."
                       "\r\n\r\nAre you sure you want to continue?"),
        QStringLiteral("Warning"), MessageIcon::Exclamation, MessageButtons::YesNo);
    if (answer != ModalResult::Yes || HasEnded()) {
      return;
    }
  }
  Send(values);
}

void ForceIPDlg::Send(const IPValues& aValues) {
  GetDialog()->setEnabled(false);
  GetDialog()->setCursor(Qt::WaitCursor);
  // All that it uses is its own: it goes on when the dialog and everything that was lent to it is gone.
  const auto work = [mac = mKind->getMAC(mDevice), send = mKind->send, aValues](const std::stop_token&) {
    using krsystem::FormatIPv4;
    const KrResult result =
        send(mac, FormatIPv4(aValues.deviceAddress), FormatIPv4(aValues.deviceMask), FormatIPv4(aValues.deviceGateway));
    if (!result.IsOK()) {
      LogFailure(mac, result);
    }
  };
  // Whether it was heeded shows in the finder.
  mSending.Start(work, [this] { EndDialog(ModalResult::OK); });
}

/// What is being sent cannot be taken back: the dialog ends when it has been.
void ForceIPDlg::OnCancel() {
  if (!mSending.IsRunning()) {
    ModalDialog::OnCancel();
  }
}

void ForceIPDlg::OnEnd() {
  mProposing.Cancel();
  mSending.Cancel();
}

// Proposing an address.

void ForceIPDlg::Propose() {
  struct Found {
    KrResult result = KrResult::Code::SystemError; // Until it is known.
    KrString address;
  };
  const auto found = std::make_shared<Found>();
  auto* address = GetControl<IPAddressControl>(kAddressID);
  auto* button = GetControl<QPushButton>(kProposeID);
  address->FocusField(kLastField);
  button->setEnabled(false);
  button->setText(QStringLiteral("Looking…"));
  const auto work = [found, &system = mSystem, &adapter = mAdapter, index = mChosen](const std::stop_token& aStop) {
    found->result = system.FindFreeAddress(adapter, index, aStop, found->address);
  };
  mProposing.Start(work,
                   [this, found, before = address->GetText()] { OnProposed(found->result, found->address, before); });
}

void ForceIPDlg::OnProposed(const KrResult& aResult, const KrString& aAddress, const QString& aTextBefore) {
  EndProposing();
  auto* address = GetControl<IPAddressControl>(kAddressID);
  if (aResult.IsOK()) {
    // What the user has typed meanwhile is what he wants.
    if (address->GetText() == aTextBefore) {
      address->SetAddress(ParseDotted(aAddress).value_or(0));
    }
    return;
  }
  const KrString& reason = aResult.GetDescription();
  (void)ShowMessage(GetDialog(),
                    reason.IsEmpty() ? QStringLiteral("No free address can be proposed.") : ToQString(reason),
                    QStringLiteral("Error"), MessageIcon::Exclamation);
}

void ForceIPDlg::EndProposing() {
  mProposing.Cancel();
  auto* button = GetControl<QPushButton>(kProposeID);
  button->setText(QStringLiteral("Propose a free address"));
  button->setEnabled(true);
}

} // namespace krgui
