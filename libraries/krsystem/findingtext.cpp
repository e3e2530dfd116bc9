#include "findingtext.h"

#include "anydevicefields.h"

#include <algorithm>
#include <string_view>

namespace krsystem {

namespace {

constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-:@";
constexpr const char* kNoAddress = "0.0.0.0";

} // namespace

bool IsPlainWord(const KrString& aName) {
  const std::string& name = aName.ToUtf8();
  return !name.empty() && name.front() != '-' && name.find_first_not_of(kPlain) == std::string::npos;
}

std::string AppendCommand(const KrString& aName, const std::string& aCommand) {
  return IsPlainWord(aName) ? "\n" + aCommand : std::string();
}

const KrString& GetName(const AdapterReading& aAdapter) {
  return aAdapter.name.IsEmpty() ? aAdapter.uniqueID : aAdapter.name;
}

const KrString& GetName(const AnyDeviceFields& aDevice) {
  const DeviceFields& fields = GetDeviceFields(aDevice);
  return fields.displayID.IsEmpty() ? fields.uniqueID : fields.displayID;
}

const AdapterReading* FindAdapter(const HostReadings& aReadings, const AnsweredDevice& aAnswered) {
  auto adapter = std::ranges::find(aReadings.adapters, aAnswered.interfaceID, &AdapterReading::uniqueID);
  // The unique ID changes when the adapter gets another MAC address, or another adapter has the same one.
  if (adapter == aReadings.adapters.end() && !aAnswered.interfaceName.IsEmpty())
    adapter = std::ranges::find(aReadings.adapters, aAnswered.interfaceName, &AdapterReading::name);
  return adapter != aReadings.adapters.end() ? &*adapter : nullptr;
}

const AdapterAddress* FindAddress(const AdapterReading& aAdapter) {
  const auto address =
      std::ranges::find_if(aAdapter.addresses, [](const AdapterAddress& aOne) { return aOne.address != kNoAddress; });
  return address != aAdapter.addresses.end() ? &*address : nullptr;
}

} // namespace krsystem
