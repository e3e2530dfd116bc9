#include "krsystem/itransport.h"

namespace krsystem {

KrResult ITransport::ReadHost(HostReadings&) {
  return {};
}

KrResult ITransport::FindUsedAddresses(const InterfaceFields&, const std::vector<std::uint32_t>&, std::uint32_t,
                                       const std::stop_token&, std::vector<std::uint32_t>&) {
  return {KrResult::Code::NotSupported, GetName() + " cannot tell which addresses are used."};
}

} // namespace krsystem
