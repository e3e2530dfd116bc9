#include "addressing.h"

#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"
#include "krsystem/transportcall.h"
#include "krsystem/transportregistry.h"

#include <future>
#include <string>
#include <system_error>
#include <vector>

namespace krdevice {

namespace {

KrResult RefuseIPv4(const char* aMeaning, const KrString& aText) {
  return {KrResult::Code::InvalidInput, "Setting a device's IP configuration: the " + KrString(aMeaning) + " \"" +
                                            aText + "\" is no IPv4 address; write four numbers, as in 192.168.1.20."};
}

// A transport that does not know the device is no failure as long as another does.
bool IsSilence(const KrResult& aResult) {
  return aResult == KrResult::Code::NotFound || aResult == KrResult::Code::NotSupported;
}

struct AccessAnswer {
  KrResult result;
  krsystem::AccessType type = krsystem::AccessType::Unknown;
};

std::vector<std::future<AccessAnswer>> AskAll(const krsystem::GEVFields& aFields) {
  std::vector<std::future<AccessAnswer>> pending;
  for (const std::shared_ptr<krsystem::ITransport>& transport : krsystem::GetTransports()) {
    const auto ask = [transport, aFields] {
      AccessAnswer answer;
      answer.result =
          krsystem::CallTransport("A transport", [&] { return transport->GetAccessType(aFields, answer.type); });
      return answer;
    };
    try {
      pending.push_back(std::async(std::launch::async, ask));
    } catch (const std::system_error&) {
      // Without a further thread the transport is asked in turn, when its answer is waited for.
      pending.push_back(std::async(std::launch::deferred, ask));
    }
  }
  return pending;
}

} // namespace

KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                     const KrString& aGateway) {
  if (!krsystem::ParseMAC(aMAC))
    return {KrResult::Code::InvalidInput, "Setting a device's IP configuration: \"" + aMAC +
                                              "\" is no MAC address; write it as in 00:11:22:aa:bb:cc."};
  const std::pair<const char*, const KrString*> texts[] = {
      {"address", &aAddress}, {"subnet mask", &aSubnetMask}, {"gateway", &aGateway}};
  for (const auto& [meaning, text] : texts) {
    if (!krsystem::ParseIPv4(*text))
      return RefuseIPv4(meaning, *text);
  }
  KrResult silence = KrResult::Code::NotFound;
  KrResult failure;
  for (const std::shared_ptr<krsystem::ITransport>& transport : krsystem::GetTransports()) {
    const KrResult result = krsystem::CallTransport(
        "A transport", [&] { return transport->ConfigureIP(aMAC, aAddress, aSubnetMask, aGateway); });
    if (result.IsOK())
      return result;
    if (!IsSilence(result))
      failure = result;
    else if (result == KrResult::Code::NotFound && silence.GetDescription().IsEmpty())
      silence = result;
  }
  if (!failure.IsOK())
    return failure;
  // What a transport tells of a device that confirms nothing says more than that nobody does.
  if (!silence.GetDescription().IsEmpty())
    return silence;
  return {KrResult::Code::NotFound,
          "Setting the IP configuration of " + aMAC + ": no device confirms it; check its cable and its power."};
}

KrResult AskAccessType(const KrString& aAddress, krsystem::AccessType& aType) {
  if (!krsystem::ParseIPv4(aAddress))
    return {KrResult::Code::InvalidInput, "Asking who controls a device: \"" + aAddress +
                                              "\" is no IPv4 address; write four numbers, as in 192.168.1.20."};
  krsystem::GEVFields fields;
  fields.ipAddress = aAddress;
  KrResult failure(KrResult::Code::NotFound, "Asking who controls the device at " + aAddress + ": nothing answers.");
  bool answered = false;
  for (std::future<AccessAnswer>& pending : AskAll(fields)) {
    const AccessAnswer answer = pending.get();
    if (answer.result.IsOK() && !answered) {
      aType = answer.type;
      answered = true;
    } else if (!answer.result.IsOK() && !IsSilence(answer.result)) {
      failure = answer.result;
    }
  }
  return answered ? KrResult() : failure;
}

} // namespace krdevice
