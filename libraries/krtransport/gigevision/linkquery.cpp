#include "gigevision/linkquery.h"

#include "gigevision/gvcpsocket.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace krtransport {
namespace {

// Asks the kernel about an adapter; false where it does not answer.
bool Ask(const std::string& aAdapterName, unsigned long aQuestion, ifreq& aRequest) {
  const FileDescriptor descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (!descriptor.IsOpen() || aAdapterName.size() >= sizeof(aRequest.ifr_name))
    return false;
  aAdapterName.copy(aRequest.ifr_name, sizeof(aRequest.ifr_name) - 1);
  return ::ioctl(descriptor.Get(), aQuestion, &aRequest) == 0;
}

bool AskDriver(const std::string& aAdapterName, void* aQuestion) {
  ifreq request{};
  request.ifr_data = static_cast<char*>(aQuestion);
  return Ask(aAdapterName, SIOCETHTOOL, request);
}

// Asks for a link's settings; false where the kernel does not answer. aWords is how many words each of its three lists
// of modes takes, which are not looked at.
bool AskSettings(const std::string& aAdapterName, std::int8_t aWords, ethtool_link_settings& aSettings) {
  constexpr std::size_t kMaxWords = INT8_MAX;
  alignas(ethtool_link_settings) std::array<std::byte, sizeof(aSettings) + 3 * kMaxWords * sizeof(std::uint32_t)>
      bytes{};
  aSettings = {};
  aSettings.cmd = ETHTOOL_GLINKSETTINGS;
  aSettings.link_mode_masks_nwords = aWords;
  std::memcpy(bytes.data(), &aSettings, sizeof(aSettings));
  if (!AskDriver(aAdapterName, bytes.data()))
    return false;
  std::memcpy(&aSettings, bytes.data(), sizeof(aSettings));
  return true;
}

} // namespace

std::string GetDriverName(const std::string& aAdapterName) {
  ethtool_drvinfo info{};
  info.cmd = ETHTOOL_GDRVINFO;
  if (!AskDriver(aAdapterName, &info))
    return {};
  return {info.driver, ::strnlen(info.driver, sizeof(info.driver))};
}

std::uint32_t GetMtu(const std::string& aAdapterName) {
  constexpr std::uint32_t kEthernetMtu = 1500;
  ifreq request{};
  const bool isTold = Ask(aAdapterName, SIOCGIFMTU, request);
  return isTold && request.ifr_mtu > 0 ? static_cast<std::uint32_t>(request.ifr_mtu) : kEthernetMtu;
}

std::uint64_t GetLinkSpeed(const std::string& aAdapterName) {
  constexpr std::uint64_t kBitsPerMegabit = 1000000;
  ethtool_link_settings settings;
  // Asked with the wrong number of words, the kernel gives the right one as a negative number.
  if (!AskSettings(aAdapterName, 0, settings) || settings.link_mode_masks_nwords >= 0)
    return 0;
  const auto words = static_cast<std::int8_t>(-settings.link_mode_masks_nwords);
  if (words < 0 || !AskSettings(aAdapterName, words, settings) || settings.link_mode_masks_nwords != words)
    return 0;
  const std::uint64_t megabits = settings.speed;
  // An adapter without a link says -1, some say the largest number.
  const bool isTold = megabits > 0 && megabits < INT32_MAX;
  return isTold ? megabits * kBitsPerMegabit : 0;
}

bool MayUsePacketSockets() {
  return FileDescriptor(::socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0)).IsOpen();
}

} // namespace krtransport
