// Any text may be given to the reader of serial features: it is taken as a whole and keeps to the limits, or refused
// with a place for each mistake.

#include "require.h"
#include "serialmapreader.h"

#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kMostMaps = 64;
constexpr std::size_t kMostNameBytes = 128;

void CheckRefusal(const KrResult& aResult) {
  Require(aResult == KrResult::Code::InvalidInput && !aResult.GetDescription().IsEmpty());
  std::istringstream lines(aResult.GetDescription().ToUtf8());
  for (std::string line; std::getline(lines, line);)
    Require(line.starts_with("map.yaml:"));
}

// Whether the ports are told apart by a selector.
bool HasSelector(const krserial::SerialMap& aMap) {
  const auto* const registers = std::get_if<krserial::RegisterNames>(&aMap.names);
  return !registers || !registers->selector.IsEmpty();
}

void CheckNames(const krserial::SerialMap& aMap) {
  Require(aMap.name.GetLength() <= kMostNameBytes);
  if (const auto* const registers = std::get_if<krserial::RegisterNames>(&aMap.names))
    for (const KrString* const needed : {&registers->receivedCount, &registers->receiveData, &registers->transmitData})
      Require(!needed->IsEmpty() && needed->GetLength() <= kMostNameBytes);
}

// A map without ports would be of no use to anybody, and ports that nothing tells apart would be one.
void CheckPorts(const krserial::SerialMap& aMap) {
  std::set<KrString> entries;
  std::size_t ports = 0;
  for (const auto& entry : aMap.entries) {
    if (!entry)
      continue;
    ++ports;
    Require(entries.insert(*entry).second && entry->IsEmpty() != HasSelector(aMap));
  }
  Require(ports > 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krserial::SerialMaps maps;
  const KrResult result =
      krserial::ParseSerialMaps(std::string_view(reinterpret_cast<const char*>(aData), aSize), "map.yaml", maps);
  if (!result.IsOK()) {
    CheckRefusal(result);
    Require(maps.empty());
    return 0;
  }
  Require(maps.size() <= kMostMaps);
  for (const krserial::SerialMap& map : maps) {
    CheckNames(map);
    CheckPorts(map);
  }
  return 0;
}
