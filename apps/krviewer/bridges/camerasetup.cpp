#include "bridges/camerasetup.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krdeviceserial.h"

#include <string>
#include <utility>
#include <vector>

namespace krviewer {

namespace {

constexpr const char* kIndex = "CameraBridgeIndex";
constexpr const char* kBridge = "Camera"; ///< The value of a bridge's first property, which nobody reads.
constexpr char kSeparator = '/';          ///< Between a bridge's name and that of its property.

} // namespace

KrResult ReadCameraSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges) {
  KrPropertyList index;
  if (KrResult result = aReader.Restore(kIndex, index); !result.IsOK())
    return result;
  KrPropertyList bridges;
  for (const KrProperty& entry : index) {
    const KrString& name = entry.GetValue();
    if (bridges.GetProperty(name))
      continue;
    bridges.Add({name, kBridge});
    KrPropertyList properties;
    if (FindPort(name) == KrDeviceSerial::Invalid || !aReader.Restore(name, properties).IsOK())
      continue;
    for (const KrProperty& property : properties)
      bridges.Add({name + std::string(1, kSeparator) + property.GetName(), property.GetValue()});
  }
  aBridges = bridges;
  return {};
}

KrPropertyList CompleteCameraSetup(const KrPropertyList& aBridges, const KrPropertyList& aOthers) {
  KrPropertyList all = aBridges;
  for (const KrProperty& property : aOthers) {
    const std::string name = property.GetName().ToUtf8();
    if (!aBridges.GetProperty(name.substr(0, name.find(kSeparator))))
      all.Add(property);
  }
  return all;
}

KrResult WriteCameraSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter) {
  std::vector<std::pair<KrString, KrPropertyList>> bridges;
  for (const KrProperty& property : aBridges) {
    const std::string name = property.GetName().ToUtf8();
    // A name that is no port's has no properties, whatever looks like one of them.
    const bool isPort = !bridges.empty() && FindPort(bridges.back().first) != KrDeviceSerial::Invalid;
    const std::string before = isPort ? bridges.back().first.ToUtf8() + kSeparator : "";
    if (isPort && name.starts_with(before))
      bridges.back().second.Add({name.substr(before.size()), property.GetValue()});
    else
      bridges.emplace_back(property.GetName(), KrPropertyList());
  }
  KrPropertyList index;
  KrResult result;
  for (const auto& [name, properties] : bridges) {
    index.Add({"CameraBridge" + std::to_string(index.GetCount()), name});
    if (result.IsOK() && !properties.IsEmpty())
      result = aWriter.Store(name, properties);
  }
  return result.IsOK() ? aWriter.Store(kIndex, index) : result;
}

} // namespace krviewer
