#include "ipcommand.h"

#include "addressawaiter.h"
#include "addresscheck.h"
#include "camerasession.h"
#include "deviceselection.h"
#include "devicewords.h"
#include "ipreport.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krdevicetolvanprotocol.h"
#include "krsystem/ipv4address.h"
#include "networkselection.h"
#include "plaintext.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace krtool {

namespace {

constexpr std::uint32_t kDefaultAwaitMs = 10'000;

/// One run of the command.
class IPChange {
public:
  IPChange(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aErrors)
      : mSystem(aSystem), mCommandLine(aCommandLine), mWish(aCommandLine.ip), mErrors(aErrors) {}

  KrResult Run() {
    KrResult result = Select();
    if (result.IsOK())
      result = Plan();
    if (result.IsOK() && mNow)
      result = SetNow();
    if (result.IsOK())
      result = mWish.ChangesLasting() ? SetLasting() : ReadLasting();
    return result;
  }

  const IPReport& GetReport() const { return mReport; }

private:
  const KrDeviceInfo& GetInfo() const { return *mReport.device.device; }
  bool IsHeard() const { return mReport.device.device != nullptr; }
  std::string GetName() const {
    return krapps::MakeCell(IsHeard() ? GetInfo().GetDisplayID() : mReport.device.fields.macAddress);
  }

  // The kernel may drop the answers of a device that lies in a foreign subnet. By its MAC address it is told none the
  // less what it wants to have.
  KrResult Select() {
    const KrResult selected = SelectNetworkDevice(mSystem, mCommandLine.device, mWish.adapter, mReport.device);
    const std::optional<KrString> mac = ParseMAC(mCommandLine.device);
    if (selected != KrResult::Code::NotFound || !mac || !mWish.sets || IsAnswering(*mac))
      return selected;
    if (!mWish.address)
      return {selected.GetCode(), *mac +
                                      " is not heard on any adapter, so no address can be proposed. It may hear what "
                                      "it is told none the less, so give the address yourself: --set ADDRESS."};
    const KrNetworkAdapter* const adapter = FindAdapter(mSystem, mWish.adapter, *mWish.address);
    if (!adapter)
      return selected;
    mErrors << "krtool: " << mac->CStr() << " is not heard; it is told its address on the chance that it hears.\n";
    mReport.device = {nullptr, adapter, {.macAddress = *mac}};
    return {};
  }

  bool IsAnswering(const KrString& aMAC) const {
    const std::vector<const KrDeviceInfo*> devices = GetDevices(mSystem);
    return std::any_of(devices.begin(), devices.end(),
                       [&](const KrDeviceInfo* aDevice) { return krapps::IsNamed(*aDevice, aMAC); });
  }

  // What is wished, and whether it can be, before anything is changed.
  KrResult Plan() {
    if (mReport.device.adapter)
      mSubnets = GetSubnets(*mReport.device.adapter);
    if (IsHeard() && mWish.ChangesLasting() && GetInfo().GetType() != KrDeviceInfoType::GEV)
      return {KrResult::Code::NotSupported, GetName() + " keeps no address that could be set: it is no GigE Vision "
                                                        "device."};
    if (mWish.ChangesLasting() && !mWish.sets && !GetInfo().IsConfigurationValid())
      return {KrResult::Code::NotFound, GetName() + " cannot be reached as it is configured, so what lasts cannot be "
                                                    "set. Give it an address first: --set auto."};
    KrResult planned;
    if (mWish.sets)
      planned = PlanNow();
    if (planned.IsOK() && mWish.persistentAddress)
      planned = PlanAddress(*mWish.persistentAddress, mOwn);
    if (planned.IsOK() && mIsDoubtful && !mCommandLine.force)
      return {KrResult::Code::InvalidInput, "nothing was changed, because of these doubts. --force sets it in spite of "
                                            "them."};
    return planned;
  }

  KrResult PlanNow() {
    if (mWish.address)
      return PlanAddress(*mWish.address, mNow);
    if (!mReport.device.adapter || mSubnets.empty())
      return {KrResult::Code::InvalidInput,
              "no address can be proposed: the adapter has none itself. Give it one first, "
              "or say which one the device is to have: --set ADDRESS --mask M."};
    KrString proposal;
    const KrResult found = mSystem.FindFreeAddress(*mReport.device.adapter, GetProposingIndex(), {}, proposal);
    if (!found.IsOK())
      return Explain("looking for a free address failed", found);
    return PlanAddress(krsystem::ParseIPv4(proposal).value_or(0), mNow);
  }

  // The first of the adapter's addresses that is one.
  std::size_t GetProposingIndex() const {
    std::size_t index = 0;
    while (krsystem::ParseIPv4(mReport.device.adapter->GetIPAddress(index)) != mSubnets.front().address)
      ++index;
    return index;
  }

  KrResult PlanAddress(std::uint32_t aAddress, std::optional<AddressPlan>& aPlan) {
    const std::optional<AdapterSubnet> subnet = FindSubnet(mSubnets, aAddress);
    if (!mWish.mask && !subnet)
      return {KrResult::Code::InvalidInput,
              "the adapter has no address, and so no mask for the device: give --mask M."};
    const AddressPlan plan = {aAddress, mWish.mask ? *mWish.mask : subnet->mask, mWish.gateway.value_or(0)};
    const AddressVerdict verdict = CheckAddress(plan, mSubnets, GetOtherAddresses());
    if (!verdict.refusal.empty())
      return {KrResult::Code::InvalidInput, verdict.refusal};
    for (const std::string& doubt : verdict.doubts)
      mErrors << "krtool: " << doubt << '\n';
    mIsDoubtful = mIsDoubtful || !verdict.doubts.empty();
    aPlan = plan;
    return {};
  }

  std::vector<std::uint32_t> GetOtherAddresses() const {
    std::vector<std::uint32_t> addresses;
    for (const KrDeviceInfo* device : GetDevices(mSystem)) {
      const auto network = GetNetworkFields(*device);
      if (network && network->macAddress != mReport.device.fields.macAddress)
        addresses.push_back(krsystem::ParseIPv4(network->ipAddress).value_or(0));
    }
    return addresses;
  }

  KrResult SetNow() {
    krsystem::NetworkFields wanted = {mReport.device.fields.macAddress, krsystem::FormatIPv4(mNow->address),
                                      krsystem::FormatIPv4(mNow->mask), krsystem::FormatIPv4(mNow->gateway)};
    const bool isGigE = !IsHeard() || GetInfo().GetType() == KrDeviceInfoType::GEV;
    const auto set = isGigE ? KrDeviceGEV::SetIPConfiguration : KrDeviceTolvanProtocol::SetIPConfiguration;
    const std::string attempt = "giving " + GetName() + " the address " + wanted.ipAddress.ToUtf8() + " failed";
    KrResult result = set(wanted.macAddress, wanted.ipAddress, wanted.subnetMask, wanted.defaultGateway);
    if (!result.IsOK())
      return Explain(attempt, result);
    std::uint64_t tookMs = 0;
    result = AwaitAddress(mSystem, wanted, mCommandLine.timeoutMs.value_or(kDefaultAwaitMs), mReport.device, tookMs);
    mReport.answeredAfterMs = tookMs;
    return Explain(attempt, result);
  }

  KrResult Open(KrDeviceAccess aAccess, std::unique_ptr<KrDevice>& aDevice, KrDeviceGEV*& aGigE) {
    if (!GetInfo().IsConfigurationValid())
      return {KrResult::Code::NotFound, "this host cannot reach the device as it is configured."};
    KrResult opened = KrDevice::Open(GetInfo(), aAccess, aDevice);
    aGigE = dynamic_cast<KrDeviceGEV*>(aDevice.get());
    return opened.IsOK() && !aGigE ? KrResult(KrResult::Code::NotSupported, "it is no GigE Vision device.") : opened;
  }

  // That it cannot be read is part of what is shown.
  KrResult ReadLasting() {
    if (GetInfo().GetType() != KrDeviceInfoType::GEV)
      return {};
    std::unique_ptr<KrDevice> device;
    KrDeviceGEV* gigE = nullptr;
    KrLastingIPConfiguration lasting;
    KrResult read = Open(KrDeviceAccess::Monitor, device, gigE);
    if (read.IsOK())
      read = gigE->GetLastingIPConfiguration(lasting);
    if (read.IsOK())
      mReport.lasting = lasting;
    else
      mReport.lastingProblem =
          (read.GetDescription().IsEmpty() ? read.GetCodeString() : read.GetDescription()).ToUtf8();
    return {};
  }

  KrResult SetLasting() {
    const std::string attempt = "setting how " + GetName() + " gets its address at its next start failed";
    if (KrResult written = WriteLasting(); !written.IsOK())
      return Explain(attempt, written);
    // Which ways are switched on is part of what a device answers when it is looked for.
    std::uint64_t tookMs = 0;
    const krsystem::NetworkFields fields = mReport.device.fields;
    return Explain(attempt, AwaitAddress(mSystem, fields, kDefaultAwaitMs, mReport.device, tookMs));
  }

  KrResult WriteLasting() {
    std::unique_ptr<KrDevice> device;
    KrDeviceGEV* gigE = nullptr;
    KrLastingIPConfiguration lasting;
    KrResult result = Open(KrDeviceAccess::Control, device, gigE);
    if (result.IsOK())
      result = gigE->GetLastingIPConfiguration(lasting);
    if (result.IsOK())
      result = gigE->SetLastingIPConfiguration(Amend(lasting));
    if (result.IsOK())
      mReport.lasting = Amend(lasting);
    return result;
  }

  KrLastingIPConfiguration Amend(KrLastingIPConfiguration aLasting) const {
    aLasting.persistent = mWish.persistent.value_or(aLasting.persistent);
    aLasting.dhcp = mWish.dhcp.value_or(aLasting.dhcp);
    aLasting.linkLocal = mWish.linkLocal.value_or(aLasting.linkLocal);
    if (mOwn) {
      aLasting.address = krsystem::FormatIPv4(mOwn->address);
      aLasting.subnetMask = krsystem::FormatIPv4(mOwn->mask);
      aLasting.gateway = krsystem::FormatIPv4(mOwn->gateway);
    }
    return aLasting;
  }

  KrSystem& mSystem;
  const CommandLine& mCommandLine;
  const IPWish& mWish;
  std::ostream& mErrors;
  IPReport mReport;
  std::vector<AdapterSubnet> mSubnets;
  std::optional<AddressPlan> mNow;
  std::optional<AddressPlan> mOwn;
  bool mIsDoubtful = false;
};

} // namespace

int RunIP(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (aCommandLine.timeoutMs && !aCommandLine.ip.sets)
    aSystem.SetDetectionTimeout(*aCommandLine.timeoutMs);
  IPChange change(aSystem, aCommandLine, aErrors);
  if (KrResult result = change.Run(); !result.IsOK())
    return Fail(aErrors, result);
  const IPReport& report = change.GetReport();
  aOut << (aCommandLine.json ? FormatIPReportJson(report) : FormatIPReport(report));
  return 0;
}

} // namespace krtool
