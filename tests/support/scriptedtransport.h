#pragma once
// A transport for tests of windows that look for devices: what is connected changes whenever the test says so, and a
// round tells the test where it is and may be held there.

#include "gate.h"
#include "krsystem/transportregistry.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Thread: any.
class ScriptedTransport : public krsystem::ITransport {
public:
  /// Where a round may be: before the first answer, between answers, after the last.
  enum class Point { Begin, Between, End };
  /// Called at each point, without a lock; may wait, best until the token asks.
  using Script = std::function<void(Point, const std::stop_token&)>;

  void SetScript(Script aScript) {
    Change([&] { mScript = std::move(aScript); });
  }
  void AddInterface(const krsystem::InterfaceFields& aInterface) {
    Change([&] { mInterfaces.push_back(aInterface); });
  }
  void SetInterfaces(std::vector<krsystem::InterfaceFields> aInterfaces) {
    Change([&] { mInterfaces = std::move(aInterfaces); });
  }
  /// A device behind the interface of an ID.
  void AddDevice(const KrString& aInterfaceID, const krsystem::AnyDeviceFields& aDevice) {
    Change([&] { mDevices.emplace_back(aInterfaceID, aDevice); });
  }
  void SetDevices(std::vector<std::pair<KrString, krsystem::AnyDeviceFields>> aDevices) {
    Change([&] { mDevices = std::move(aDevices); });
  }
  /// What a device says when it is asked who controls it; nothing for one that does not answer.
  void SetAccessType(std::optional<krsystem::AccessType> aType) {
    Change([&] { mAccessType = aType; });
  }
  /// What answers when an address is asked for.
  void SetAtAddress(std::uint32_t aAddress, std::size_t aInterface, const krsystem::AnyDeviceFields& aDevice) {
    Change([&] { mAtAddress[aAddress] = {aInterface, aDevice}; });
  }

  std::size_t GetRoundCount() const {
    return Read([&] { return mRoundCount; });
  }
  std::size_t GetAccessCount() const {
    return Read([&] { return mAccessCount; });
  }
  bool WasSubnetBroadcast() const {
    return Read([&] { return mWasSubnetBroadcast; });
  }
  std::uint32_t GetTimeoutMs() const {
    return Read([&] { return mTimeoutMs; });
  }

  KrString GetName() const override { return "Scripted"; }
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override {
    aInterfaces = Read([&] { return mInterfaces; });
    return {};
  }
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override {
    const auto [script, devices] = Read([&] { return std::pair(mScript, mDevices); });
    Call(script, Point::Begin, aRequest.cancel);
    for (const auto& [interfaceID, device] : devices) {
      for (std::size_t i = 0; i < aInterfaces.size(); ++i) {
        if (GetID(aInterfaces[i]) != interfaceID)
          continue;
        aReport(i, device);
        Call(script, Point::Between, aRequest.cancel);
      }
    }
    Call(script, Point::End, aRequest.cancel);
    Change([&] {
      ++mRoundCount;
      mWasSubnetBroadcast = aRequest.subnetBroadcast;
      mTimeoutMs = aRequest.timeoutMs;
    });
    return {};
  }
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override {
    const std::lock_guard lock(mMutex);
    const auto found = mAtAddress.find(aAddress);
    if (found == mAtAddress.end())
      return KrResult::Code::NotFound;
    aInterface = mInterfaces.at(found->second.first);
    aDevice = found->second.second;
    return {};
  }
  KrResult ConfigureIP(const KrString&, const KrString&, const KrString&, const KrString&) override {
    return KrResult::Code::NotFound;
  }
  KrResult GetAccessType(const krsystem::AnyDeviceFields&, krsystem::AccessType& aType) override {
    const std::lock_guard lock(mMutex);
    ++mAccessCount;
    if (!mAccessType)
      return {KrResult::Code::TimeLimitExceeded, "The device does not answer."};
    aType = *mAccessType;
    return {};
  }
  KrResult Open(const krsystem::InterfaceFields&, const krsystem::AnyDeviceFields&, krsystem::DeviceAccess,
                std::unique_ptr<krsystem::IDeviceLink>&) override {
    return KrResult::Code::NotSupported;
  }

private:
  static KrString GetID(const krsystem::InterfaceFields& aInterface) {
    return std::visit([](const auto& aFields) { return aFields.uniqueID; }, aInterface);
  }
  static void Call(const Script& aScript, Point aPoint, const std::stop_token& aStop) {
    if (aScript)
      aScript(aPoint, aStop);
  }
  template <typename Action>
  void Change(Action aAction) {
    const std::lock_guard lock(mMutex);
    aAction();
  }
  template <typename Getter>
  std::invoke_result_t<Getter> Read(Getter aGetter) const {
    const std::lock_guard lock(mMutex);
    return aGetter();
  }

  mutable std::mutex mMutex; // Guards all members.
  std::vector<krsystem::InterfaceFields> mInterfaces;
  std::vector<std::pair<KrString, krsystem::AnyDeviceFields>> mDevices;
  std::map<std::uint32_t, std::pair<std::size_t, krsystem::AnyDeviceFields>> mAtAddress;
  Script mScript;
  std::optional<krsystem::AccessType> mAccessType = krsystem::AccessType::Open;
  std::size_t mRoundCount = 0;
  std::size_t mAccessCount = 0;
  std::uint32_t mTimeoutMs = 0;
  bool mWasSubnetBroadcast = true;
};
