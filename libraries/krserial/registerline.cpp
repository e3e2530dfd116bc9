#include "registerline.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace krserial {

namespace {

KrResult ExecuteIfThere(KrGenCommand* aCommand) {
  return aCommand ? ExecuteAndWait(*aCommand) : KrResult();
}

} // namespace

RegisterLine::RegisterLine(const Features& aFeatures, KrString aEntry)
    : mFeatures(aFeatures), mEntry(std::move(aEntry)), mSelector(aFeatures.selector) {}

RegisterLine::Data RegisterLine::FindData(FeatureFinder& aFinder, const KrString& aName) {
  if (dynamic_cast<KrGenString*>(aFinder.GetArray().Get(aName)))
    return {nullptr, aFinder.Find<KrGenString>(aName)};
  return {aFinder.Find<KrGenRegister>(aName), nullptr};
}

std::unique_ptr<RegisterLine> RegisterLine::Find(FeatureFinder& aFinder, const RegisterNames& aNames,
                                                 const KrString& aEntry) {
  const Features features = {.array = &aFinder.GetArray(),
                             .selector = aFinder.FindNamed<KrGenEnum>(aNames.selector),
                             .receiveCommand = aFinder.FindNamed<KrGenCommand>(aNames.receiveCommand),
                             .receivedCount = aFinder.Find<KrGenInteger>(aNames.receivedCount),
                             .receiveData = FindData(aFinder, aNames.receiveData),
                             .takenCommand = aFinder.FindNamed<KrGenCommand>(aNames.takenCommand),
                             .transmitRoom = aFinder.FindNamed<KrGenInteger>(aNames.transmitRoom),
                             .transmitData = FindData(aFinder, aNames.transmitData),
                             .transmitLength = aFinder.FindNamed<KrGenInteger>(aNames.transmitLength),
                             .transmitCommand = aFinder.FindNamed<KrGenCommand>(aNames.transmitCommand)};
  // A register says nothing of how many of its bytes count.
  if (features.transmitData.bytes && aNames.transmitLength.IsEmpty())
    aFinder.Lack("the map's key transmitLength");
  if (features.selector)
    aFinder.NeedEntry(features.selector, aEntry);
  return aFinder.HasAll() ? std::unique_ptr<RegisterLine>(new RegisterLine(features, aEntry)) : nullptr;
}

KrResult RegisterLine::Close() {
  Rest();
  return {};
}

KrResult RegisterLine::Receive(std::vector<std::uint8_t>& aBytes) {
  mLoss = {};
  if (KrResult set = mSelector.Set(mEntry); !set.IsOK())
    return set;
  if (KrResult moved = ExecuteIfThere(mFeatures.receiveCommand); !moved.IsOK())
    return moved;
  std::size_t count = 0;
  if (KrResult read = ReadCount(*mFeatures.array, *mFeatures.receivedCount, kMostTransferBytes, count);
      !read.IsOK() || count == 0)
    return read;
  if (KrResult taken = TakeData(count, aBytes); !taken.IsOK())
    return taken;
  return ExecuteIfThere(mFeatures.takenCommand);
}

KrResult RegisterLine::TakeData(std::size_t aCount, std::vector<std::uint8_t>& aBytes) {
  if (mFeatures.receiveData.bytes)
    return ReadBytes(*mFeatures.array, *mFeatures.receiveData.bytes, aCount, aBytes);
  KrString text;
  if (KrResult forgotten = mFeatures.array->Invalidate(mFeatures.receiveData.text->GetName()); !forgotten.IsOK())
    return forgotten;
  if (KrResult read = mFeatures.receiveData.text->GetValue(text); !read.IsOK())
    return read;
  // A text ends at its first zero byte, so that it may have less than were counted.
  const std::string_view bytes = std::string_view(text.ToUtf8()).substr(0, aCount);
  aBytes.insert(aBytes.end(), bytes.begin(), bytes.end());
  if (bytes.size() < aCount)
    mLoss = {KrResult::Code::ProtocolError, "Of " + std::to_string(aCount) + " bytes that came in the text " +
                                                mFeatures.receiveData.text->GetName() + " those from a zero byte on, " +
                                                std::to_string(aCount - bytes.size()) +
                                                ", are lost: texts cannot carry it."};
  return {};
}

// How many bytes can be sent at once at the moment.
KrResult RegisterLine::FindMost(std::size_t& aMost) {
  const Data& data = mFeatures.transmitData;
  aMost = kMostTransferBytes;
  if (data.bytes) {
    if (KrResult found = FindRoom(*data.bytes, mFeatures.transmitLength, aMost); !found.IsOK())
      return found;
  } else {
    std::int64_t most = 0;
    if (KrResult asked = data.text->GetMaxLength(most); !asked.IsOK())
      return asked;
    aMost = static_cast<std::size_t>(std::clamp(most, std::int64_t{1}, kMostTransferBytes));
  }
  std::size_t room = aMost;
  if (mFeatures.transmitRoom) {
    if (KrResult read = ReadCount(*mFeatures.array, *mFeatures.transmitRoom, INT64_MAX, room); !read.IsOK())
      return read;
  }
  aMost = std::min(aMost, room);
  return {};
}

KrResult RegisterLine::PutData(const std::uint8_t* aBytes, std::size_t aSize) {
  if (mFeatures.transmitData.bytes)
    return WriteBytes(*mFeatures.transmitData.bytes, aBytes, aSize);
  return mFeatures.transmitData.text->SetValue(std::string(reinterpret_cast<const char*>(aBytes), aSize));
}

// Of bytes that begin with a zero byte nothing can be sent.
KrResult RegisterLine::CutAtZero(const std::uint8_t* aBytes, std::size_t& aSize) const {
  const auto size = static_cast<std::size_t>(std::find(aBytes, aBytes + aSize, 0) - aBytes);
  if (aSize > 0 && size == 0)
    return {KrResult::Code::InvalidInput, "The text " + mFeatures.transmitData.text->GetName() +
                                              " of the device cannot carry a zero byte: the message is sent up to "
                                              "there; leave such bytes out."};
  aSize = size;
  return {};
}

KrResult RegisterLine::Transmit(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken) {
  if (mFeatures.transmitData.text) {
    if (KrResult cut = CutAtZero(aBytes, aSize); !cut.IsOK())
      return cut;
  }
  if (KrResult set = mSelector.Set(mEntry); !set.IsOK())
    return set;
  std::size_t most = 0;
  if (KrResult found = FindMost(most); !found.IsOK() || most == 0)
    return found;
  const std::size_t size = std::min(aSize, most);
  if (KrResult put = PutData(aBytes, size); !put.IsOK())
    return put;
  if (mFeatures.transmitLength) {
    if (KrResult set = mFeatures.transmitLength->SetValue(static_cast<std::int64_t>(size)); !set.IsOK())
      return set;
  }
  if (KrResult sent = ExecuteIfThere(mFeatures.transmitCommand); !sent.IsOK())
    return sent;
  aTaken = size;
  return {};
}

} // namespace krserial
