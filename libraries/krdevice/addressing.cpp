#include "addressing.h"

#include "krsystem/ipv4address.h"
#include "krsystem/transportregistry.h"

#include <exception>
#include <future>
#include <string>
#include <system_error>
#include <vector>

namespace krdevice {

namespace {

constexpr std::size_t kMACLength = 17; // "aa:bb:cc:dd:ee:ff".

bool IsHexDigit(char aCharacter) {
  return (aCharacter >= '0' && aCharacter <= '9') || (aCharacter >= 'a' && aCharacter <= 'f') ||
         (aCharacter >= 'A' && aCharacter <= 'F');
}

bool IsMACAddress(const std::string& aText) {
  if (aText.size() != kMACLength)
    return false;
  for (std::size_t i = 0; i < kMACLength; ++i) {
    if (i % 3 == 2 ? aText[i] != ':' : !IsHexDigit(aText[i]))
      return false;
  }
  return true;
}

KrResult RefuseIPv4(const char* aMeaning, const KrString& aText) {
  return {KrResult::Code::InvalidInput, "Setting a device's IP configuration: the " + KrString(aMeaning) + " \"" +
                                            aText + "\" is no IPv4 address; write four numbers, as in 192.168.1.20."};
}

template <typename Operation>
KrResult CallTransport(Operation&& aOperation) {
  try {
    return aOperation();
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError, std::string("A transport was ended by an exception: ") + error.what()};
  } catch (...) {
    return {KrResult::Code::SystemError, "A transport was ended by an exception of unknown type."};
  }
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
      answer.result = CallTransport([&] { return transport->GetAccessType(aFields, answer.type); });
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
  if (!IsMACAddress(aMAC.ToUtf8()))
    return {KrResult::Code::InvalidInput, "Setting a device's IP configuration: \"" + aMAC +
                                              "\" is no MAC address; write it as in 00:11:22:aa:bb:cc."};
  const std::pair<const char*, const KrString*> texts[] = {
      {"address", &aAddress}, {"subnet mask", &aSubnetMask}, {"gateway", &aGateway}};
  for (const auto& [meaning, text] : texts) {
    if (!krsystem::ParseIPv4(*text))
      return RefuseIPv4(meaning, *text);
  }
  KrResult failure(KrResult::Code::NotFound, "Setting the IP configuration of " + aMAC +
                                                 ": no device confirms it; check its cable and its power.");
  for (const std::shared_ptr<krsystem::ITransport>& transport : krsystem::GetTransports()) {
    const KrResult result =
        CallTransport([&] { return transport->ConfigureIP(aMAC, aAddress, aSubnetMask, aGateway); });
    if (result.IsOK())
      return result;
    if (!IsSilence(result))
      failure = result;
  }
  return failure;
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
