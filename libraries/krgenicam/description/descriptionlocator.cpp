#include "description/descriptionlocator.h"

#include "description/gencpmanifest.h"
#include "portaccess.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace krgenicam {

namespace {

// GigE Vision 2.x, bootstrap registers.
constexpr std::uint64_t kFirstUrl = 0x0200;
constexpr std::uint64_t kSecondUrl = 0x0400;
constexpr std::uint64_t kUrlBytes = 512;
constexpr std::uint64_t kGvcpCapability = 0x0934;
constexpr std::uint64_t kHasManifest = std::uint64_t{1} << 26;
constexpr std::uint64_t kGigEManifest = 0x9000;
constexpr std::uint64_t kMostGigEEntries = 63;
// GenCP 1.x, technology agnostic bootstrap registers.
constexpr std::uint64_t kGenCPVersion = 0x0000;
constexpr std::uint64_t kGenCPManifest = 0x01D0;
constexpr std::uint64_t kMostGenCPEntries = 64;

std::string ToHex(std::uint64_t aValue) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), aValue, 16).ptr;
  return "0x" + std::string(digits.data(), end);
}

} // namespace

KrResult DescriptionLocator::Find(KrGenBootstrap aBootstrap, const Take& aTake) {
  if (aBootstrap == KrGenBootstrap::GigEVision)
    TryGigEVision(aTake);
  else
    TryGenCP(aTake);
  if (mIsFound)
    return {};
  if (!mEnd.IsOK())
    return mEnd;
  return {mFirst.GetCode(), "The device names no description that can be used." + mReasons};
}

bool DescriptionLocator::IsOver() const {
  return mIsFound || !mEnd.IsOK();
}

// Keeps why a place did not do; false for a failure.
bool DescriptionLocator::Note(const std::string& aName, const KrResult& aResult) {
  if (aResult.IsOK())
    return true;
  const KrResult result{aResult.GetCode(),
                        aName + ": " +
                            (aResult.GetDescription().IsEmpty() ? aResult.GetCodeString().ToUtf8() + "."
                                                                : aResult.GetDescription().ToUtf8())};
  // A device that has not answered anything is not waited for again at every place.
  const bool isSilent = result == KrResult::Code::TimeLimitExceeded && !mHasAnswered;
  if (result == KrResult::Code::Aborted || result == KrResult::Code::ConnectionLost || isSilent)
    mEnd = {result.GetCode(), "The description could not be read from the device. " + result.GetDescription()};
  if (mFirst.IsOK())
    mFirst = result;
  mReasons += " " + result.GetDescription().ToUtf8();
  return false;
}

KrResult DescriptionLocator::ReadBytes(const RegisterRange& aRange, Bytes& aBytes) {
  constexpr std::size_t kPiece = 65536;
  const std::size_t length = (aRange.length + mAlignment - 1) / mAlignment * mAlignment;
  Bytes bytes;
  while (bytes.size() < length) {
    const std::size_t done = bytes.size();
    const std::size_t piece = std::min(kPiece, length - done);
    // Memory grows with what the device has really given.
    bytes.resize(done + piece);
    if (mCancel.stop_requested())
      return {KrResult::Code::Aborted, "it was cancelled."};
    KrResult result =
        CallPort([&] { return mPort.Read(aRange.address + done, bytes.data() + done, piece, mTimeoutMs, mCancel); });
    if (!result.IsOK())
      return result;
    mHasAnswered = true;
  }
  bytes.resize(aRange.length);
  aBytes = std::move(bytes);
  return {};
}

bool DescriptionLocator::ReadNumber(const std::string& aName, std::uint64_t aAddress, std::size_t aBytes,
                                    bool aIsBigEndian, std::uint64_t& aValue) {
  Bytes bytes;
  if (!Note(aName, ReadBytes({aAddress, aBytes}, bytes)))
    return false;
  aValue = ReadRegisterNumber(bytes, aIsBigEndian);
  return true;
}

void DescriptionLocator::TryRange(const std::string& aName, const std::string& aOrigin, const RegisterRange& aRange,
                                  const Take& aTake) {
  Bytes bytes;
  if (!Note(aName, CheckRange(aRange)) || !Note(aName, ReadBytes(aRange, bytes)))
    return;
  mIsFound = Note(aName, aTake(std::string(bytes.begin(), bytes.end()), aOrigin));
}

void DescriptionLocator::TryUrl(const std::string& aName, std::uint64_t aAddress, const Take& aTake) {
  Bytes bytes;
  if (IsOver() || !Note(aName, ReadBytes({aAddress, kUrlBytes}, bytes)))
    return;
  const std::string url(bytes.begin(), std::ranges::find(bytes, '\0'));
  const std::string name = aName + " " + QuoteDeviceText(url);
  RegisterRange range;
  if (Note(name, ParseDescriptionUrl(url, range)))
    TryRange(name, url, range, aTake);
}

void DescriptionLocator::TryGigEVision(const Take& aTake) {
  mAlignment = 4; // READMEM knows nothing smaller.
  TryUrl("First URL", kFirstUrl, aTake);
  TryUrl("Second URL", kSecondUrl, aTake);
  if (!IsOver())
    TryGigEManifest(aTake);
}

// Sources differ on whether the header has 4 or 8 bytes, so entries are sought behind either.
void DescriptionLocator::TryGigEManifest(const Take& aTake) {
  const std::string name = "Manifest table";
  std::uint64_t capability = 0;
  if (!ReadNumber("GVCP capability", kGvcpCapability, 4, true, capability) || (capability & kHasManifest) == 0)
    return;
  std::uint64_t count = 0;
  if (!ReadNumber(name, kGigEManifest, 4, true, count))
    return;
  if (count == 0 || count > kMostGigEEntries) {
    Note(name, {KrResult::Code::BadData, "it says that it has " + std::to_string(count) + " entries."});
    return;
  }
  Bytes table;
  if (!Note(name, ReadBytes({kGigEManifest, 8 + 8 * count}, table)))
    return;
  for (const std::size_t headerBytes : {8, 4}) {
    for (std::uint64_t entry = 0; entry < count; ++entry) {
      const std::size_t offset = headerBytes + 8 * entry + 4;
      const std::uint64_t address = ReadRegisterNumber(std::span(table).subspan(offset, 4), true);
      if (address != 0 && address % 4 == 0)
        TryUrl("URL at " + ToHex(address) + " of the manifest table", address, aTake);
    }
  }
}

// A device's registers have the byte order in which its GenCP version makes sense.
bool DescriptionLocator::IsGenCPBigEndian() {
  Bytes bytes;
  if (const KrResult read = ReadBytes({kGenCPVersion, 4}, bytes); !read.IsOK()) {
    if (read == KrResult::Code::TimeLimitExceeded)
      Note("GenCP version", read);
    return false;
  }
  const auto isVersion = [&](bool aIsBigEndian) {
    const std::uint64_t major = ReadRegisterNumber(bytes, aIsBigEndian) >> 16;
    return major >= 1 && major < 256;
  };
  return isVersion(true) && !isVersion(false);
}

void DescriptionLocator::TryGenCP(const Take& aTake) {
  const bool isBigEndian = IsGenCPBigEndian();
  std::uint64_t address = 0;
  if (IsOver() || !ReadNumber("Address of the manifest table", kGenCPManifest, 8, isBigEndian, address))
    return;
  const std::string name = "Manifest table at " + ToHex(address);
  std::uint64_t count = 0;
  if (!Note(name, CheckRange({address, 8})) || !ReadNumber(name, address, 8, isBigEndian, count))
    return;
  const RegisterRange range{address + 8, std::min(count, kMostGenCPEntries) * kGenCPEntryBytes};
  Bytes table;
  if (!Note(name + ", " + std::to_string(count) + " entries", CheckRange(range)) ||
      !Note(name, ReadBytes(range, table)))
    return;
  const std::vector<GenCPManifestEntry> entries = ReadGenCPManifest(table, isBigEndian);
  if (entries.empty())
    Note(name, {KrResult::Code::NotSupported, "none of its entries is a device's description of schema 1.1 or older."});
  for (const GenCPManifestEntry& entry : entries) {
    if (!IsOver())
      TryRange("File at " + ToHex(entry.range.address) + ", " + entry.name, entry.name, entry.range, aTake);
  }
}

} // namespace krgenicam
