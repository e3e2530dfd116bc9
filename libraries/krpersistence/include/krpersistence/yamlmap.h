#pragma once
// Takes the values of one map of a YAML text by their keys, each checked as it is taken. Which keys there are is left
// to the caller: what was asked for is known, and anything else in the map is a mistake.

#include "krbase/krstring.h"
#include "krpersistence/yamltext.h"

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

namespace krpersistence {

/// A word for a number.
struct YamlWord {
  std::string_view word; ///< As it stands in the text.
  std::int32_t value;    ///< What it means.
};

/// Thread: one at a time. Ownership: borrows the map, what it is called and the problems. A value that is not there, or
/// is wrong, leaves the target as it is.
class KR_EXPORT YamlMap {
public:
  /// aWhat names the map in messages, for example "a device". Anything but a map is a problem.
  YamlMap(const YamlNode& aNode, std::string_view aWhat, TextProblems& aProblems);
  YamlMap(const YamlMap&) = delete;
  YamlMap& operator=(const YamlMap&) = delete;

  /// The value of a key; null where it is not there.
  const YamlNode* Find(std::string_view aKey);
  /// The same; a problem where it is not there, unless the map is cut.
  const YamlNode* FindNeeded(std::string_view aKey);

  /// Takes a text of at most so many bytes.
  void TakeText(std::string_view aKey, std::size_t aMostBytes, KrString& aText);
  /// Takes true or false.
  void TakeFlag(std::string_view aKey, bool& aFlag);
  /// Takes a whole number within bounds.
  template <std::integral Number>
  void TakeNumber(std::string_view aKey, Number& aNumber, std::uint64_t aLeast = 0,
                  std::uint64_t aMost = std::numeric_limits<Number>::max()) {
    std::uint64_t number = 0;
    if (FindNumber(aKey, aLeast, aMost, number))
      aNumber = static_cast<Number>(number);
  }
  /// Takes a number within bounds.
  void TakeReal(std::string_view aKey, double aLeast, double aMost, double& aNumber);
  /// Takes what one of the words means.
  template <std::integral Number>
  void TakeWord(std::string_view aKey, std::span<const YamlWord> aWords, Number& aNumber) {
    if (const YamlNode* const node = Find(aKey)) {
      if (const YamlWord* const row = ReadWord(*node, aKey, aWords))
        aNumber = static_cast<Number>(row->value);
    }
  }

  /// One of the words that a node is; null, and a problem, for another.
  const YamlWord* ReadWord(const YamlNode& aNode, std::string_view aKey, std::span<const YamlWord> aWords);
  /// A whole number within bounds; false, and a problem, for anything else.
  bool ReadNumber(const YamlNode& aNode, std::string_view aKey, std::uint64_t aLeast, std::uint64_t aMost,
                  std::uint64_t& aNumber);
  /// The items of a sequence, at most aMost; none where the key is not there.
  std::span<const YamlNode> TakeItems(std::string_view aKey, std::size_t aMost);

  /// Reports the keys that nobody asked for. To be called after all keys were.
  void Finish();
  /// Reports a problem at a place.
  void Report(const TextPlace& aPlace, const std::string& aReason) { mProblems.Report(aPlace, aReason); }
  /// A problem that is none where the rest of a map that is cut has what is missing.
  void ReportMissing(const TextPlace& aPlace, const std::string& aReason) {
    if (!mNode.isCut)
      Report(aPlace, aReason);
  }
  /// Whether the text could not be read to the end of the map.
  bool IsCut() const { return mNode.isCut; }
  /// Where the map begins.
  const TextPlace& GetPlace() const { return mNode.place; }
  /// Where problems are reported.
  TextProblems& GetProblem() { return mProblems; }

protected:
  /// The text of a key, and its node; null where it is not there, or is no scalar.
  const std::string* FindScalar(std::string_view aKey, const YamlNode*& aNode);
  /// Whether a node is a scalar; a problem where it is not.
  bool IsScalar(const YamlNode& aNode, std::string_view aKey);
  /// A value in a message, as short as can be told.
  static std::string Quote(std::string_view aText);
  /// A whole number, decimal or with 0x before it.
  static std::optional<std::uint64_t> ParseNumber(std::string_view aText);

private:
  bool FindNumber(std::string_view aKey, std::uint64_t aLeast, std::uint64_t aMost, std::uint64_t& aNumber);

  const YamlNode& mNode;
  const std::string_view mWhat;
  TextProblems& mProblems;
  std::vector<std::string_view> mKnown;
};

} // namespace krpersistence
