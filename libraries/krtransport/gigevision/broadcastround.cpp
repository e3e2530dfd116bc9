#include "gigevision/broadcastround.h"

#include "gigevision/gvcpclient.h"
#include "gigevision/gvcppacket.h"
#include "gigevision/gvcpsocket.h"
#include "gigevision/networkadapters.h"
#include "krbase/krlogger.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <utility>

namespace krtransport {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kMaxResendDelay{250};

struct OpenAdapter {
  std::size_t index;
  GvcpSocket socket;
  bool isPassedOver = false; ///< Nothing could be sent.
};

// What was said last of the adapters that are passed over.
class PassedOverAdapters {
public:
  /// Whether this is something else than was said last of the adapter.
  bool IsNews(const KrString& aAdapter, const KrString& aReason) {
    constexpr std::size_t kMostAdapters = 1024;
    const std::lock_guard lock(mMutex);
    // Names may come and go without end; those of so many cannot all be of today.
    if (mReasons.size() > kMostAdapters)
      mReasons.clear();
    KrString& said = mReasons[aAdapter];
    return std::exchange(said, aReason) != aReason;
  }
  /// The adapter is not passed over any more.
  void Forget(const KrString& aAdapter) {
    const std::lock_guard lock(mMutex);
    mReasons.erase(aAdapter);
  }

private:
  std::mutex mMutex;                     // Guards the reasons.
  std::map<KrString, KrString> mReasons; // By the adapters' names.
};

PassedOverAdapters& GetPassedOver() {
  // Never destroyed: a round may go on while static objects go.
  static PassedOverAdapters* const adapters = new PassedOverAdapters;
  return *adapters;
}

// A host has adapters on which nothing can be sent (no cable, no address): worth a note when it begins, no reason to
// stop.
void LogPassedOver(const krsystem::NetworkAdapterFields& aAdapter, const KrResult& aResult) {
  if (!GetPassedOver().IsNews(aAdapter.name, aResult.GetDescription()))
    return;
  KrLogger("GigEVision")
      .Log(KrLogLevel::Info, {"RunBroadcastRound", "broadcastround"},
           "The network adapter " + aAdapter.name + " is passed over. " + aResult.GetDescription());
}

// All sockets hear on one port if they can: with two adapters on one network, the answer to what went out on one may
// come in on the other.
std::vector<OpenAdapter> OpenAll(const std::vector<krsystem::NetworkAdapterFields>& aAdapters) {
  std::vector<OpenAdapter> opened;
  for (std::size_t i = 0; i < aAdapters.size(); ++i) {
    const std::uint16_t port = opened.empty() ? std::uint16_t{0} : opened.front().socket.GetLocalPort();
    GvcpSocket socket;
    if (KrResult result = GvcpSocket::OpenOnAdapter(aAdapters[i].name.ToUtf8(), port, socket); result.IsOK())
      opened.push_back({i, std::move(socket)});
    else
      LogPassedOver(aAdapters[i], result);
  }
  return opened;
}

// An adapter on which nothing can be sent now stays open: it may be ready for the second command, and hears what
// comes.
void SendOnAll(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::vector<OpenAdapter>& aOpened,
               const BroadcastRound& aRound) {
  for (OpenAdapter& open : aOpened) {
    const auto& adapter = aAdapters[open.index];
    const auto addresses = aRound.target ? std::vector<std::uint32_t>{*aRound.target}
                                         : GetBroadcastAddresses(adapter, aRound.subnetBroadcast);
    for (const std::uint32_t address : addresses) {
      const KrResult result = open.socket.Send(aRound.command, address);
      if (!result.IsOK() && !std::exchange(open.isPassedOver, true))
        LogPassedOver(adapter, result);
    }
    if (!open.isPassedOver)
      GetPassedOver().Forget(adapter.name);
  }
}

void LogRefused(const krsystem::NetworkAdapterFields& aAdapter, const KrResult& aReason) {
  KrLogger("GigEVision")
      .Log(KrLogLevel::Debug, {"RunBroadcastRound", "broadcastround"},
           "On the network adapter " + aAdapter.name + ": " + aReason.GetDescription());
}

// Hands over all that has come; false when the taker has enough.
bool TakeAll(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, const std::vector<OpenAdapter>& aOpened,
             std::optional<std::uint32_t> aTarget, const TakeDatagram& aTake) {
  std::array<std::uint8_t, kMaxGvcpDatagram> buffer;
  for (const OpenAdapter& open : aOpened) {
    // A flood on one adapter must not keep the others from being heard.
    for (int taken = 0; taken < 64; ++taken) {
      const auto received = open.socket.Receive(buffer);
      if (!received)
        break;
      if (aTarget && received->sender != *aTarget)
        continue;
      if (const KrResult size = CheckGvcpSize(received->size); !size.IsOK())
        LogRefused(aAdapters[open.index], size);
      else if (!aTake(open.index, std::span(buffer).first(received->size)))
        return false;
    }
  }
  return true;
}

} // namespace

KrResult RunBroadcastRound(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, const BroadcastRound& aRound,
                           const TakeDatagram& aTake) {
  WakeEvent wake;
  const std::stop_callback wakeOnCancel(aRound.cancel, [&wake] { wake.Signal(); });
  const auto start = steady_clock::now();
  const auto end = start + aRound.timeout;
  const auto resend = start + std::min(aRound.timeout / 2, kMaxResendDelay);
  std::vector<OpenAdapter> opened = OpenAll(aAdapters);
  SendOnAll(aAdapters, opened, aRound);
  bool isResent = !aRound.isSentTwice;
  while (steady_clock::now() < end) {
    if (aRound.cancel.stop_requested())
      return {KrResult::Code::Aborted, "Looking for devices was cancelled."};
    if (!isResent && steady_clock::now() >= resend) {
      SendOnAll(aAdapters, opened, aRound);
      isResent = true;
    }
    std::vector<int> descriptors = {wake.GetDescriptor()};
    for (const OpenAdapter& open : opened)
      descriptors.push_back(open.socket.GetDescriptor());
    if (WaitReadable(descriptors, isResent ? end : resend) && !TakeAll(aAdapters, opened, aRound.target, aTake))
      break;
  }
  return {};
}

} // namespace krtransport
