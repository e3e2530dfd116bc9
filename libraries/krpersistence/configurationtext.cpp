#include "configurationtext.h"

#include "textescape.h"

namespace krpersistence {

namespace {

KrResult MakeLimitError(const std::string& aWhat, std::size_t aLimit, const std::string& aUnit) {
  return {KrResult::Code::OutOfRange,
          aWhat + " is beyond the limit of a configuration file, " + std::to_string(aLimit) + " " + aUnit + "."};
}

bool IsTooLong(const KrString& aText) {
  return aText.GetLength() > kMostTextBytes;
}

KrResult AppendList(std::string& aText, const KrString& aName, const KrPropertyList& aProperties) {
  if (IsTooLong(aName))
    return MakeLimitError("The length of a list's name", kMostTextBytes, "bytes");
  const std::string list = "the list \"" + aName.ToUtf8() + "\"";
  if (aProperties.GetCount() > kMostProperties)
    return MakeLimitError("The number of properties of " + list, kMostProperties, "properties");
  aText += "  <list name=\"" + EscapeText(aName.ToUtf8()) + "\">\n";
  for (const KrProperty& property : aProperties) {
    if (IsTooLong(property.GetName()) || IsTooLong(property.GetValue()))
      return MakeLimitError("The length of a property of " + list, kMostTextBytes, "bytes");
    aText += "    <property name=\"" + EscapeText(property.GetName().ToUtf8()) + "\" value=\"" +
             EscapeText(property.GetValue().ToUtf8()) + "\"/>\n";
    if (aText.size() > kMostFileBytes)
      break;
  }
  aText += "  </list>\n";
  return {};
}

} // namespace

KrResult WriteConfigurationText(const Configuration& aConfiguration, std::string& aText) {
  if (aConfiguration.size() > kMostLists)
    return MakeLimitError("The number of lists", kMostLists, "lists");
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<configuration version=\"" +
                     std::to_string(kMajorVersion) + "." + std::to_string(kMinorVersion) + "\">\n";
  for (const auto& [name, properties] : aConfiguration)
    if (KrResult appended = AppendList(text, name, properties); !appended.IsOK())
      return appended;
  text += "</configuration>\n";
  if (text.size() > kMostFileBytes)
    return MakeLimitError("The size of the whole", kMostFileBytes, "bytes");
  aText = std::move(text);
  return {};
}

} // namespace krpersistence
