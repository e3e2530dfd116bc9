#include "chunkparser.h"

#include <algorithm>
#include <string>
#include <utility>

namespace krbuffer {

namespace {

/// Identifier and length, which follow the data.
constexpr std::size_t kTrailerBytes = 8;

std::string GetPlaceText(std::size_t aEnd, std::size_t aBytes) {
  return "The chunk that ends at byte " + std::to_string(aEnd) + " of " + std::to_string(aBytes);
}

} // namespace

std::uint32_t ChunkParser::ReadNumber(std::size_t aOffset) const {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < sizeof number; ++i) {
    const std::size_t place = mOrder == KrByteOrder::BigEndian ? i : sizeof number - 1 - i;
    number = (number << 8) | mBytes[aOffset + place];
  }
  return number;
}

KrResult ChunkParser::Parse(std::vector<KrChunk>& aChunks) const {
  std::vector<KrChunk> found;
  std::size_t end = mBytes.size();
  while (end != 0 && end != mPlainBytes) {
    if (found.size() == kMostChunks)
      return {KrResult::Code::BadData, "A buffer of " + std::to_string(mBytes.size()) + " bytes holds more than " +
                                           std::to_string(kMostChunks) +
                                           " chunks. Check the byte order, and whether the device sends chunks."};
    if (end < kTrailerBytes)
      return {KrResult::Code::BadData, GetPlaceText(end, mBytes.size()) +
                                           " has no room for its identifier and length, " +
                                           "which take 8 bytes. Check whether the device sends chunks."};
    const std::size_t trailer = end - kTrailerBytes;
    const std::uint32_t id = ReadNumber(trailer);
    const std::size_t length = ReadNumber(trailer + sizeof id);
    if (length > trailer)
      return {KrResult::Code::BadData,
              GetPlaceText(end, mBytes.size()) + " (identifier " + std::to_string(id) + ") states " +
                  std::to_string(length) + " bytes of data, but only " + std::to_string(trailer) +
                  " lie before it. Check the byte order, and whether all of the frame is there."};
    found.push_back({id, trailer - length, length});
    end = trailer - length;
  }
  std::reverse(found.begin(), found.end());
  aChunks = std::move(found);
  return {};
}

} // namespace krbuffer
