#include "freeaddress.h"

#include "krsystem/ipv4address.h"
#include "krsystem/transportcall.h"

#include <algorithm>

namespace krsystem {

namespace {

constexpr std::uint32_t kLastField = 0xFF;
constexpr SubnetAddress kLinkLocal = {0xA9FE0000, 0xFFFF0000};

bool IsProposed(std::uint32_t aAddress, std::uint32_t aMask) {
  if (!IsForDevice(aAddress, aMask))
    return false;
  const std::uint32_t lastField = aAddress & kLastField;
  if (lastField == 0 || lastField == kLastField)
    return false;
  const std::uint32_t thirdField = aAddress >> 8 & kLastField;
  return (aAddress & kLinkLocal.mask) != kLinkLocal.address || (thirdField != 0 && thirdField != kLastField);
}

KrResult MakeCancelled() {
  return {KrResult::Code::Aborted, "Looking for a free address was cancelled."};
}

KrResult MakeNotFound(const SubnetAddress& aSubnet) {
  return {KrResult::Code::NotFound, "No free address was found in the subnet of " + FormatIPv4(aSubnet.address) +
                                        " (mask " + FormatIPv4(aSubnet.mask) +
                                        "); choose one yourself, or give the adapter a larger subnet."};
}

} // namespace

std::vector<std::uint32_t> ChooseCandidates(const SubnetAddress& aSubnet, const std::set<std::uint32_t>& aTaken,
                                            std::size_t aMost) {
  std::vector<std::uint32_t> candidates;
  if (aSubnet.mask == 0 || !IsContiguousMask(aSubnet.mask))
    return candidates;
  const std::uint32_t network = aSubnet.address & aSubnet.mask;
  const std::uint32_t last = ~aSubnet.mask;
  const std::uint32_t own = aSubnet.address & last;
  for (std::uint32_t step = 1; step <= last && candidates.size() < aMost; ++step) {
    const std::uint32_t candidate = network | ((own + step) & last);
    if (IsProposed(candidate, aSubnet.mask) && !aTaken.contains(candidate))
      candidates.push_back(candidate);
  }
  return candidates;
}

KrResult FindFreeAddress(ITransport& aTransport, const InterfaceFields& aInterface, const SubnetAddress& aSubnet,
                         std::set<std::uint32_t> aTaken, const std::stop_token& aCancel, std::uint32_t& aAddress) {
  for (int batch = 0; batch < kMostAddressBatches; ++batch) {
    const std::vector<std::uint32_t> candidates = ChooseCandidates(aSubnet, aTaken, kAddressBatch);
    if (candidates.empty())
      break;
    if (aCancel.stop_requested())
      return MakeCancelled();
    std::vector<std::uint32_t> used;
    const KrResult asked = CallTransport("Asking who uses an address", [&] {
      return aTransport.FindUsedAddresses(aInterface, candidates, kAddressBatchMs, aCancel, used);
    });
    if (!asked.IsOK())
      return asked;
    if (aCancel.stop_requested())
      return MakeCancelled();
    const auto isUsed = [&used](std::uint32_t aOne) { return std::ranges::find(used, aOne) != used.end(); };
    const auto free = std::ranges::find_if_not(candidates, isUsed);
    if (free != candidates.end()) {
      aAddress = *free;
      return {};
    }
    aTaken.insert(candidates.begin(), candidates.end());
  }
  return MakeNotFound(aSubnet);
}

} // namespace krsystem
