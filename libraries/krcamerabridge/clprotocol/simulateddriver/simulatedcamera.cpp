#include "clprotocol/simulateddriver/simulatedcamera.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace krsimulatedcl {

namespace {

constexpr std::uint32_t kMostPiece = 256;
constexpr std::size_t kDescriptionBytes = 7; // Of one in the list.
constexpr CLUINT32 kRates[] = {9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};

CLUINT32 GetBit(CLUINT32 aRate) {
  const auto* const rate = std::ranges::find(kRates, aRate);
  return rate == std::end(kRates) ? 0 : 1U << (rate - kRates);
}

CLUINT32 GetRate(CLUINT32 aBit) {
  for (CLUINT32 i = 0; i < std::size(kRates); ++i) {
    if (aBit == 1U << i)
      return kRates[i];
  }
  return 0;
}

// A name as identifiers may have them.
std::string MakeName(std::string aText) {
  const auto isFit = [](char aByte) {
    return (aByte >= 'a' && aByte <= 'z') || (aByte >= 'A' && aByte <= 'Z') || (aByte >= '0' && aByte <= '9');
  };
  std::ranges::replace_if(
      aText, [&](char aByte) { return !isFit(aByte); }, '_');
  return aText.empty() || (aText[0] >= '0' && aText[0] <= '9') ? '_' + aText : aText;
}

// The next text of an answer, up to its zero.
std::string TakeText(std::string& aBytes) {
  const std::size_t end = std::min(aBytes.find('\0'), aBytes.size());
  const std::string text = aBytes.substr(0, end);
  aBytes.erase(0, end + 1);
  return text;
}

} // namespace

CLINT32 SimulatedCamera::Find(CLUINT32 aTimeoutMs, const std::atomic<bool>& aIsToStop) {
  constexpr CLUINT32 kMostWaitMs = 200; // At a rate that may be the wrong one.
  ISerial& serial = mTalk.GetSerial();
  if (Identify(2) >= 0)
    return CL_ERR_NO_ERR;
  CLUINT32 supported = 0;
  if (serial.clGetSupportedBaudRates(&supported) < 0)
    return CL_ERR_NO_DEVICE_FOUND;
  mTalk.Use(serial, std::min(aTimeoutMs, kMostWaitMs));
  for (const CLUINT32 rate : kRates) {
    if (aIsToStop)
      break;
    if ((GetBit(rate) & supported) != 0 && serial.clSetBaudRate(GetBit(rate)) >= 0 && Identify(1) >= 0)
      return SetRate(GetBit(kRates[0]));
  }
  // What the line had at the beginning of a probe.
  static_cast<void>(serial.clSetBaudRate(GetBit(kRates[0])));
  return CL_ERR_NO_DEVICE_FOUND;
}

CLINT32 SimulatedCamera::Identify(int aTries) {
  if (const CLINT32 code = mTalk.Ask('I', "", aTries); code < 0)
    return code;
  std::string texts = mTalk.GetData();
  // Maker and family are any texts of the lab: for the driver all of its cameras are of one family.
  static_cast<void>(TakeText(texts));
  static_cast<void>(TakeText(texts));
  mModel = std::string(kTemplate) + '#' + MakeName(TakeText(texts));
  const std::string version = MakeName(TakeText(texts));
  mID = mModel + '#' + version + '#' + MakeName(TakeText(texts));
  return CL_ERR_NO_ERR;
}

CLINT32 SimulatedCamera::GetXMLIDs(std::string& aXMLIDs) {
  if (const CLINT32 code = mTalk.Ask('L', ""); code < 0)
    return code;
  const std::string& list = mTalk.GetData();
  aXMLIDs.clear();
  for (std::size_t at = 1; at + kDescriptionBytes <= list.size(); at += kDescriptionBytes)
    aXMLIDs += (aXMLIDs.empty() ? "" : "\t") + ("SchemaVersion.1.1@" + mModel) + "@XMLVersion." +
               std::to_string(GetNumber(list, at + 1, 1)) + '.' + std::to_string(GetNumber(list, at + 2, 1)) + ".0";
  return CL_ERR_NO_ERR;
}

CLINT32 SimulatedCamera::FindDescription(const std::string& aXMLID, std::uint32_t& aIndex, std::uint32_t& aSize) {
  std::string ids;
  if (const CLINT32 code = GetXMLIDs(ids); code < 0)
    return code;
  const std::string& list = mTalk.GetData();
  std::size_t begin = 0;
  for (aIndex = 0; begin <= ids.size(); ++aIndex) {
    const std::size_t end = std::min(ids.find('\t', begin), ids.size());
    if (!ids.empty() && ids.substr(begin, end - begin) == aXMLID) {
      aSize = GetNumber(list, 1 + aIndex * kDescriptionBytes + 3, 4);
      return CL_ERR_NO_ERR;
    }
    begin = end + 1;
  }
  return CL_ERR_NO_XMLDESCRIPTION_FOUND;
}

CLINT32 SimulatedCamera::ReadDescription(std::uint32_t aIndex, std::uint32_t aSize, char* aBytes) {
  for (std::uint32_t at = 0; at < aSize;) {
    const std::uint32_t size = std::min(kMostPiece, aSize - at);
    if (const CLINT32 code = mTalk.Ask('D', MakeNumber(aIndex, 1) + MakeNumber(at, 4) + MakeNumber(size, 2)); code < 0)
      return code;
    if (mTalk.GetData().size() != size)
      return CL_ERR_NO_XMLDESCRIPTION_FOUND;
    at += static_cast<std::uint32_t>(mTalk.GetData().copy(aBytes + at, size));
  }
  return CL_ERR_NO_ERR;
}

CLINT32 SimulatedCamera::Read(std::uint32_t aAddress, char* aBytes, std::uint32_t aSize) {
  for (std::uint32_t at = 0; at < aSize;) {
    const std::uint32_t size = std::min(kMostPiece, aSize - at);
    if (const CLINT32 code = mTalk.Ask('R', MakeNumber(aAddress + at, 4) + MakeNumber(size, 2)); code < 0)
      return code;
    if (mTalk.GetData().size() != size)
      return CL_ERR_TIMEOUT;
    at += static_cast<std::uint32_t>(mTalk.GetData().copy(aBytes + at, size));
  }
  return CL_ERR_NO_ERR;
}

CLINT32 SimulatedCamera::Write(std::uint32_t aAddress, const std::string& aBytes) {
  constexpr std::chrono::milliseconds kMargin{2000};
  if (aBytes.size() > kMostPiece)
    return CL_ERR_PARAM_DATA_SIZE;
  const CLINT32 code = mTalk.Ask('W', MakeNumber(aAddress, 4) + aBytes);
  // The camera says how many milliseconds it takes.
  if (code == CL_ERR_PENDING_WRITE && mTalk.GetData().size() == 2)
    mPendingUntil =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(GetNumber(mTalk.GetData(), 0, 2)) + kMargin;
  return code;
}

CLINT32 SimulatedCamera::ContinueWrite() {
  const CLINT32 code = mTalk.AwaitEnd('W');
  const bool isToCome = code == CL_ERR_TIMEOUT && std::chrono::steady_clock::now() < mPendingUntil;
  return isToCome ? CL_ERR_PENDING_WRITE : code;
}

CLINT32 SimulatedCamera::GetRates(CLUINT32& aCurrent, CLUINT32& aSupported) {
  if (const CLINT32 code = mTalk.Ask('B', ""); code < 0)
    return code;
  const std::string& rates = mTalk.GetData();
  aCurrent = rates.size() < 4 ? 0 : GetBit(GetNumber(rates, 0, 4));
  aSupported = 0;
  for (std::size_t at = 4; at + 4 <= rates.size(); at += 4)
    aSupported |= GetBit(GetNumber(rates, at, 4));
  return CL_ERR_NO_ERR;
}

// The camera says yes at the former rate, and then has the new one.
CLINT32 SimulatedCamera::SetRate(CLUINT32 aRate) {
  ISerial& serial = mTalk.GetSerial();
  CLUINT32 supported = 0;
  if (const CLINT32 code = serial.clGetSupportedBaudRates(&supported); code < 0)
    return code;
  if (GetRate(aRate) == 0 || (supported & aRate) == 0)
    return CL_ERR_BAUD_RATE_NOT_SUPPORTED;
  if (const CLINT32 code = mTalk.Ask('B', MakeNumber(GetRate(aRate), 4), 1); code < 0)
    return code;
  if (const CLINT32 code = serial.clSetBaudRate(aRate); code < 0)
    return code;
  return Identify(3);
}

} // namespace krsimulatedcl
