#include "gigevision/networkadapters.h"

#include "gigevision/gvcpsocket.h"
#include "gigevision/gvcptext.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ifaddrs.h>
#include <limits>
#include <memory>
#include <net/if.h>
#include <net/if_arp.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <set>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <system_error>

namespace krtransport {
namespace {

using krsystem::AdapterAddress;
using krsystem::NetworkAdapterFields;

constexpr std::uint32_t kLimitedBroadcast = 0xFFFFFFFFu;

// What the kernel says of an adapter, gathered from several records.
struct KernelAdapter {
  unsigned flags = 0;
  unsigned short hardwareType = 0;
  MacBytes mac{};
  std::vector<AdapterAddress> addresses;
};

using IfaddrsPointer = std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)>;

std::uint32_t ReadIPv4(const sockaddr* aAddress) {
  if (aAddress == nullptr)
    return 0;
  sockaddr_in address{};
  std::memcpy(&address, aAddress, sizeof(address));
  return ntohl(address.sin_addr.s_addr);
}

void TakeRecord(const ifaddrs& aRecord, KernelAdapter& aAdapter) {
  aAdapter.flags |= aRecord.ifa_flags;
  if (aRecord.ifa_addr->sa_family == AF_INET) {
    aAdapter.addresses.push_back(
        {krsystem::FormatIPv4(ReadIPv4(aRecord.ifa_addr)), krsystem::FormatIPv4(ReadIPv4(aRecord.ifa_netmask))});
  } else if (aRecord.ifa_addr->sa_family == AF_PACKET) {
    sockaddr_ll link{};
    std::memcpy(&link, aRecord.ifa_addr, sizeof(link));
    aAdapter.hardwareType = link.sll_hatype;
    if (link.sll_halen == aAdapter.mac.size())
      std::copy_n(link.sll_addr, aAdapter.mac.size(), aAdapter.mac.begin());
  }
}

// An address may carry a label of its own, for example "eth0:1".
std::string GetAdapterName(const ifaddrs& aRecord) {
  const std::string name = aRecord.ifa_name;
  return name.substr(0, name.find(':'));
}

bool IsListed(const KernelAdapter& aAdapter) {
  if ((aAdapter.flags & IFF_LOOPBACK) != 0)
    return (aAdapter.flags & IFF_UP) != 0;
  return aAdapter.hardwareType == ARPHRD_ETHER || !aAdapter.addresses.empty();
}

std::string DescribeAdapter(const std::string& aName, bool aLoopback) {
  if (aLoopback)
    return "Loopback";
  std::error_code error;
  const auto driver = std::filesystem::read_symlink("/sys/class/net/" + aName + "/device/driver", error);
  return error ? "Virtual network adapter" : driver.filename().string();
}

NetworkAdapterFields MakeFields(const std::string& aName, const KernelAdapter& aAdapter) {
  NetworkAdapterFields fields;
  fields.name = aName;
  fields.description = DescribeAdapter(aName, (aAdapter.flags & IFF_LOOPBACK) != 0);
  if (aAdapter.mac != MacBytes{})
    fields.macAddress = FormatMac(aAdapter.mac);
  if (!aAdapter.addresses.empty())
    fields.addresses = aAdapter.addresses;
  fields.displayID = fields.name + " " + fields.addresses.front().address;
  return fields;
}

// What can be read of a file of the kernel's; some of them refuse to be read, which the stream's operator takes as the
// end.
std::string ReadFile(const std::string& aPath) {
  const std::ifstream file(aPath);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

bool ParseHex(const std::string& aText, std::uint32_t& aValue) {
  const auto [end, error] = std::from_chars(aText.data(), aText.data() + aText.size(), aValue, 16);
  return error == std::errc() && end == aText.data() + aText.size();
}

bool IsLoopback(std::uint32_t aAddress) {
  return (aAddress >> 24) == 127;
}

} // namespace

KrResult ListNetworkAdapters(std::vector<NetworkAdapterFields>& aAdapters) {
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0)
    return {KrResult::Code::SystemError,
            "Listing the network adapters failed: " + std::generic_category().message(errno) + "."};
  const IfaddrsPointer owner(list, &::freeifaddrs);
  std::map<std::string, KernelAdapter> adapters;
  std::vector<std::string> order;
  for (const ifaddrs* record = list; record != nullptr; record = record->ifa_next) {
    if (record->ifa_addr == nullptr)
      continue;
    const auto [adapter, isNew] = adapters.try_emplace(GetAdapterName(*record));
    if (isNew)
      order.push_back(adapter->first);
    TakeRecord(*record, adapter->second);
  }
  const auto gateways = ParseDefaultGateways(ReadFile("/proc/net/route"));
  aAdapters.clear();
  for (const std::string& name : order) {
    if (!IsListed(adapters[name]))
      continue;
    aAdapters.push_back(MakeFields(name, adapters[name]));
    if (const auto gateway = gateways.find(name); gateway != gateways.end())
      aAdapters.back().defaultGateway = krsystem::FormatIPv4(gateway->second);
  }
  AssignUniqueIDs(aAdapters);
  return {};
}

void AssignUniqueIDs(std::vector<NetworkAdapterFields>& aAdapters) {
  std::map<KrString, int> uses;
  for (const auto& adapter : aAdapters)
    ++uses[adapter.macAddress];
  for (auto& adapter : aAdapters) {
    const bool isOwn = !adapter.macAddress.IsEmpty() && uses[adapter.macAddress] == 1;
    adapter.uniqueID = isOwn ? adapter.macAddress : adapter.macAddress + "/" + adapter.name;
  }
}

std::map<std::string, std::uint32_t> ParseDefaultGateways(const std::string& aRoutingTable) {
  std::map<std::string, std::uint32_t> gateways;
  std::istringstream lines(aRoutingTable);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream columns(line);
    std::string name, destinationText, gatewayText;
    std::uint32_t destination = 0;
    std::uint32_t gateway = 0;
    columns >> name >> destinationText >> gatewayText;
    if (columns.fail() || !ParseHex(destinationText, destination) || !ParseHex(gatewayText, gateway))
      continue;
    // The table writes addresses as the numbers that their bytes make in memory. The kernel's first route is the one
    // used.
    if (destination == 0 && gateway != 0)
      gateways.emplace(name, ntohl(gateway));
  }
  return gateways;
}

std::optional<std::uint32_t> FindLocalAddress(const NetworkAdapterFields& aAdapter, std::uint32_t aDevice) {
  if (aDevice == 0)
    return std::nullopt;
  for (const AdapterAddress& row : aAdapter.addresses) {
    const std::uint32_t address = krsystem::ParseIPv4(row.address).value_or(0);
    const std::uint32_t mask = krsystem::ParseIPv4(row.mask).value_or(0);
    if (address != 0 && mask != 0 && (address & mask) == (aDevice & mask))
      return address;
  }
  return std::nullopt;
}

std::vector<std::uint32_t> GetBroadcastAddresses(const NetworkAdapterFields& aAdapter, bool aSubnetBroadcast) {
  std::set<std::uint32_t> broadcasts;
  for (const AdapterAddress& row : aAdapter.addresses) {
    const std::uint32_t address = krsystem::ParseIPv4(row.address).value_or(0);
    const std::uint32_t mask = krsystem::ParseIPv4(row.mask).value_or(0);
    // A subnet of one or two addresses has none to broadcast to.
    const bool hasBroadcast = aSubnetBroadcast && address != 0 && mask != 0 && ~mask > 1 && !IsLoopback(address);
    broadcasts.insert(hasBroadcast ? (address | ~mask) : kLimitedBroadcast);
  }
  return {broadcasts.begin(), broadcasts.end()};
}

std::uint32_t GetMtu(const std::string& aAdapterName) {
  constexpr std::uint32_t kEthernetMtu = 1500;
  // By a call, as the files under /sys may be those of another network namespace.
  const FileDescriptor descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ifreq request{};
  aAdapterName.copy(request.ifr_name, sizeof(request.ifr_name) - 1);
  const bool isTold = descriptor.IsOpen() && ::ioctl(descriptor.Get(), SIOCGIFMTU, &request) == 0;
  return isTold && request.ifr_mtu > 0 ? static_cast<std::uint32_t>(request.ifr_mtu) : kEthernetMtu;
}

std::uint64_t GetLinkSpeed(const std::string& aAdapterName) {
  constexpr std::uint64_t kBitsPerMegabit = 1000000;
  const std::string text = ReadFile("/sys/class/net/" + aAdapterName + "/speed");
  std::int64_t megabits = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), megabits);
  // An adapter without a link says -1, some say the largest number.
  const bool isTold = error == std::errc() && megabits > 0 && megabits < std::numeric_limits<std::int32_t>::max();
  return isTold ? static_cast<std::uint64_t>(megabits) * kBitsPerMegabit : 0;
}

} // namespace krtransport
