#pragma once
// Descriptions as text, and what the reader makes of them: what the tests of reading stand on.

#include "description/description.h"
#include "description/elementnames.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace krgenicam {

/// The nodes inside a root element, which is line 1.
inline std::string WrapNodes(std::string_view aNodes) {
  return "<RegisterDescription ModelName=\"Model\" VendorName=\"Vendor\" SchemaMajorVersion=\"1\" "
         "SchemaMinorVersion=\"1\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n" +
         std::string(aNodes) + "\n</RegisterDescription>\n";
}

inline KrResult TryToRead(std::string_view aText, Description& aDescription) {
  KrGenDescription text;
  KrResult result = KrGenDescription::ReadFromMemory(aText, "test.xml", text);
  return result.IsOK() ? Description::Read(text, aDescription) : result;
}

/// A test failure where the text is refused.
inline Description ReadText(std::string_view aText) {
  Description description;
  const KrResult result = TryToRead(aText, description);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return description;
}
inline Description ReadNodes(std::string_view aNodes) {
  return ReadText(WrapNodes(aNodes));
}

/// A node's properties as "Kind=text" (attribute behind an @, name of the target behind ->), parted by blanks.
inline std::string ShowProperties(const Description& aDescription, const NodeDescription& aNode) {
  std::string shown;
  for (const Property& property : aDescription.GetProperties(aNode)) {
    shown += (shown.empty() ? "" : " ") + std::string(GetElementName(property.kind)) + "=" + std::string(property.text);
    if (!property.attribute.empty())
      shown += "@" + std::string(property.attribute);
    if (property.target != kNoNode)
      shown += "->" + std::string(aDescription.GetNodes()[property.target].name);
  }
  return shown;
}
inline std::string ShowNode(const Description& aDescription, std::string_view aName) {
  const NodeIndex index = aDescription.Find(aName);
  return index == kNoNode ? "no such node" : ShowProperties(aDescription, aDescription.GetNodes()[index]);
}

/// The names of all nodes, in order, parted by blanks.
inline std::string ShowNames(const Description& aDescription) {
  std::string names;
  for (const NodeDescription& node : aDescription.GetNodes())
    names += (names.empty() ? "" : " ") + std::string(node.name);
  return names;
}

/// "line: node: text", one fault per line.
inline std::string ShowFaults(const Description& aDescription) {
  std::string shown;
  for (const DescriptionFault& fault : aDescription.GetFaults())
    shown += std::to_string(fault.line) + ": " + fault.node + ": " + fault.text + "\n";
  return shown;
}

} // namespace krgenicam
