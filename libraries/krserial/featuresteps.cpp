#include "featuresteps.h"

#include "ifeatureline.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

namespace krserial {

namespace {

constexpr std::chrono::milliseconds kCommandLimit(1000);
constexpr std::chrono::milliseconds kCommandPace(1);

KrResult RefuseValue(KrGenParameter& aParameter, std::int64_t aValue, std::int64_t aMost) {
  return {KrResult::Code::ProtocolError, "The device says " + std::to_string(aValue) + " of " + aParameter.GetName() +
                                             "; it has to be from 0 to " + std::to_string(aMost) + "."};
}

// The length of a register, which the device may change.
KrResult FindLength(KrGenRegister& aRegister, std::size_t& aLength) {
  std::int64_t length = 0;
  if (KrResult asked = aRegister.GetLength(length); !asked.IsOK())
    return asked;
  if (length < 1 || length > kMostTransferBytes)
    return {KrResult::Code::ProtocolError, "The device says that the register " + aRegister.GetName() + " has " +
                                               std::to_string(length) + " bytes; it has to be from 1 to " +
                                               std::to_string(kMostTransferBytes) + "."};
  aLength = static_cast<std::size_t>(length);
  return {};
}

} // namespace

KrResult SelectorHold::Set(const KrString& aEntry) {
  if (!mSelector)
    return {};
  KrGenEnumEntry* entry = nullptr;
  std::int64_t wanted = 0;
  std::int64_t former = 0;
  if (KrResult found = mSelector->GetEntryByName(aEntry, entry); !found.IsOK())
    return found;
  if (KrResult read = entry->GetValue(wanted); !read.IsOK())
    return read;
  if (KrResult read = mSelector->GetValue(former); !read.IsOK())
    return read;
  // What the line chose itself is not to be put back.
  if (former != wanted && (!mFormer || former != mWanted))
    mFormer = former;
  mWanted = wanted;
  return former == wanted ? KrResult() : mSelector->SetValue(wanted);
}

void SelectorHold::PutBack() {
  if (!mFormer)
    return;
  const std::int64_t former = *std::exchange(mFormer, std::nullopt);
  std::int64_t chosen = 0;
  // A device that does not take it any more is met by whoever uses it next.
  if (mSelector->GetValue(chosen).IsOK() && chosen == mWanted)
    static_cast<void>(mSelector->SetValue(former));
}

KrResult Execute(KrGenCommand& aCommand, std::chrono::milliseconds aLimit, bool& aIsDone) {
  aIsDone = false;
  if (KrResult executed = aCommand.Execute(); !executed.IsOK())
    return executed;
  const auto limit = std::chrono::steady_clock::now() + aLimit;
  while (true) {
    if (KrResult asked = aCommand.IsDone(aIsDone); !asked.IsOK() || aIsDone)
      return asked;
    if (std::chrono::steady_clock::now() > limit)
      return {};
    std::this_thread::sleep_for(kCommandPace);
  }
}

KrResult ExecuteAndWait(KrGenCommand& aCommand) {
  bool isDone = false;
  if (KrResult executed = Execute(aCommand, kCommandLimit, isDone); !executed.IsOK() || isDone)
    return executed;
  return {KrResult::Code::TimeLimitExceeded,
          "The device's command " + aCommand.GetName() + " was not over after a second."};
}

KrResult ReadCount(KrGenParameterArray& aArray, KrGenInteger& aCount, std::int64_t aMost, std::size_t& aValue) {
  std::int64_t value = 0;
  if (KrResult forgotten = aArray.Invalidate(aCount.GetName()); !forgotten.IsOK())
    return forgotten;
  if (KrResult read = aCount.GetValue(value); !read.IsOK())
    return read;
  if (value < 0 || value > aMost)
    return RefuseValue(aCount, value, aMost);
  aValue = static_cast<std::size_t>(value);
  return {};
}

KrResult ReadBytes(KrGenParameterArray& aArray, KrGenRegister& aRegister, std::size_t aCount,
                   std::vector<std::uint8_t>& aBytes) {
  std::size_t length = 0;
  if (KrResult forgotten = aArray.Invalidate(aRegister.GetName()); !forgotten.IsOK())
    return forgotten;
  if (KrResult found = FindLength(aRegister, length); !found.IsOK())
    return found;
  if (aCount > length)
    return {KrResult::Code::ProtocolError, "The device says to have " + std::to_string(aCount) + " bytes in " +
                                               aRegister.GetName() + ", which has " + std::to_string(length) + "."};
  std::vector<std::uint8_t> bytes;
  if (KrResult read = aRegister.GetValue(bytes); !read.IsOK())
    return read;
  if (bytes.size() < aCount)
    return {KrResult::Code::ProtocolError, "The device gave less bytes of " + aRegister.GetName() + " than it has."};
  aBytes.insert(aBytes.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(aCount));
  return {};
}

KrResult WriteBytes(KrGenRegister& aRegister, const std::uint8_t* aBytes, std::size_t aSize) {
  std::size_t length = 0;
  if (KrResult found = FindLength(aRegister, length); !found.IsOK())
    return found;
  if (aSize > length)
    return {KrResult::Code::ProtocolError, "The device's register " + aRegister.GetName() + " has become shorter."};
  std::vector<std::uint8_t> bytes(aBytes, aBytes + aSize);
  bytes.resize(length);
  return aRegister.SetValue(bytes);
}

KrResult FindRoom(KrGenRegister& aRegister, KrGenInteger* aLength, std::size_t& aRoom) {
  std::int64_t most = kMostTransferBytes;
  if (aLength) {
    if (KrResult asked = aLength->GetMax(most); !asked.IsOK())
      return asked;
  }
  std::size_t length = 0;
  if (KrResult found = FindLength(aRegister, length); !found.IsOK())
    return found;
  if (most < 1)
    return RefuseValue(*aLength, most, kMostTransferBytes);
  aRoom = std::min(length, static_cast<std::size_t>(std::min(most, kMostTransferBytes)));
  return {};
}

} // namespace krserial
