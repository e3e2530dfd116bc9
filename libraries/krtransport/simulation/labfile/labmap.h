#pragma once
// Takes the values of one map of a lab file that only labs have: times of a lab, addresses and versions.

#include "krpersistence/yamlmap.h"

#include <cstdint>
#include <string_view>

namespace krtransport {

using krpersistence::TextPlace;
using krpersistence::YamlKind;
using krpersistence::YamlNode;
/// Of a lab file the first problem is told: those after it may follow from it.
using LabProblem = krpersistence::TextProblems;
using LabWord = krpersistence::YamlWord;

/// Thread: one at a time. Ownership: as YamlMap.
class LabMap : public krpersistence::YamlMap {
public:
  using YamlMap::YamlMap;

  /// Seconds of the lab's clock, to nanoseconds.
  void TakeSeconds(std::string_view aKey, std::uint64_t& aNanoseconds);
  void TakeAddress(std::string_view aKey, KrString& aAddress);
  /// A subnet mask: ones, then zeros.
  void TakeMask(std::string_view aKey, KrString& aMask);
  void TakeMAC(std::string_view aKey, KrString& aMAC);
  /// "major.minor", each up to aMost, to major in the upper 16 bits.
  void TakeVersion(std::string_view aKey, std::uint32_t aMost, std::uint32_t& aVersion);
  /// Whether a node is an address.
  bool IsAddress(const YamlNode& aNode, std::string_view aKey);
};

} // namespace krtransport
