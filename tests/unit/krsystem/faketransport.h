#pragma once
// A transport whose interfaces, answers and failures a test decides.

#include "krsystem/transportregistry.h"

#include <functional>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

/// Set the public members before the transport is used.
class FakeTransport : public krsystem::ITransport {
public:
  std::vector<krsystem::InterfaceFields> interfaces;
  std::vector<std::pair<std::size_t, krsystem::AnyDeviceFields>> answers;
  KrResult listResult;
  KrResult discoverResult;
  std::function<KrResult(const krsystem::DiscoveryRequest&)> afterAnswers;
  /// What discovery does instead of reporting the answers.
  std::function<KrResult(const krsystem::DiscoveryRequest&, const krsystem::DeviceReport&)> discover;
  KrResult findResult = KrResult::Code::NotFound;
  krsystem::InterfaceFields foundInterface;
  krsystem::AnyDeviceFields foundDevice;
  KrResult configureResult = KrResult::Code::NotFound;
  KrResult accessResult = KrResult::Code::NotFound;
  krsystem::AccessType accessType = krsystem::AccessType::Unknown;
  std::function<KrResult(krsystem::DeviceAccess, std::unique_ptr<krsystem::IDeviceLink>&)> open;
  std::function<KrResult(krsystem::HostReadings&)> readHost;
  /// Which of the addresses are used; nobody can be asked where it is empty.
  std::function<KrResult(const std::vector<std::uint32_t>&, const std::stop_token&, std::vector<std::uint32_t>&)>
      findUsed;
  std::vector<krsystem::InterfaceFields> askedInterfaces;
  std::vector<krsystem::DiscoveryRequest> requests;
  std::vector<KrString> configured;
  std::vector<krsystem::InterfaceFields> openedInterfaces;
  std::vector<krsystem::AnyDeviceFields> openedDevices;
  bool throws = false;

  KrString GetName() const override { return "Fake"; }
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override {
    ThrowIfAsked();
    aInterfaces = interfaces;
    return listResult;
  }
  KrResult Discover(const std::vector<krsystem::InterfaceFields>&, const krsystem::DiscoveryRequest& aRequest,
                    const krsystem::DeviceReport& aReport) override {
    ThrowIfAsked();
    requests.push_back(aRequest);
    if (discover)
      return discover(aRequest, aReport);
    for (const auto& [index, device] : answers)
      aReport(index, device);
    return afterAnswers ? afterAnswers(aRequest) : discoverResult;
  }
  KrResult FindAddress(std::uint32_t, std::uint32_t, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override {
    ThrowIfAsked();
    aInterface = foundInterface;
    aDevice = foundDevice;
    return findResult;
  }
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override {
    ThrowIfAsked();
    configured = {aMAC, aAddress, aMask, aGateway};
    return configureResult;
  }
  KrResult GetAccessType(const krsystem::AnyDeviceFields&, krsystem::AccessType& aType) override {
    ThrowIfAsked();
    aType = accessType;
    return accessResult;
  }
  KrResult Open(const krsystem::InterfaceFields& aInterface, const krsystem::AnyDeviceFields& aDevice,
                krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override {
    ThrowIfAsked();
    openedInterfaces.push_back(aInterface);
    openedDevices.push_back(aDevice);
    return open ? open(aAccess, aLink) : KrResult(KrResult::Code::NotFound);
  }
  KrResult ReadHost(krsystem::HostReadings& aReadings) override {
    ThrowIfAsked();
    return readHost ? readHost(aReadings) : ITransport::ReadHost(aReadings);
  }
  KrResult FindUsedAddresses(const krsystem::InterfaceFields& aInterface, const std::vector<std::uint32_t>& aAddresses,
                             std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
                             std::vector<std::uint32_t>& aUsed) override {
    ThrowIfAsked();
    askedInterfaces.push_back(aInterface);
    return findUsed ? findUsed(aAddresses, aCancel, aUsed)
                    : ITransport::FindUsedAddresses(aInterface, aAddresses, aTimeoutMs, aCancel, aUsed);
  }

private:
  void ThrowIfAsked() const {
    if (throws)
      throw std::runtime_error("the fake is broken");
  }
};

/// A transport that is registered while this object lives.
class RegisteredTransport {
public:
  RegisteredTransport() : mTransport(std::make_shared<FakeTransport>()) { krsystem::RegisterTransport(mTransport); }
  ~RegisteredTransport() { krsystem::UnregisterTransport(mTransport); }
  RegisteredTransport(const RegisteredTransport&) = delete;
  RegisteredTransport& operator=(const RegisteredTransport&) = delete;

  FakeTransport* operator->() const { return mTransport.get(); }
  std::shared_ptr<FakeTransport> Get() const { return mTransport; }

private:
  std::shared_ptr<FakeTransport> mTransport;
};

inline krsystem::NetworkAdapterFields MakeAdapter(const KrString& aName, const KrString& aAddress = "10.0.0.1") {
  krsystem::NetworkAdapterFields fields;
  fields.uniqueID = aName;
  fields.displayID = aName + " " + aAddress;
  fields.name = aName;
  fields.addresses = {{aAddress, "255.255.255.0"}};
  return fields;
}

inline krsystem::GEVFields MakeCamera(const KrString& aID, const KrString& aAddress = "10.0.0.2") {
  krsystem::GEVFields fields;
  fields.uniqueID = aID;
  fields.displayID = "Camera " + aID;
  fields.macAddress = aID;
  fields.ipAddress = aAddress;
  return fields;
}
