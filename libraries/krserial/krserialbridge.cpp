#include "krserial/krserialbridge.h"

#include "bridge/bridgecounters.h"
#include "bridge/bridgelink.h"
#include "bridge/cameralinkend.h"
#include "bridge/clientend.h"
#include "bridge/ttyend.h"
#include "comname.h"
#include "guarded.h"
#include "krserial/krhostserialports.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

using krserial::BridgeCounters;
using krserial::BridgeLink;
using krserial::CameraLinkEnd;
using krserial::ClientEnd;
using krserial::IHostEnd;
using krserial::TtyEnd;

namespace {

constexpr std::uint32_t kFastestBaudRate = 4000000;
constexpr const char* kStarting = "Starting the serial bridge";

// A name that is no port's is found out before anything is opened.
KrResult OpenHostPort(KrString& aName, const KrSerialPortConfiguration& aConfiguration, bool aIsCreating,
                      std::unique_ptr<IHostEnd>& aEnd) {
  KrHostSerialPort port;
  const KrResult found = KrHostSerialPorts::Find(aName, port);
  if (found.IsOK()) {
    aName = port.name;
    return TtyEnd::Open(aName, aConfiguration, aEnd);
  }
  if (found != KrResult::Code::NotFound || !aIsCreating)
    return found;
  if (KrResult made = ClientEnd::Open(aName, aEnd); !made.IsOK())
    return made;
  if (const std::optional<std::uint32_t> number = krserial::ParseComName(aName.ToUtf8()))
    aName = krserial::MakeComName(*number);
  return aEnd->Configure(aConfiguration);
}

} // namespace

struct KrSerialBridge::Body {
  // What a bridge is known by while it is started.
  struct Identity {
    KrString serialPort = {};
    KrString name = {};
    KrSerialPortConfiguration configuration = {};
  };

  KrResult CheckStart(IKrDeviceAdapter* aAdapter) const;
  KrResult Run(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, std::unique_ptr<IHostEnd> aEnd,
               const Identity& aIdentity);

  BridgeCounters counters;
  std::atomic<std::uint32_t> hardCodedBaudRate = 0;
  std::atomic<bool> isCreatingPort = false;

  std::mutex operation; // Held by what starts, stops and sets, one of which runs at a time; they may wait.

  mutable std::mutex mutex; // Guards the members from here on, which are changed by who holds both. Held for moments.
  Identity identity;
  std::unique_ptr<BridgeLink> link;        // Null while stopped.
  std::stop_source stop{std::nostopstate}; // Of the link that runs or is started.
};

KrResult KrSerialBridge::Body::CheckStart(IKrDeviceAdapter* aAdapter) const {
  if (link)
    return {KrResult::Code::WrongState, std::string(kStarting) + ": it is started already; stop it first."};
  if (!aAdapter)
    return {KrResult::Code::InvalidInput, std::string(kStarting) + ": there is no device (null)."};
  return {};
}

KrResult KrSerialBridge::Body::Run(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, std::unique_ptr<IHostEnd> aEnd,
                                   const Identity& aIdentity) {
  auto starting = std::make_unique<BridgeLink>(aAdapter, aPort, counters);
  {
    const std::lock_guard lock(mutex);
    stop = starting->GetStop();
  }
  counters.Reset();
  starting->GetSpeed().SetHardCoded(hardCodedBaudRate);
  std::optional<std::uint32_t> baudRate;
  if (!aIdentity.serialPort.IsEmpty())
    baudRate = aIdentity.configuration.baudRate;
  if (KrResult running = starting->Run(std::move(aEnd), baudRate); !running.IsOK())
    return running;
  const std::lock_guard lock(mutex);
  identity = aIdentity;
  link = std::move(starting);
  return {};
}

KrSerialBridge::KrSerialBridge() : mBody(std::make_unique<Body>()) {}

KrSerialBridge::~KrSerialBridge() {
  Stop();
}

KrResult KrSerialBridge::Start(const KrString& aCOMPort, KrSerialPortConfiguration aConfiguration,
                               IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort) {
  const std::lock_guard operation(mBody->operation);
  if (KrResult check = mBody->CheckStart(aAdapter); !check.IsOK())
    return check;
  if (!aConfiguration.IsValid())
    return {KrResult::Code::InvalidInput, std::string(kStarting) + ": no serial port can be set so."};
  if (aPort == kNoDeviceSerial)
    return {KrResult::Code::NotSupported,
            std::string(kStarting) + ": a port of the host is linked with one of a device."};
  return krserial::Guard(kStarting, [&]() -> KrResult {
    KrString name = aCOMPort;
    std::unique_ptr<IHostEnd> end;
    if (KrResult opened = OpenHostPort(name, aConfiguration, mBody->isCreatingPort, end); !opened.IsOK())
      return opened;
    return mBody->Run(*aAdapter, aPort, std::move(end), {.serialPort = name, .configuration = aConfiguration});
  });
}

KrResult KrSerialBridge::Start(const KrString& aName, IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort) {
  const std::lock_guard operation(mBody->operation);
  if (KrResult check = mBody->CheckStart(aAdapter); !check.IsOK())
    return check;
  return krserial::Guard(kStarting, [&]() -> KrResult {
    std::unique_ptr<CameraLinkEnd> end;
    if (KrResult opened = CameraLinkEnd::Open(aName, aPort != kNoDeviceSerial, end); !opened.IsOK())
      return opened;
    const KrString name = end->GetName();
    return mBody->Run(*aAdapter, aPort, std::move(end), {.name = name});
  });
}

void KrSerialBridge::Stop() {
  std::stop_source stop(std::nostopstate);
  {
    const std::lock_guard lock(mBody->mutex);
    stop = mBody->stop;
  }
  stop.request_stop(); // A start or a configuration that runs does not go on to ask the device.
  const std::lock_guard operation(mBody->operation);
  std::unique_ptr<BridgeLink> ending;
  const std::lock_guard lock(mBody->mutex);
  ending = std::move(mBody->link);
  mBody->identity = {};
}

KrString KrSerialBridge::GetSerialPort() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->identity.serialPort;
}

KrSerialPortConfiguration KrSerialBridge::GetSerialPortConfiguration() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->identity.configuration;
}

KrResult KrSerialBridge::SetSerialPortConfiguration(const KrSerialPortConfiguration& aConfiguration) {
  constexpr const char* kAttempt = "Setting the bridge's serial port";
  if (!aConfiguration.IsValid())
    return {KrResult::Code::InvalidInput, std::string(kAttempt) + ": no serial port can be set so."};
  const std::lock_guard operation(mBody->operation);
  if (!mBody->link || mBody->identity.serialPort.IsEmpty())
    return {KrResult::Code::WrongState, std::string(kAttempt) + ": it is linked with none; start it first."};
  if (KrResult set = krserial::Guard(kAttempt, [&] { return mBody->link->Configure(aConfiguration); }); !set.IsOK())
    return set;
  const std::lock_guard lock(mBody->mutex);
  mBody->identity.configuration = aConfiguration;
  return {};
}

void KrSerialBridge::SetCreatingPort(bool aIsOn) {
  mBody->isCreatingPort = aIsOn;
}

KrString KrSerialBridge::GetName() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->identity.name;
}

std::uint32_t KrSerialBridge::GetBaudRate() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->link ? mBody->link->GetSpeed().Get() : mBody->hardCodedBaudRate.load();
}

std::size_t KrSerialBridge::GetSupportedBaudRateCount() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->link ? mBody->link->GetSpeed().GetSupported().size() : 0;
}

std::uint32_t KrSerialBridge::GetSupportedBaudRate(std::size_t aIndex) const {
  const std::lock_guard lock(mBody->mutex);
  if (!mBody->link)
    return 0;
  const std::vector<std::uint32_t>& supported = mBody->link->GetSpeed().GetSupported();
  return aIndex < supported.size() ? supported[aIndex] : 0;
}

std::uint32_t KrSerialBridge::GetHardCodedBaudRate() const {
  return mBody->hardCodedBaudRate;
}

KrResult KrSerialBridge::SetHardCodedBaudRate(std::uint32_t aBaudRate) {
  if (aBaudRate > kFastestBaudRate)
    return {KrResult::Code::OutOfRange, "A hard-coded speed of " + std::to_string(aBaudRate) + " baud: it can be " +
                                            std::to_string(kFastestBaudRate) + " at most."};
  const std::lock_guard lock(mBody->mutex);
  mBody->hardCodedBaudRate = aBaudRate;
  if (mBody->link)
    mBody->link->GetSpeed().SetHardCoded(aBaudRate);
  return {};
}

std::uint64_t KrSerialBridge::GetBytesSentToDevice() const {
  return mBody->counters.sentToDevice;
}

std::uint64_t KrSerialBridge::GetBytesReceivedFromDevice() const {
  return mBody->counters.receivedFromDevice;
}

void KrSerialBridge::ResetStatistics() {
  mBody->counters.Reset();
}

KrSerialBridgeState KrSerialBridge::GetState() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->link ? mBody->link->GetState() : KrSerialBridgeState::Stopped;
}

KrString KrSerialBridge::GetStateText() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->link ? mBody->link->GetStateText() : KrString();
}
