#include "krserial/krdeviceserialspeed.h"

#include "guarded.h"
#include "krdevice/ikrdeviceadapter.h"
#include "krserial/krbulkselectorturn.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <string>

namespace {

/// The parameters that every device with the port is taken to have.
struct PortParameters {
  KrDeviceSerial port;
  const char* loopback;
  const char* baudRate;
};

constexpr std::array kPortParameters = {
    PortParameters{KrDeviceSerial::Serial0, "Uart0Loopback", "Uart0BaudRate"},
    PortParameters{KrDeviceSerial::Serial1, "Uart1Loopback", "Uart1BaudRate"},
};

/// Those of the bulk ports, which not every device has; the first that it has counts.
constexpr std::initializer_list<const char*> kBulkLoopbacks = {"BulkLoopback"};
constexpr const char* kClockDivider = "BulkSystemClockDivider";
constexpr std::initializer_list<const char*> kBulkBaudRates = {"BulkBaudRate", kClockDivider};
/// A smaller number in an entry's name is a unit or a place in a list.
constexpr std::uint32_t kLowestRate = 50;

KrString FindFirst(std::initializer_list<const char*> aNames, const KrHasParameter& aHasParameter) {
  const auto* const found = std::find_if(aNames.begin(), aNames.end(), aHasParameter);
  return found != aNames.end() ? KrString(*found) : KrString();
}

KrString FindParameter(KrDeviceSerial aPort, const char* PortParameters::*aName,
                       std::initializer_list<const char*> aBulkNames, const KrHasParameter& aHasParameter) {
  if (IsBulkPort(aPort))
    return FindFirst(aBulkNames, aHasParameter);
  const auto* const row = std::find_if(kPortParameters.begin(), kPortParameters.end(),
                                       [aPort](const PortParameters& aRow) { return aRow.port == aPort; });
  return row != kPortParameters.end() ? KrString(row->*aName) : KrString();
}

KrResult RefuseMissing(KrDeviceSerial aPort) {
  return {KrResult::Code::NotFound,
          "The device has no parameter for the speed of its port " + GetPortName(aPort) + "."};
}

/// The rate that an entry's name tells by the one number in it; 0 for a name that tells none.
std::uint32_t FindRate(const std::string& aEntry) {
  constexpr const char* kDigits = "0123456789";
  const std::size_t first = aEntry.find_first_of(kDigits);
  if (first == std::string::npos)
    return 0;
  const std::size_t end = std::min(aEntry.find_first_not_of(kDigits, first), aEntry.size());
  if (aEntry.find_first_of(kDigits, end) != std::string::npos)
    return 0;
  std::uint32_t rate = 0;
  const auto parsed = std::from_chars(aEntry.data() + first, aEntry.data() + end, rate);
  return parsed.ec == std::errc() && rate >= kLowestRate ? rate : 0;
}

KrResult RefuseStopped(KrDeviceSerial aPort) {
  return {KrResult::Code::Aborted, "The question for the speed of the port " + GetPortName(aPort) + " was stopped."};
}

/// The bulk port's turn at the device's selector: set to the port, and put back in the end.
class SelectedPort {
public:
  SelectedPort(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, const std::stop_token& aStop)
      : mAdapter(aAdapter), mTurn(aAdapter, aPort, aStop) {
    if (aStop.stop_requested()) {
      mResult = RefuseStopped(aPort);
      return;
    }
    if (!IsBulkPort(aPort) || !mAdapter.IsParameterAvailable(kBulkSelector))
      return;
    const KrString name = GetPortName(aPort);
    mResult = mAdapter.GetEnumValue(kBulkSelector, mBefore);
    if (mResult.IsOK() && aStop.stop_requested())
      mResult = RefuseStopped(aPort);
    if (!mResult.IsOK() || mBefore == name)
      return;
    mResult = mAdapter.SetEnumValue(kBulkSelector, name);
    mIsMoved = mResult.IsOK();
  }
  ~SelectedPort() {
    // Where it cannot be put back the device has been lost, or does not let anybody any more.
    if (mIsMoved)
      (void)krserial::Guard("Putting the selector back",
                            [this] { return mAdapter.SetEnumValue(kBulkSelector, mBefore); });
  }
  SelectedPort(const SelectedPort&) = delete;
  SelectedPort& operator=(const SelectedPort&) = delete;

  /// Not OK where the selector could not be set: what would be read then is another port's.
  const KrResult& GetResult() const { return mResult; }

private:
  IKrDeviceAdapter& mAdapter;
  const KrBulkSelectorTurn mTurn;
  KrString mBefore;
  KrResult mResult;
  bool mIsMoved = false;
};

/// Does something with the parameter of a port's speed, the port being selected.
template <typename Operation>
KrResult WithParameter(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, const std::stop_token& aStop,
                       Operation&& aOperation) {
  return krserial::Guard("Asking for the speed of a port", [&]() -> KrResult {
    if (aStop.stop_requested())
      return RefuseStopped(aPort);
    const KrHasParameter hasParameter = [&](const KrString& aName) { return aAdapter.HasParameter(aName); };
    const KrString name = FindBaudRateParameter(aPort, hasParameter);
    if (name.IsEmpty() || !hasParameter(name))
      return RefuseMissing(aPort);
    if (name == kClockDivider)
      return {KrResult::Code::NotSupported, name + " divides the device's clock, and tells no rate."};
    const SelectedPort selected(aAdapter, aPort, aStop);
    if (!selected.GetResult().IsOK())
      return selected.GetResult();
    return aStop.stop_requested() ? RefuseStopped(aPort) : aOperation(name);
  });
}

} // namespace

KrString FindLoopbackParameter(KrDeviceSerial aPort, const KrHasParameter& aHasParameter) {
  return FindParameter(aPort, &PortParameters::loopback, kBulkLoopbacks, aHasParameter);
}

KrString FindBaudRateParameter(KrDeviceSerial aPort, const KrHasParameter& aHasParameter) {
  return FindParameter(aPort, &PortParameters::baudRate, kBulkBaudRates, aHasParameter);
}

KrDeviceSerialSpeed::KrDeviceSerialSpeed(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort)
    : mAdapter(aAdapter), mPort(aPort) {}

KrResult KrDeviceSerialSpeed::GetSupported(std::vector<std::uint32_t>& aBaudRates, const std::stop_token& aStop) const {
  KrStringList entries;
  const KrResult asked = WithParameter(mAdapter, mPort, aStop,
                                       [&](const KrString& aName) { return mAdapter.GetEnumEntries(aName, entries); });
  // A port without a speed can be set to none, which is an answer.
  if (!asked.IsOK() && asked != KrResult::Code::NotFound && asked != KrResult::Code::NotSupported)
    return asked;
  aBaudRates.clear();
  for (std::size_t index = 0; index < entries.GetCount(); ++index) {
    if (const std::uint32_t rate = FindRate(entries[index].ToUtf8()); rate > 0)
      aBaudRates.push_back(rate);
  }
  return {};
}

KrResult KrDeviceSerialSpeed::Get(std::uint32_t& aBaudRate, const std::stop_token& aStop) const {
  return WithParameter(mAdapter, mPort, aStop, [&](const KrString& aName) -> KrResult {
    KrString entry;
    if (KrResult read = mAdapter.GetEnumValue(aName, entry); !read.IsOK())
      return read;
    const std::uint32_t rate = FindRate(entry.ToUtf8());
    if (rate == 0)
      return {KrResult::Code::NotSupported, aName + " is set to " + entry + ", which tells no rate."};
    aBaudRate = rate;
    return {};
  });
}

KrResult KrDeviceSerialSpeed::Set(std::uint32_t aBaudRate, const std::stop_token& aStop) const {
  return WithParameter(mAdapter, mPort, aStop, [&](const KrString& aName) -> KrResult {
    KrStringList entries;
    if (KrResult asked = mAdapter.GetEnumEntries(aName, entries); !asked.IsOK())
      return asked;
    if (aStop.stop_requested())
      return RefuseStopped(mPort);
    for (std::size_t index = 0; index < entries.GetCount(); ++index) {
      // A rate of 0 is that of all entries without one.
      if (aBaudRate > 0 && FindRate(entries[index].ToUtf8()) == aBaudRate)
        return mAdapter.SetEnumValue(aName, entries[index]);
    }
    return {KrResult::Code::NotSupported,
            "The device's port " + GetPortName(mPort) + " has no speed of " + std::to_string(aBaudRate) + " baud."};
  });
}
