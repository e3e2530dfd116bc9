#include "gigevision/routequery.h"

#include <arpa/inet.h>
#include <array>
#include <linux/rtnetlink.h>
#include <memory>
#include <net/if.h>
#include <netlink/attr.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

namespace krtransport {
namespace {

constexpr std::uint8_t kWholeAddress = 32;

using SocketPointer = std::unique_ptr<nl_sock, void (*)(nl_sock*)>;
using MessagePointer = std::unique_ptr<nl_msg, void (*)(nl_msg*)>;

// Null where there is no memory for it.
MessagePointer MakeQuestion(std::uint32_t aLocalAddress, std::uint32_t aAddress) {
  MessagePointer message(nlmsg_alloc_simple(RTM_GETROUTE, NLM_F_REQUEST), &nlmsg_free);
  rtmsg route{};
  route.rtm_family = AF_INET;
  route.rtm_dst_len = kWholeAddress;
  route.rtm_src_len = kWholeAddress;
  if (message == nullptr || nlmsg_append(message.get(), &route, sizeof(route), NLMSG_ALIGNTO) < 0 ||
      nla_put_u32(message.get(), RTA_DST, htonl(aAddress)) < 0 ||
      nla_put_u32(message.get(), RTA_SRC, htonl(aLocalAddress)) < 0)
    message.reset();
  return message;
}

int TakeRoute(nl_msg* aMessage, void* aIndex) {
  const nlmsghdr* const header = nlmsg_hdr(aMessage);
  if (header->nlmsg_type != RTM_NEWROUTE)
    return NL_OK;
  const nlattr* const adapter = nlmsg_find_attr(const_cast<nlmsghdr*>(header), sizeof(rtmsg), RTA_OIF);
  if (adapter != nullptr && nla_len(adapter) == int{sizeof(std::uint32_t)})
    *static_cast<unsigned*>(aIndex) = nla_get_u32(adapter);
  return NL_OK;
}

} // namespace

std::string FindRouteAdapter(std::uint32_t aLocalAddress, std::uint32_t aAddress) {
  const SocketPointer socket(nl_socket_alloc(), &nl_socket_free);
  const MessagePointer question = MakeQuestion(aLocalAddress, aAddress);
  if (socket == nullptr || question == nullptr || nl_connect(socket.get(), NETLINK_ROUTE) < 0)
    return {};
  // The kernel's only answer is the route, or that there is none.
  nl_socket_disable_auto_ack(socket.get());
  unsigned index = 0;
  nl_socket_modify_cb(socket.get(), NL_CB_VALID, NL_CB_CUSTOM, &TakeRoute, &index);
  if (nl_send_auto(socket.get(), question.get()) < 0 || nl_recvmsgs_default(socket.get()) < 0)
    return {};
  std::array<char, IF_NAMESIZE> name{};
  return index != 0 && ::if_indextoname(index, name.data()) != nullptr ? std::string(name.data()) : std::string();
}

} // namespace krtransport
