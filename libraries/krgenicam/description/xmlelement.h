#pragma once
// What the reader takes from elements of the parsed tree, as views into the text that was parsed in place.

#include <pugixml.hpp>

#include <deque>
#include <string>
#include <string_view>

namespace krgenicam {

/// An element's name without the prefix of its name space.
std::string_view GetLocalName(const pugi::xml_node& aElement);
/// An attribute's value without blanks around; empty where there is none.
std::string_view GetAttribute(const pugi::xml_node& aElement, const char* aName);
/// The text directly inside an element, CDATA among it, without blanks around. What comes in several pieces is joined
/// in aJoined.
std::string_view GetContent(const pugi::xml_node& aElement, std::deque<std::string>& aJoined);

} // namespace krgenicam
