#pragma once
// The predefined entities of XML, the only ones there are without a document type.

#include <algorithm>
#include <array>
#include <string_view>

namespace krpersistence {

struct XmlEntity {
  char character;
  std::string_view reference;
};

inline constexpr std::array kXmlEntities = {XmlEntity{'&', "&amp;"}, XmlEntity{'<', "&lt;"}, XmlEntity{'>', "&gt;"},
                                            XmlEntity{'"', "&quot;"}, XmlEntity{'\'', "&apos;"}};

/// What stands for a character; empty for one that stands for itself.
constexpr std::string_view GetXmlReference(char aCharacter) {
  const auto* const entity = std::ranges::find(kXmlEntities, aCharacter, &XmlEntity::character);
  return entity != kXmlEntities.end() ? entity->reference : std::string_view();
}

} // namespace krpersistence
