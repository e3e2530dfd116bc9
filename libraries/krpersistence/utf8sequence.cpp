#include "utf8sequence.h"

namespace krpersistence {

Utf8Sequence ReadUtf8(std::string_view aText) {
  const krbase::Utf8Sequence read = krbase::ReadUtf8(aText);
  return read.isWellFormed ? Utf8Sequence{read.point, read.length} : Utf8Sequence{};
}

bool IsXmlCharacter(char32_t aPoint) {
  if (aPoint < 0x20)
    return aPoint == '\t' || aPoint == '\n' || aPoint == '\r';
  const bool isSurrogate = aPoint >= 0xD800 && aPoint <= 0xDFFF;
  return !isSurrogate && aPoint <= 0x10FFFF && aPoint != 0xFFFE && aPoint != 0xFFFF;
}

} // namespace krpersistence
