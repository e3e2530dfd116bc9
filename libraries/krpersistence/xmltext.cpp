#include "krpersistence/xmltext.h"

#include "utf8sequence.h"
#include "xmlentities.h"

#include <algorithm>

namespace krpersistence {

namespace {

// Tabs and carriage returns are held, but changed when an attribute is read.
bool IsKept(const Utf8Sequence& aCharacter) {
  const bool isControl = aCharacter.point < ' ' && aCharacter.point != '\n';
  return aCharacter.length > 0 && !isControl && IsXmlCharacter(aCharacter.point);
}

} // namespace

std::string WriteXmlText(std::string_view aText) {
  std::string written;
  while (!aText.empty()) {
    const Utf8Sequence character = ReadUtf8(aText);
    const std::string_view bytes = aText.substr(0, std::max<std::size_t>(character.length, 1));
    const std::string_view reference = GetXmlReference(bytes.front());
    if (!IsKept(character))
      written += ' ';
    else
      written += reference.empty() ? bytes : reference;
    aText.remove_prefix(bytes.size());
  }
  return written;
}

} // namespace krpersistence
