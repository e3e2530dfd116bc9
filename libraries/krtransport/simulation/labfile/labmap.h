#pragma once
// Takes the values of one map of a lab file by their keys, each checked as it is taken. Which keys there are is left to
// the caller: what was asked for is known, and anything else in the map is a mistake.

#include "krbase/krstring.h"
#include "simulation/labfile/yamltext.h"

#include <concepts>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace krtransport {

/// A word for a number.
struct LabWord {
  std::string_view word;
  std::int32_t value;
};

/// Thread: one at a time. Ownership: borrows the map and the problem. A value that is not there, or is wrong, leaves
/// the target as it is.
class LabMap {
public:
  /// aWhat names the map in messages, for example "a device". Anything but a map is a problem.
  LabMap(const YamlNode& aNode, std::string_view aWhat, LabProblem& aProblem);
  LabMap(const LabMap&) = delete;
  LabMap& operator=(const LabMap&) = delete;

  /// The value of a key; null where it is not there.
  const YamlNode* Find(std::string_view aKey);
  /// The same; a problem where it is not there.
  const YamlNode* FindNeeded(std::string_view aKey);

  void TakeText(std::string_view aKey, std::size_t aMostBytes, KrString& aText);
  void TakeFlag(std::string_view aKey, bool& aFlag);
  template <std::integral Number>
  void TakeNumber(std::string_view aKey, Number& aNumber, std::uint64_t aLeast = 0,
                  std::uint64_t aMost = std::numeric_limits<Number>::max()) {
    std::uint64_t number = 0;
    if (ReadNumber(aKey, aLeast, aMost, number))
      aNumber = static_cast<Number>(number);
  }
  void TakeReal(std::string_view aKey, double aLeast, double aMost, double& aNumber);
  /// Seconds of the lab's clock, to nanoseconds.
  void TakeSeconds(std::string_view aKey, std::uint64_t& aNanoseconds);
  void TakeAddress(std::string_view aKey, KrString& aAddress);
  /// A subnet mask: ones, then zeros.
  void TakeMask(std::string_view aKey, KrString& aMask);
  void TakeMAC(std::string_view aKey, KrString& aMAC);
  /// "major.minor", each up to aMost, to major in the upper 16 bits.
  void TakeVersion(std::string_view aKey, std::uint32_t aMost, std::uint32_t& aVersion);
  template <std::integral Number>
  void TakeWord(std::string_view aKey, std::span<const LabWord> aWords, Number& aNumber) {
    if (const YamlNode* const node = Find(aKey)) {
      if (const LabWord* const row = ReadWord(*node, aKey, aWords))
        aNumber = static_cast<Number>(row->value);
    }
  }

  /// One of the words that a node is; null, and a problem, for another.
  const LabWord* ReadWord(const YamlNode& aNode, std::string_view aKey, std::span<const LabWord> aWords);
  /// Whether a node is an address.
  bool IsAddress(const YamlNode& aNode, std::string_view aKey);
  /// The items of a sequence, at most aMost; none where the key is not there.
  std::span<const YamlNode> TakeItems(std::string_view aKey, std::size_t aMost);

  /// Reports the first key that nobody asked for. To be called after all keys were.
  void Finish();
  void Report(const TextPlace& aPlace, const std::string& aReason) { mProblem.Report(aPlace, aReason); }
  const TextPlace& GetPlace() const { return mNode.place; }
  LabProblem& GetProblem() { return mProblem; }

private:
  const std::string* FindScalar(std::string_view aKey, const YamlNode*& aNode);
  bool ReadNumber(std::string_view aKey, std::uint64_t aLeast, std::uint64_t aMost, std::uint64_t& aNumber);
  bool IsScalar(const YamlNode& aNode, std::string_view aKey);

  const YamlNode& mNode;
  const std::string_view mWhat;
  LabProblem& mProblem;
  std::vector<std::string_view> mKnown;
};

} // namespace krtransport
