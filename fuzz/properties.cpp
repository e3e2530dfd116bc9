// Whatever may stand in a configuration file under the names that its readers look for: the feature browser's options,
// serial bridges, a camera bridge, the index of camera bridges and the viewer's setup of them are taken as far as they
// can be, with a sentence for what cannot, and come back as they were saved.

#include "bridges/camerasetup.h"
#include "configurationparser.h"
#include "krcamerabridge/krcamerabridgeset.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krdeviceserial.h"
#include "logic/browser/browseroptions.h"
#include "logic/serial/savedserialbridge.h"
#include "logic/serial/serialbridgelist.h"
#include "require.h"
#include "saved/savedbridge.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace {

void CheckOptions(const KrPropertyList& aList) {
  krgui::BrowserOptions options;
  krgui::LoadBrowserOptions(aList, options);
  KrPropertyList saved;
  krgui::SaveBrowserOptions(options, saved);
  krgui::BrowserOptions again;
  krgui::LoadBrowserOptions(saved, again);
  Require(again == options);
}

void CheckBridge(const KrPropertyList& aList) {
  krcamerabridge::SavedBridge bridge;
  KrStringList errors;
  const KrResult restored = krcamerabridge::RestoreBridge(aList, bridge, errors);
  Require(restored.IsOK() == errors.IsEmpty());
  Require(restored.IsOK() || restored == KrResult::Code::BadData);
  Require(!restored.IsOK() || (bridge.choice.way && bridge.isSyncOn));
  if (!bridge.choice.way)
    return;
  const KrPropertyList saved = krcamerabridge::StoreBridge(bridge);
  krcamerabridge::SavedBridge again;
  KrStringList none;
  Require(krcamerabridge::RestoreBridge(saved, again, none).IsOK());
  Require(krcamerabridge::StoreBridge(again) == saved);
}

void CheckSerialPort(const KrPropertyList& aList, KrDeviceSerial aPort) {
  KrSerialPortConfiguration configuration;
  const KrResult restored = krgui::RestoreConfiguration(aList, aPort, configuration);
  Require(configuration.IsValid());
  Require(restored.IsOK() || (restored == KrResult::Code::BadData && configuration == KrSerialPortConfiguration()));
  std::optional<std::uint32_t> rate;
  const KrResult rateRestored = krgui::RestoreHardCodedBaudRate(aList, aPort, rate);
  Require(rateRestored.IsOK() || (rateRestored == KrResult::Code::BadData && !rate));

  const KrProperty* const comPort = krgui::FindSavedCOMPort(aList, aPort);
  const KrString name = comPort ? comPort->GetValue() : KrString();
  KrPropertyList saved;
  krgui::StoreCOMPort(name, configuration, aPort, saved);
  krgui::StoreHardCodedBaudRate(rate.value_or(0), aPort, saved);
  KrSerialPortConfiguration again;
  std::optional<std::uint32_t> rateAgain;
  Require(krgui::FindSavedCOMPort(saved, aPort)->GetValue() == name);
  Require(krgui::RestoreConfiguration(saved, aPort, again).IsOK() && again == configuration);
  Require(krgui::RestoreHardCodedBaudRate(saved, aPort, rateAgain).IsOK() && rateAgain == rate.value_or(0));
}

// A device without ports has none of the bridges: each is told once.
void CheckSerialBridges(const KrPropertyList& aList) {
  std::size_t named = 0;
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    CheckSerialPort(aList, port);
    const KrProperty* const kind = aList.GetProperty(GetPortName(port));
    if (!kind)
      continue;
    ++named;
    const KrString word = krgui::GetSavedWord(krgui::FindSavedKind(kind->GetValue()));
    Require(word.IsEmpty() || word == kind->GetValue());
  }
  krgui::SerialBridgeList bridges;
  KrStringList errors;
  bridges.Load(aList, errors);
  Require(errors.GetCount() == named);
}

// A device without ports has none of the bridges: each name is told once.
void CheckIndex(const KrConfigurationReader& aReader) {
  KrPropertyList index;
  const bool hasIndex = aReader.Restore("CameraBridgeIndex", index).IsOK();
  KrStringList errors;
  const KrResult loaded = KrLoadCameraBridges({}, aReader, errors);
  Require(errors.GetCount() == index.GetCount());
  Require(hasIndex && index.IsEmpty() ? loaded.IsOK() : loaded == KrResult::Code::NotFound);
}

void CheckSetup(const KrConfigurationReader& aReader) {
  KrPropertyList setup;
  if (!krviewer::ReadCameraSetup(aReader, setup).IsOK()) {
    Require(!aReader.Contains("CameraBridgeIndex"));
    return;
  }
  Require(krviewer::CompleteCameraSetup(setup, {}) == setup);
  Require(krviewer::CompleteCameraSetup({}, setup) == setup);
  KrConfigurationWriter written;
  Require(krviewer::WriteCameraSetup(setup, written).IsOK());
  KrPropertyList again;
  Require(krviewer::ReadCameraSetup(KrConfigurationReader(written), again).IsOK());
  Require(again == setup);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krpersistence::Configuration read;
  if (!krpersistence::ParseConfiguration({reinterpret_cast<const char*>(aData), aSize}, read).IsOK())
    return 0;
  KrConfigurationWriter writer;
  for (const auto& [name, properties] : read) {
    Require(writer.Store(name, properties).IsOK());
    CheckOptions(properties);
    CheckSerialBridges(properties);
    CheckBridge(properties);
  }
  const KrConfigurationReader reader(writer);
  CheckIndex(reader);
  CheckSetup(reader);
  return 0;
}
