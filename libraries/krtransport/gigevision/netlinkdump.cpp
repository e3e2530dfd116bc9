#include "gigevision/netlinkdump.h"

#include "krbase/krlogger.h"

#include <exception>
#include <linux/netlink.h>
#include <mutex>
#include <netlink/errno.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/route/rtnl.h>
#include <netlink/socket.h>
#include <set>
#include <string>
#include <utility>

namespace krtransport {
namespace {

// What one reading of a table hands its entries to.
struct Taker {
  const TakeNetlinkEntry* take;
  std::exception_ptr failure;
};

// No exception may pass through the library's C: the first is kept for afterwards.
void TakeEntry(nl_object* aEntry, void* aTaker) {
  auto& taker = *static_cast<Taker*>(aTaker);
  if (taker.failure)
    return;
  try {
    (*taker.take)(*aEntry);
  } catch (...) {
    taker.failure = std::current_exception();
  }
}

// Tables are read every second: what has been said of a kind of entry is not said again.
void LogUnreadable(int aType, int aError) {
  static std::mutex mutex; // Guards the set.
  // Never destroyed: threads may still read tables while the process ends.
  static std::set<std::pair<int, int>>& said = *new std::set<std::pair<int, int>>;
  {
    const std::lock_guard lock(mutex);
    if (!said.emplace(aType, aError).second)
      return;
  }
  KrLogger("GigEVision")
      .Log(KrLogLevel::Warning, {"NetlinkDump::Read", "netlinkdump"},
           "An entry of the system's network configuration (type " + std::to_string(aType) +
               ") cannot be read and is left out: " + nl_geterror(aError) + ".");
}

int TakeMessage(nl_msg* aMessage, void* aTaker) {
  // An entry that the library cannot read is left out; the others are as good without it.
  if (const int error = nl_msg_parse(aMessage, &TakeEntry, aTaker); error < 0)
    LogUnreadable(nlmsg_hdr(aMessage)->nlmsg_type, error);
  return NL_OK;
}

} // namespace

NetlinkDump::NetlinkDump() : mSocket(nl_socket_alloc(), &nl_socket_free) {
  if (mSocket == nullptr) {
    mOpenError = -NLE_NOMEM;
    return;
  }
  // An entry may be larger than any size that could be set here.
  nl_socket_enable_msg_peek(mSocket.get());
  mOpenError = nl_connect(mSocket.get(), NETLINK_ROUTE);
}

NetlinkDump::~NetlinkDump() = default;

KrResult NetlinkDump::Read(int aRequest, int aFamily, const std::function<void()>& aBegin,
                           const TakeNetlinkEntry& aTake) {
  // A table in which entries may be missing is worth nothing: what it does not name would count as gone.
  constexpr int kMaxReadings = 50;
  int error = mOpenError;
  bool isWhole = error != 0;
  for (int reading = 0; !isWhole && reading < kMaxReadings; ++reading) {
    aBegin();
    error = ReadOnce(aRequest, aFamily, aTake);
    isWhole = error != -NLE_DUMP_INTR;
  }
  if (error < 0)
    return {KrResult::Code::SystemError,
            std::string("Reading the system's network configuration failed: ") + nl_geterror(error) + "."};
  return {};
}

int NetlinkDump::ReadOnce(int aRequest, int aFamily, const TakeNetlinkEntry& aTake) {
  Taker taker{&aTake, nullptr};
  nl_socket_modify_cb(mSocket.get(), NL_CB_VALID, NL_CB_CUSTOM, &TakeMessage, &taker);
  int error = nl_rtgen_request(mSocket.get(), aRequest, aFamily, NLM_F_DUMP);
  if (error >= 0)
    error = nl_recvmsgs_default(mSocket.get());
  if (taker.failure)
    std::rethrow_exception(taker.failure);
  return error < 0 ? error : 0;
}

} // namespace krtransport
