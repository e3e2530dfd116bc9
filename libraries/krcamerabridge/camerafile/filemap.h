#pragma once
// Takes the values of one map of a camera file that only camera files have: names, numbers with a sign, templates.

#include "camerafile/commandtemplate.h"

#include "krpersistence/yamlmap.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace krcamerabridge {

using krpersistence::TextPlace;
using krpersistence::TextProblems;
using krpersistence::YamlKind;
using krpersistence::YamlNode;
using krpersistence::YamlWord;

inline constexpr std::size_t kMostNameBytes = 64;
inline constexpr std::size_t kMostTextBytes = 4096;

/// Thread: one at a time. Ownership: as YamlMap.
class FileMap : public krpersistence::YamlMap {
public:
  using YamlMap::YamlMap;

  /// A text that is taken as it stands.
  void TakeLine(std::string_view aKey, std::string& aText);
  /// A name as descriptions have them; false, and a problem, where it is none or not there.
  bool TakeName(std::string_view aKey, std::string& aName);
  /// Whether a text is such a name; a problem where it is not.
  bool CheckName(const TextPlace& aPlace, std::string_view aName);
  /// A template with these kinds of placeholders alone, literals besides. Nothing where the key is not there, or wrong.
  std::optional<CommandTemplate> TakeTemplate(std::string_view aKey, bool aIsBinary,
                                              std::initializer_list<TemplatePart::Kind> aAllowed);
  std::optional<std::int64_t> ReadWhole(const YamlNode& aNode, std::string_view aKey);
  std::optional<double> ReadNumber(const YamlNode& aNode, std::string_view aKey);
  using YamlMap::IsScalar;
  using YamlMap::Quote;
};

/// The key "visibility", as descriptions spell it.
void ReadVisibility(FileMap& aMap, std::string& aVisibility);

/// A whole number, decimal or with 0x before it; nothing for anything else.
std::optional<std::int64_t> ParseWhole(std::string_view aText);

} // namespace krcamerabridge
