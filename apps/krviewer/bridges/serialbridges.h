#pragma once
// The serial bridges of the viewer. The bridges and the window itself are the library's.

#include "bridges/bridgewindow.h"
#include "krgui/krserialbridgemanagerwnd.h"

namespace krviewer {

class SerialBridges : public BridgeWindow {
public:
  SerialBridges() : BridgeWindow(kSerialBridgeRules) {}

  KrSerialBridgeManagerWnd& GetWindow() override { return mWindow; }

private:
  KrResult SetUp(LentDevice& aDevice) override;
  void TakeOut() override;
  KrPropertyList GetNow() override;
  KeptBridges::Ports GetPorts() override;
  void Start(const KrPropertyList& aWanted, BridgeNews aNews) override;
  KrResult ReadSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges) override;
  KrResult WriteSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter) override;

  KrSerialBridgeManagerWnd mWindow;
};

} // namespace krviewer
