#include "gigevision/kerneltables.h"

#include "gigevision/netlinkdump.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <linux/rtnetlink.h>
#include <netlink/addr.h>
#include <netlink/route/addr.h>
#include <netlink/route/link.h>
#include <netlink/route/neighbour.h>
#include <netlink/route/nexthop.h>
#include <netlink/route/route.h>
#include <sys/socket.h>

namespace krtransport {
namespace {

// The library's objects are all structures that begin as nl_object does.
template <typename Object>
Object* As(nl_object& aEntry) {
  return reinterpret_cast<Object*>(&aEntry);
}

// 0 for null and for what is no IPv4 address.
std::uint32_t ReadIPv4(const nl_addr* aAddress) {
  std::uint32_t bytes = 0;
  if (aAddress == nullptr || nl_addr_get_family(aAddress) != AF_INET || nl_addr_get_len(aAddress) != sizeof(bytes))
    return 0;
  std::memcpy(&bytes, nl_addr_get_binary_addr(aAddress), sizeof(bytes));
  return ntohl(bytes);
}

KernelLink ReadLink(rtnl_link* aLink) {
  KernelLink link;
  link.index = rtnl_link_get_ifindex(aLink);
  link.flags = rtnl_link_get_flags(aLink);
  link.hardwareType = rtnl_link_get_arptype(aLink);
  if (const char* name = rtnl_link_get_name(aLink))
    link.name = name;
  if (const char* kind = rtnl_link_get_type(aLink))
    link.kind = kind;
  link.master = rtnl_link_get_master(aLink);
  // A virtual cable names its other end; a link in another namespace is none of the links here.
  int otherNamespace = 0;
  if (link.kind != "veth" && rtnl_link_get_link_netnsid(aLink, &otherNamespace) != 0)
    link.lower = rtnl_link_get_link(aLink);
  if (const nl_addr* mac = rtnl_link_get_addr(aLink); mac != nullptr && nl_addr_get_len(mac) == link.mac.size())
    std::memcpy(link.mac.data(), nl_addr_get_binary_addr(mac), link.mac.size());
  return link;
}

KernelAddress ReadAddress(rtnl_addr* aAddress) {
  return {.linkIndex = rtnl_addr_get_ifindex(aAddress),
          .address = ReadIPv4(rtnl_addr_get_local(aAddress)),
          .prefixLength = static_cast<std::uint32_t>(std::clamp(rtnl_addr_get_prefixlen(aAddress), 0, 32)),
          .peer = ReadIPv4(rtnl_addr_get_peer(aAddress))};
}

bool IsMainDefault(rtnl_route* aRoute) {
  const nl_addr* destination = rtnl_route_get_dst(aRoute);
  return rtnl_route_get_family(aRoute) == AF_INET && rtnl_route_get_table(aRoute) == RT_TABLE_MAIN &&
         rtnl_route_get_type(aRoute) == RTN_UNICAST && destination != nullptr &&
         nl_addr_get_prefixlen(destination) == 0;
}

void TakeRoute(rtnl_route* aRoute, std::vector<KernelRoute>& aRoutes) {
  if (!IsMainDefault(aRoute))
    return;
  for (int i = 0; i < rtnl_route_get_nnexthops(aRoute); ++i) {
    rtnl_nexthop* const hop = rtnl_route_nexthop_n(aRoute, i);
    aRoutes.push_back(
        {rtnl_route_nh_get_ifindex(hop), ReadIPv4(rtnl_route_nh_get_gateway(hop)), rtnl_route_get_priority(aRoute)});
  }
}

KernelNeighbour ReadNeighbour(rtnl_neigh* aNeighbour) {
  const nl_addr* linkAddress = rtnl_neigh_get_lladdr(aNeighbour);
  return {.linkIndex = rtnl_neigh_get_ifindex(aNeighbour),
          .address = ReadIPv4(rtnl_neigh_get_dst(aNeighbour)),
          .state = static_cast<std::uint32_t>(std::max(rtnl_neigh_get_state(aNeighbour), 0)),
          .hasLinkAddress = linkAddress != nullptr && nl_addr_get_len(linkAddress) > 0};
}

} // namespace

KrResult ReadKernelTables(KernelTables& aTables) {
  NetlinkDump dump;
  KernelTables tables;
  KrResult result = dump.Read(
      RTM_GETLINK, AF_UNSPEC, [&] { tables.links.clear(); },
      [&](nl_object& aEntry) { tables.links.push_back(ReadLink(As<rtnl_link>(aEntry))); });
  if (result.IsOK())
    result = dump.Read(
        RTM_GETADDR, AF_INET, [&] { tables.addresses.clear(); },
        [&](nl_object& aEntry) { tables.addresses.push_back(ReadAddress(As<rtnl_addr>(aEntry))); });
  if (result.IsOK())
    result = dump.Read(
        RTM_GETROUTE, AF_INET, [&] { tables.defaultRoutes.clear(); },
        [&](nl_object& aEntry) { TakeRoute(As<rtnl_route>(aEntry), tables.defaultRoutes); });
  if (!result.IsOK())
    return result;
  std::ranges::stable_sort(tables.links, {}, &KernelLink::index);
  aTables = std::move(tables);
  return {};
}

KrResult ReadNeighbours(std::vector<KernelNeighbour>& aNeighbours) {
  NetlinkDump dump;
  return dump.Read(
      RTM_GETNEIGH, AF_INET, [&] { aNeighbours.clear(); },
      [&](nl_object& aEntry) { aNeighbours.push_back(ReadNeighbour(As<rtnl_neigh>(aEntry))); });
}

} // namespace krtransport
