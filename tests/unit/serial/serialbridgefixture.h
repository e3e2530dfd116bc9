#pragma once
// What tests of the serial bridge's rules share: a host with COM ports, a device with lines, and lists of settings.

#include "bridgehost.h"
#include "krpersistence/krpropertylist.h"
#include "serialadapter.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

using Settings = std::vector<std::pair<std::string, std::string>>;

inline KrPropertyList MakeProperties(const Settings& aSettings) {
  KrPropertyList list;
  for (const auto& [name, value] : aSettings)
    list.Add({KrString(name), KrString(value)});
  return list;
}

inline Settings GetSettings(const KrPropertyList& aList) {
  Settings settings;
  for (const KrProperty& property : aList)
    settings.emplace_back(property.GetName().ToUtf8(), property.GetValue().ToUtf8());
  return settings;
}

inline std::vector<std::string> GetTexts(const KrStringList& aList) {
  std::vector<std::string> texts;
  for (const KrString& text : aList)
    texts.push_back(text.ToUtf8());
  return texts;
}

class SerialBridgeTest : public testing::Test {
protected:
  SerialBridgeTest() {
    for (const int number : {1, 3, 12})
      mHost.AddPort(number);
  }
  /// The device's port Serial0 tells these rates, and the first one as its own.
  void SetRates(const std::vector<std::string>& aRates) {
    mDevice.enumerations["Uart0BaudRate"] = {aRates, aRates.front()};
  }

  krtest::BridgeHost mHost;
  krtest::SerialAdapter mDevice;
  std::shared_ptr<krtest::SerialLine> mLine = mDevice.AddLine(0);
};

} // namespace krgui
