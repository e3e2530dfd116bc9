// A program with a simulated frame grabber of its own, whose cameras are as they are when they get power. Writes what a
// camera bridge is, and what its camera and the device are set to, a line each.
//
//   camerabridgechild save|load|show GenCP|CLProtocol|TolvanCameraFile FILE
//
// save sets a camera and saves the bridge, load loads it, show only connects. Ends with 1, and a text, when that fails.

#include "camerabridgefixture.h"

#include "clprotocol/cldriverlist.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string_view>

namespace {

constexpr const char* kName = "Camera";
constexpr const char* kSource = "Source1";

KrResult ConnectCLProtocol(KrCameraBridge& aBridge) {
  KrStringList templates;
  if (KrResult result = KrCameraBridge::GetCLProtocolTemplates(templates); !result.IsOK())
    return result;
  KrString id;
  KrStringList xmlIDs;
  KrResult result = aBridge.ProbeCLProtocol(templates[0], id, xmlIDs);
  return result.IsOK() ? aBridge.ConnectCLProtocol(templates[0], xmlIDs[0]) : result;
}

KrResult ConnectFile(KrCameraBridge& aBridge) {
  return aBridge.ConnectTolvanCameraFile(kTextCameraFile);
}

struct Way {
  std::string_view word;
  KrDeviceSerial port;
  KrResult (*connect)(KrCameraBridge& aBridge);
};

constexpr Way kWays[] = {{"GenCP", KrDeviceSerial::Serial0, ConnectGenCP},
                         {"CLProtocol", KrDeviceSerial::Bulk0, ConnectCLProtocol},
                         {"TolvanCameraFile", KrDeviceSerial::Serial1, ConnectFile}};

KrResult SetAndSave(KrCameraBridge& aBridge, const char* aFile) {
  constexpr const char* kValues[][2] = {{"Width", "320"}, {"Height", "240"}, {"OffsetX", "64"}, {"Gain", "4.5"}};
  for (const auto& [name, value] : kValues)
    if (KrResult result = SetText(*aBridge.GetParameters(), name, value); !result.IsOK())
      return result;
  KrConfigurationWriter writer;
  for (const auto& step : {std::function([&] { return aBridge.SetSource(kSource); }),
                           std::function([&] { return aBridge.SetParametersSyncEnabled(true); }),
                           std::function([&] { return aBridge.Save(kName, writer); })})
    if (KrResult result = step(); !result.IsOK())
      return result;
  return writer.Save(aFile);
}

KrResult Load(KrCameraBridge& aBridge, const char* aFile) {
  KrConfigurationReader reader;
  KrStringList errors;
  KrResult result = reader.Load(aFile);
  if (result.IsOK())
    result = aBridge.Load(kName, reader, errors);
  for (const KrString& error : errors)
    std::cerr << error.CStr() << '\n';
  return result;
}

KrResult Do(std::string_view aWhat, const Way& aWay, KrCameraBridge& aBridge, const char* aFile) {
  if (aWhat == "load")
    return Load(aBridge, aFile);
  KrResult result = aWay.connect(aBridge);
  return result.IsOK() && aWhat == "save" ? SetAndSave(aBridge, aFile) : result;
}

KrResult Show(BridgeLab& aLab, KrCameraBridge& aBridge) {
  KrGenSettings settings;
  KrStringList problems;
  if (KrResult result = aBridge.GetParameters()->StoreSettings(settings, problems); !result.IsOK())
    return result;
  for (const KrGenSetting& setting : settings.GetSettings())
    std::cout << setting.name.CStr() << '=' << setting.value.CStr() << '\n';
  for (const auto get :
       {&KrCameraBridge::GetTolvanCameraFilePath, &KrCameraBridge::GetCLProtocolTemplate,
        &KrCameraBridge::GetCLProtocolCameraID, &KrCameraBridge::GetCLProtocolXMLID, &KrCameraBridge::GetGenCPXMLID}) {
    KrString text;
    const KrResult result = (aBridge.*get)(text);
    std::cout << "with: " << (result.IsOK() ? text : result.GetCodeString()).CStr() << '\n';
  }
  std::cout << "source: " << aBridge.GetSource().CStr() << "\nsync: " << aBridge.GetParametersSyncEnabled() << '\n';
  if (!WaitUntil([&] { return aBridge.GetParametersSyncText().IsEmpty(); }))
    return KrResult::Code::TimeLimitExceeded;
  std::cout << "selected: " << GetText(aLab.GetArray(), "SourceSelector") << '\n';
  if (KrResult result = SetText(aLab.GetArray(), "SourceSelector", kSource); !result.IsOK())
    return result;
  for (const char* const name : {"Width", "Height", "OffsetX", "OffsetY", "PixelFormat"})
    std::cout << "device: " << name << '=' << GetText(aLab.GetArray(), name) << '\n';
  return {};
}

} // namespace

int main(int aCount, char** aArguments) {
  const auto* const way =
      aCount == 4 ? std::ranges::find(kWays, std::string_view(aArguments[2]), &Way::word) : std::end(kWays);
  if (way == std::end(kWays))
    return EXIT_FAILURE;
  ::setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
  ::unsetenv("GENICAM_CLPROTOCOL");
  krcamerabridge::SetCLDriverDirectories({KR_TEST_DRIVERS});
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), way->port, nullptr);
  KrResult result = Do(aArguments[1], *way, bridge, aArguments[3]);
  if (result.IsOK())
    result = Show(lab, bridge);
  if (!result.IsOK())
    std::cerr << result.GetCodeString().CStr() << ": " << result.GetDescription().CStr() << '\n';
  return result.IsOK() ? EXIT_SUCCESS : EXIT_FAILURE;
}
