#include "description/xmlelement.h"

#include "description/lexical.h"

namespace krgenicam {

std::string_view GetLocalName(const pugi::xml_node& aElement) {
  const std::string_view name = aElement.name();
  const std::size_t colon = name.rfind(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

std::string_view GetAttribute(const pugi::xml_node& aElement, const char* aName) {
  return Trim(aElement.attribute(aName).value());
}

std::string_view GetContent(const pugi::xml_node& aElement, std::deque<std::string>& aJoined) {
  // The parser keeps the first piece of text with the element.
  std::string_view first = aElement.value();
  std::string* joined = nullptr;
  for (pugi::xml_node piece = aElement.first_child(); piece; piece = piece.next_sibling()) {
    if (piece.type() != pugi::node_pcdata && piece.type() != pugi::node_cdata)
      continue;
    if (first.empty()) {
      first = piece.value();
      continue;
    }
    if (!joined)
      joined = &aJoined.emplace_back(first);
    *joined += piece.value();
  }
  return Trim(joined ? std::string_view(*joined) : first);
}

} // namespace krgenicam
