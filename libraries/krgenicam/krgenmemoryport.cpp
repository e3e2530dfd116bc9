#include "krgenicam/krgenmemoryport.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>

namespace {

constexpr std::size_t kPageBytes = 4096;
constexpr std::size_t kMostPages = (std::size_t{256} << 20) / kPageBytes;
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

using Page = std::array<unsigned char, kPageBytes>;

KrResult CheckArguments(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                        const std::stop_token& aCancel) {
  const auto refuse = [](const char* aReason) {
    return KrResult(KrResult::Code::InvalidInput, std::string("Memory cannot be accessed: ") + aReason);
  };
  if (!aData)
    return refuse("there is no place for its bytes.");
  if (aLength == 0 || aLength > kMostBytes)
    return refuse("the length must be 1 byte to 16 MiB.");
  if (aTimeoutMs == 0)
    return refuse("the time limit must be at least 1 ms.");
  if (aLength - 1 > ~aAddress)
    return refuse("the range ends beyond the last address of 64 bits.");
  if (aCancel.stop_requested())
    return {KrResult::Code::Aborted, "The access to memory was cancelled."};
  return {};
}

// Calls aVisit(page number, offset in the page, offset in the range, length) for the parts of a range.
template <typename Visit>
void ForEachPart(std::uint64_t aAddress, std::size_t aLength, Visit aVisit) {
  for (std::size_t done = 0; done < aLength;) {
    const std::uint64_t address = aAddress + done;
    const auto offset = static_cast<std::size_t>(address % kPageBytes);
    const std::size_t length = std::min(aLength - done, kPageBytes - offset);
    aVisit(address / kPageBytes, offset, done, length);
    done += length;
  }
}

} // namespace

class KrGenMemoryPort::Body {
public:
  void Read(std::uint64_t aAddress, unsigned char* aData, std::size_t aLength) {
    const std::lock_guard lock(mMutex);
    ForEachPart(aAddress, aLength, [&](std::uint64_t aPage, std::size_t aOffset, std::size_t aDone, std::size_t aPart) {
      const auto page = mPages.find(aPage);
      if (page == mPages.end())
        std::memset(aData + aDone, 0, aPart);
      else
        std::memcpy(aData + aDone, page->second->data() + aOffset, aPart);
    });
  }

  KrResult Write(std::uint64_t aAddress, const unsigned char* aData, std::size_t aLength) {
    const std::lock_guard lock(mMutex);
    std::size_t newPages = 0;
    ForEachPart(aAddress, aLength, [&](std::uint64_t aPage, std::size_t, std::size_t, std::size_t) {
      newPages += mPages.contains(aPage) ? 0 : 1;
    });
    if (mPages.size() + newPages > kMostPages)
      return {KrResult::Code::OutOfRange, "Memory cannot be written: more than 256 MiB of it would be in use."};
    ForEachPart(aAddress, aLength, [&](std::uint64_t aPage, std::size_t aOffset, std::size_t aDone, std::size_t aPart) {
      std::unique_ptr<Page>& page = mPages[aPage];
      if (!page)
        page = std::make_unique<Page>();
      std::memcpy(page->data() + aOffset, aData + aDone, aPart);
    });
    return {};
  }

private:
  std::mutex mMutex; // Guards the pages.
  std::unordered_map<std::uint64_t, std::unique_ptr<Page>> mPages;
};

KrGenMemoryPort::KrGenMemoryPort() : mBody(std::make_unique<Body>()) {}

KrGenMemoryPort::~KrGenMemoryPort() = default;

KrResult KrGenMemoryPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                               const std::stop_token& aCancel) {
  KrResult result = CheckArguments(aAddress, aData, aLength, aTimeoutMs, aCancel);
  if (result.IsOK())
    mBody->Read(aAddress, static_cast<unsigned char*>(aData), aLength);
  return result;
}

KrResult KrGenMemoryPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength,
                                std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  KrResult result = CheckArguments(aAddress, aData, aLength, aTimeoutMs, aCancel);
  return result.IsOK() ? mBody->Write(aAddress, static_cast<const unsigned char*>(aData), aLength) : result;
}
