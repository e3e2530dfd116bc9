#include "description/rootelement.h"

#include "description/lexical.h"
#include "description/xmlelement.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace krgenicam {

namespace {

struct SchemaVersion {
  std::optional<std::int64_t> major = {};
  std::optional<std::int64_t> minor = {};

  bool IsAbove11() const { return major.value_or(1) > 1 || (major.value_or(1) == 1 && minor.value_or(0) > 1); }
};

// "…/GenApi/Version_1_1": from the name space that the element, or a prefix, is bound to.
SchemaVersion ReadNameSpace(const pugi::xml_node& aElement) {
  constexpr std::string_view kMark = "GenApi/Version_";
  for (const pugi::xml_attribute& attribute : aElement.attributes()) {
    const std::string_view value = Trim(attribute.value());
    const std::size_t mark = value.find(kMark);
    if (!std::string_view(attribute.name()).starts_with("xmlns") || mark == std::string_view::npos)
      continue;
    const std::string_view numbers = value.substr(mark + kMark.size());
    const std::size_t parting = std::min(numbers.find('_'), numbers.size());
    return {ParseInteger(numbers.substr(0, parting)),
            ParseInteger(numbers.substr(std::min(parting + 1, numbers.size())))};
  }
  return {};
}

std::string ReadVersion(const pugi::xml_node& aElement) {
  std::string version;
  for (const char* const attribute : {"MajorVersion", "MinorVersion", "SubMinorVersion"})
    version +=
        (version.empty() ? "" : ".") + std::to_string(ParseInteger(GetAttribute(aElement, attribute)).value_or(0));
  return version;
}

KrResult RefuseSchema(const SchemaVersion& aVersion) {
  return {KrResult::Code::BadData, "it follows schema " + std::to_string(aVersion.major.value_or(1)) + "." +
                                       std::to_string(aVersion.minor.value_or(0)) +
                                       ", and the newest one that can be read is 1.1."};
}

} // namespace

KrResult FindRootElement(const pugi::xml_document& aDocument, RootElement& aRoot) {
  const pugi::xml_node element = aDocument.document_element();
  const std::string_view name = GetLocalName(element);
  if (name != "RegisterDescription")
    return {KrResult::Code::BadData,
            "its root element is " + Quote(name) + " where a camera description has RegisterDescription."};
  const SchemaVersion byAttributes{ParseInteger(GetAttribute(element, "SchemaMajorVersion")),
                                   ParseInteger(GetAttribute(element, "SchemaMinorVersion"))};
  const SchemaVersion byNameSpace = ReadNameSpace(element);
  for (const SchemaVersion& version : {byAttributes, byNameSpace}) {
    if (version.IsAbove11())
      return RefuseSchema(version);
  }
  const std::int64_t minor = byAttributes.minor.value_or(byNameSpace.minor.value_or(1));
  aRoot = {element,
           GetAttribute(element, "VendorName"),
           GetAttribute(element, "ModelName"),
           minor >= 1 ? 1 : 0,
           GetAttribute(element, "StandardNameSpace"),
           ReadVersion(element)};
  return {};
}

} // namespace krgenicam
