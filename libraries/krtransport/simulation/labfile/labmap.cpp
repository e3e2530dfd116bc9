#include "simulation/labfile/labmap.h"

#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace krtransport {

namespace {

constexpr double kMostSeconds = 1e9;
constexpr double kNanosecondsPerSecond = 1e9;

} // namespace

void LabMap::TakeSeconds(std::string_view aKey, std::uint64_t& aNanoseconds) {
  double seconds = -1;
  TakeReal(aKey, 0, kMostSeconds, seconds);
  if (seconds >= 0)
    aNanoseconds = static_cast<std::uint64_t>(std::llround(seconds * kNanosecondsPerSecond));
}

bool LabMap::IsAddress(const YamlNode& aNode, std::string_view aKey) {
  if (!IsScalar(aNode, aKey))
    return false;
  if (krsystem::ParseIPv4(aNode.text))
    return true;
  Report(aNode.place,
         "\"" + std::string(aKey) + "\" has to be an address as in 192.168.1.20, not " + Quote(aNode.text));
  return false;
}

void LabMap::TakeAddress(std::string_view aKey, KrString& aAddress) {
  const YamlNode* const node = Find(aKey);
  if (node && IsAddress(*node, aKey))
    aAddress = node->text;
}

void LabMap::TakeMask(std::string_view aKey, KrString& aMask) {
  const YamlNode* const node = Find(aKey);
  if (!node || !IsAddress(*node, aKey))
    return;
  const std::uint32_t mask = krsystem::ParseIPv4(node->text).value_or(0);
  if (!krsystem::IsContiguousMask(mask))
    Report(node->place,
           "\"" + std::string(aKey) + "\" has to be a subnet mask, ones and then zeros, not " + Quote(node->text));
  else
    aMask = node->text;
}

void LabMap::TakeMAC(std::string_view aKey, KrString& aMAC) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return;
  if (const auto address = krsystem::ParseMAC(*text))
    aMAC = krsystem::FormatMAC(*address);
  else
    Report(node->place,
           "\"" + std::string(aKey) + "\" has to be a MAC address as in 00:11:22:aa:bb:cc, not " + Quote(*text));
}

void LabMap::TakeVersion(std::string_view aKey, std::uint32_t aMost, std::uint32_t& aVersion) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return;
  const std::size_t dot = std::min(text->find('.'), text->size());
  const std::optional<std::uint64_t> major = ParseNumber(text->substr(0, dot));
  const std::optional<std::uint64_t> minor =
      dot < text->size() ? ParseNumber(text->substr(dot + 1)) : std::optional<std::uint64_t>();
  if (major && minor && *major <= aMost && *minor <= aMost)
    aVersion = static_cast<std::uint32_t>(*major << 16 | *minor);
  else
    Report(node->place, "\"" + std::string(aKey) + "\" has to be a version as in 2.0, each part up to " +
                            std::to_string(aMost) + ", not " + Quote(*text));
}

} // namespace krtransport
