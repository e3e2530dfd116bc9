#pragma once
// One table of the kernel's network configuration, asked for by netlink: the kernel answers for the network namespace
// of who asks, which the files under /sys do not. What the entries mean is left to those who read them.

#include "krbase/krresult.h"

#include <functional>
#include <memory>

struct nl_object;
struct nl_sock;

namespace krtransport {

/// Takes one entry, in the kernel's order; it is borrowed for the call.
using TakeNetlinkEntry = std::function<void(nl_object& aEntry)>;

/// A connection to the kernel's tables.
///
/// Thread: one at a time. Ownership: holds a socket.
class NetlinkDump {
public:
  NetlinkDump();
  ~NetlinkDump();
  NetlinkDump(const NetlinkDump&) = delete;
  NetlinkDump& operator=(const NetlinkDump&) = delete;

  /// Reads a table (RTM_GETLINK, RTM_GETADDR, RTM_GETROUTE, RTM_GETNEIGH) of an address family. A table that changes
  /// meanwhile is read again, some dozens of times; each reading is begun by aBegin, which drops what was taken before.
  /// SystemError when the kernel refuses, or never gives it whole. What the callers throw is thrown on.
  KrResult Read(int aRequest, int aFamily, const std::function<void()>& aBegin, const TakeNetlinkEntry& aTake);

private:
  int ReadOnce(int aRequest, int aFamily, const TakeNetlinkEntry& aTake);

  std::unique_ptr<nl_sock, void (*)(nl_sock*)> mSocket;
  int mOpenError = 0;
};

} // namespace krtransport
